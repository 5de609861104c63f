// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/RenderCommand.h"

#include "Platform/Audio/AudioFile.h"
#include "Platform/Foundation/PlatformError.h"
#include "Tonvale/Audio/AudioExportService.h"
#include "Tonvale/Keys/TranspositionInterval.h"
#include "TonvaleRender/InputFiles.h"
#include "TonvaleRender/InterruptibleJobs.h"
#include "TonvaleRender/OutputFile.h"
#include "TonvaleRender/RenderPlan.h"
#include "TonvaleRender/RenderReport.h"
#include "TonvaleRender/SongDetection.h"
#include "TonvaleRender/TerminalText.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <optional>
#include <utility>
#include <vector>

namespace tonvale {

namespace {

using Results = std::vector<std::size_t>;

/// One run of the command: a job for each song, which leads to one for each of its results.
class RenderRun {
public:
    RenderRun(const RenderRequest& request, RenderPlan plan);
    /// @return whether everything was saved
    [[nodiscard]] bool run();

private:
    /// What the songs' results are numbered by: their places in the plan.
    struct SongPlace {
        std::size_t song;
        std::size_t firstResult;
    };

    void startSong(SongPlace place);
    [[nodiscard]] Results resultsThatMayBeWritten(SongPlace place);
    void prepare(PlannedSong& song);
    void findKey(PlannedSong& song);
    void addRender(SongPlace place, std::size_t result);
    void render(const PlannedSong& song, const PlannedRender& render, std::size_t result);
    void write(const PlannedSong& song, const PlannedRender& render, std::size_t result);
    /// Runs a part of a job, of which these results fail if it does.
    /// @return whether it did not
    template <typename Part>
    bool attempt(const Results& results, Part&& part);

    const RenderRequest& request_;
    RenderPlan plan_;
    InputFiles inputs_;
    RenderReport report_;
    InterruptibleJobs jobs_;  // last: its jobs use all of the above
};

/// So that a song which cannot be read is told of once and not for each of its keys.
void checkThatItOpens(const std::filesystem::path& song)
{
    try {
        (void)AudioFile::forReading(song);
    } catch (const LocalizedError& error) {
        throw PlatformError("Could not render " + quotedName(song) + ": "
                            + error.errorDescription());
    }
}

RenderReport::Style styleFor(const RenderRequest& request, const RenderPlan& plan)
{
    return {.results = plan.renderCount(),
            .tellsSuccess = !request.isQuiet,
            .drawsBar = !request.isQuiet && ::isatty(STDERR_FILENO) == 1};
}

RenderRun::RenderRun(const RenderRequest& request, RenderPlan plan)
    : request_(request)
    , plan_(std::move(plan))
    , inputs_(request.inputs)
    , report_(std::cout, std::cerr, styleFor(request, plan_))
    , jobs_(static_cast<unsigned>(std::min<std::size_t>(request.jobs, plan_.renderCount())))
{
}

bool RenderRun::run()
{
    if (plan_.folder) {
        createFolder(*plan_.folder);
    }
    std::size_t result = 0;
    for (std::size_t song = 0; song < plan_.songs.size(); ++song) {
        jobs_.add(song, [this, place = SongPlace{song, result}] { startSong(place); });
        result += plan_.songs[song].renders.size();
    }
    jobs_.finish([this] { report_.clear(); });
    report_.clear();
    if (!request_.isQuiet) {
        report_.sumUp();
    }
    return !report_.hasFailures();
}

template <typename Part>
bool RenderRun::attempt(const Results& results, Part&& part)
{
    try {
        part();
        return true;
    } catch (const UnfinishedOutputs::Interrupted&) {
        return false;  // the user knows
    } catch (...) {
        if (!jobs_.areInterrupted()) {
            report_.failed(results, localizedDescription(std::current_exception()));
        }
        return false;
    }
}

void RenderRun::startSong(SongPlace place)
{
    const Results results = resultsThatMayBeWritten(place);
    if (results.empty() || !attempt(results, [&] { prepare(plan_.songs[place.song]); })) {
        return;
    }
    for (const std::size_t result : results) {
        addRender(place, result);
    }
}

/// What is done once for all results of a song.
void RenderRun::prepare(PlannedSong& song)
{
    if (request_.detectsSourceKey()) {
        findKey(song);
    } else if (song.renders.size() > 1) {
        checkThatItOpens(song.input);
    }
}

/// Looked at before the song is listened to, which may take a while.
Results RenderRun::resultsThatMayBeWritten(SongPlace place)
{
    Results results;
    std::size_t result = place.firstResult;
    for (const PlannedRender& render : plan_.songs[place.song].renders) {
        if (attempt({result},
                    [&] { checkOutput(render.output, inputs_, request_.replacesOutput); })) {
            results.push_back(result);
        }
        ++result;
    }
    return results;
}

void RenderRun::findKey(PlannedSong& song)
{
    const DetectedSongDetails details = detectSong(song.input);
    report_.say(detectionLines(song.input, details, inputs_.areSeveral()));
    for (PlannedRender& render : song.renders) {
        render.cents = centsForSemitones(semitonesBetween(details.musicKey(), *render.targetKey));
    }
}

void RenderRun::addRender(SongPlace place, std::size_t result)
{
    jobs_.add(place.song, [this, place, result] {
        const PlannedSong& song = plan_.songs[place.song];
        attempt({result}, [&] { render(song, song.renders[result - place.firstResult], result); });
    });
}

void RenderRun::render(const PlannedSong& song, const PlannedRender& render, std::size_t result)
{
    // Once more: in a long run the user may have put something there meanwhile.
    checkOutput(render.output, inputs_, request_.replacesOutput);
    try {
        write(song, render, result);
    } catch (const LocalizedError& error) {
        throw PlatformError("Could not render " + quotedName(song.input) + " into "
                            + quotedName(render.output) + ": " + error.errorDescription());
    }
    report_.succeeded(result, "Saved " + quotedName(render.output) + "\n");
}

void RenderRun::write(const PlannedSong& song, const PlannedRender& render, std::size_t result)
{
    std::optional<UnfinishedOutputs::Entry> unfinished;
    const auto observe = [&](RenderProgress progress) {
        if (unfinished) {
            unfinished->check();
        } else {
            unfinished.emplace(jobs_.unfinishedOutputs());
        }
        report_.progress(
            result, static_cast<double>(progress.renderedFrames)
                        / static_cast<double>(std::max<std::int64_t>(progress.totalFrames, 1)));
    };
    try {
        AudioExportService::render(song.input, render.output, render.cents, observe);
    } catch (const UnfinishedOutputs::Interrupted&) {
        if (unfinished) {
            ::unlink(render.output.c_str());
        }
        throw;
    }
}

}  // namespace

bool runRender(const RenderRequest& request)
{
    return RenderRun(request, planRenders(request)).run();
}

}  // namespace tonvale
