// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

// Loads, plays, retunes and saves songs again and again in one process, with the real engine and a
// sound server of its own that plays to nobody, and watches what the process holds of the machine.
//
//     endurance-cycles [cycles]     more than 100 (1000)

#include "Platform/Desktop/FilePanels.h"
#include "Support/MainLoop.h"
#include "Support/ProcessState.h"
#include "Support/PulseServer.h"
#include "Support/Songs.h"
#include "Support/TemporaryFolder.h"
#include "Tonvale/Model/AudioTransposeModel.h"

#include <QCoreApplication>

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace tonvale;

/// Until then memory grows to what the work needs: buffers, caches, and the allocator's own.
constexpr int warmUpCycles = 100;
constexpr int reportCycles = 50;
constexpr double allowedGrowth = 5;  // MiB

/// Saves wherever it is told to, without a word.
class SilentSavePanel final : public SavePanel {
public:
    explicit SilentSavePanel(std::filesystem::path answer) : answer_(std::move(answer)) {}
    std::optional<std::filesystem::path> runModal() override { return answer_; }

private:
    std::filesystem::path answer_;
};

struct Footprint {
    double memory;  ///< MiB that are the process's own and written to
    std::size_t threads;
    std::size_t descriptors;
};

double privateMemory()
{
    std::ifstream file("/proc/self/smaps_rollup");
    std::string word;
    while (file >> word) {
        if (word == "Private_Dirty:") {
            double kibibytes = 0;
            file >> kibibytes;
            return kibibytes / 1024;
        }
    }
    throw std::runtime_error("/proc/self/smaps_rollup tells no private memory");
}

Footprint footprint()
{
    return {privateMemory(), test::threadCount(), test::openDescriptors().size()};
}

void expect(bool isTrue, const char* what)
{
    if (!isTrue) {
        throw std::runtime_error(what);
    }
}

std::vector<std::filesystem::path> makeSongs(const std::filesystem::path& folder)
{
    struct Kind {
        const char* name;
        double rate;
        std::vector<double> tones;
    };
    std::vector<std::filesystem::path> songs;
    for (const Kind& kind : {Kind{"stereo.wav", 44100, {220, 330}}, Kind{"mono.aiff", 48000, {440}},
                             Kind{"low.caf", 22050, {110, 165}}}) {
        songs.push_back(folder / kind.name);
        test::writeSong(
            songs.back(), kind.rate,
            test::tones(kind.tones, kind.rate, static_cast<std::size_t>(4 * kind.rate)));
    }
    return songs;
}

/// One song from its loading to the file that it becomes.
void runCycle(AudioTransposeModel& model, const std::filesystem::path& song, int cycle)
{
    const auto key = [](int number) {
        const auto keys = MusicKey::allCases();
        return keys[static_cast<std::size_t>(number) % keys.size()];
    };
    model.load(song);
    expect(model.hasAudio(), "the song does not load");
    model.playPreview();
    expect(model.isPreviewing(), "the song does not play");
    for (const int step : {0, 5, 7}) {
        model.setTargetKey(key(cycle + step));
        const double before = model.currentTime();
        expect(test::spinUntil([&] { return model.currentTime() > before; }), "the song stands");
    }
    model.skipPreview(1.5);
    model.chooseExportLocationAndRender();
    expect(model.isExporting(), "the song is not saved");
    expect(test::spinUntil([&] { return !model.isExporting(); }), "the saving does not end");
    expect(model.exportMessage().startsWith("Saved"), "the saving fails");
}

/// Threads of what has just been saved may still be ending.
bool holdsNoMoreThan(const Footprint& first)
{
    return test::eventually([&] {
        return test::threadCount() <= first.threads
               && test::openDescriptors().size() <= first.descriptors;
    });
}

void run(int cycles)
{
    expect(cycles > warmUpCycles, "there must be more cycles than the warm-up has");
    const test::PulseServer server;
    const test::TemporaryFolder folder;
    const std::vector<std::filesystem::path> songs = makeSongs(folder.path());
    SavePanel::replaceFactory(
        [&] { return std::make_unique<SilentSavePanel>(folder.path() / "saved.wav"); });
    AudioTransposeModel model;
    Footprint first{};
    for (int cycle = 1; cycle <= cycles; ++cycle) {
        runCycle(model, songs[static_cast<std::size_t>(cycle) % songs.size()], cycle);
        if (cycle == warmUpCycles) {
            first = footprint();
        }
        if (cycle % reportCycles != 0) {
            continue;
        }
        expect(cycle < warmUpCycles || holdsNoMoreThan(first), "threads or descriptors grow");
        const Footprint now = footprint();
        std::printf("%5d cycles  %6.2f MiB  %zu threads  %zu descriptors\n", cycle, now.memory,
                    now.threads, now.descriptors);
        std::fflush(stdout);
    }
    const double growth = footprint().memory - first.memory;
    std::printf("growth after %d cycles of warm-up: %.2f MiB\n", warmUpCycles, growth);
    expect(growth < allowedGrowth, "memory grows");
}

}  // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    try {
        run(argc > 1 ? std::stoi(argv[1]) : 1000);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "endurance-cycles: %s\n", error.what());
        return 1;
    }
}
