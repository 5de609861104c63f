// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/RenderCommand.h"

#include "Platform/Foundation/PlatformError.h"
#include "Tonvale/Audio/AudioExportService.h"
#include "Tonvale/EssentiaKeyDetector.h"
#include "Tonvale/Keys/TranspositionInterval.h"
#include "TonvaleRender/Interruption.h"
#include "TonvaleRender/OutputFile.h"
#include "TonvaleRender/ProgressBar.h"
#include "TonvaleRender/TerminalText.h"

#include <unistd.h>

#include <iostream>
#include <optional>

namespace tonvale {

namespace {

struct Interrupted {
    int signalNumber;
    bool leavesOutput;  ///< an unfinished one of ours
};

/// Watches a render: draws the bar on a terminal and stops when the user asks. While the song is
/// still being opened a signal ends the process by itself, as there is nothing to clean up.
class Watcher {
public:
    explicit Watcher(bool drawsBar) : drawsBar_(drawsBar) {}

    void operator()(RenderProgress progress)
    {
        if (!interruption_) {
            interruption_.emplace();
        }
        if (const int signalNumber = interruption_->signalNumber(); signalNumber != 0) {
            bar_.reset();
            throw Interrupted{signalNumber, progress.renderedFrames > 0};
        }
        if (drawsBar_) {
            draw(progress);
        }
    }

private:
    void draw(RenderProgress progress)
    {
        if (!bar_) {
            bar_.emplace(std::cerr);
        }
        bar_->update(progress.renderedFrames, progress.totalFrames);
    }

    bool drawsBar_;
    std::optional<Interruption> interruption_;  // until the process ends or the result is told
    std::optional<ProgressBar> bar_;
};

DetectedSongDetails detect(const std::filesystem::path& song)
{
    try {
        return EssentiaKeyDetector::detectSongDetails(song);
    } catch (const LocalizedError& error) {
        throw PlatformError("Could not detect the key of " + quotedName(song) + ": "
                            + error.errorDescription());
    }
}

void print(const DetectedSongDetails& details)
{
    for (const std::string& line : details.displayLines()) {
        std::cout << line << '\n';
    }
    std::cout << std::flush;
}

void render(const RenderRequest& request, int cents, const std::filesystem::path& output)
{
    Watcher watcher(!request.isQuiet && ::isatty(STDERR_FILENO) == 1);
    try {
        AudioExportService::render(request.input, output, cents, std::ref(watcher));
    } catch (const Interrupted& interrupted) {
        if (interrupted.leavesOutput) {
            ::unlink(output.c_str());
        }
        endBySignal(interrupted.signalNumber);
    } catch (const LocalizedError& error) {
        throw PlatformError("Could not render " + quotedName(request.input) + " into "
                            + quotedName(output) + ": " + error.errorDescription());
    }
}

/// Listens to the song and says what it hears. @return the shift to the key asked for
int detectedCents(const RenderRequest& request)
{
    const DetectedSongDetails details = detect(request.input);
    if (!request.isQuiet) {
        print(details);
    }
    return centsForSemitones(semitonesBetween(details.musicKey(), *request.targetKey));
}

}  // namespace

void runDetection(const RenderRequest& request)
{
    print(detect(request.input));
}

void runRender(const RenderRequest& request)
{
    const std::filesystem::path output = outputFor(request);
    checkOutput(output, request);
    const int cents = request.detectsSourceKey ? detectedCents(request) : request.cents;
    render(request, cents, output);
    if (!request.isQuiet) {
        std::cout << "Saved " << quotedName(output) << '\n' << std::flush;
    }
}

}  // namespace tonvale
