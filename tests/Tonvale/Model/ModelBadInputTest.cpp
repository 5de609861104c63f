// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/AudioOutput.h"
#include "Support/ProcessState.h"
#include "Tonvale/Model/ModelTest.h"

#include <array>
#include <fstream>

namespace tonvale {
namespace {

using ModelBadInput = test::ModelTest;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool heapIsCounted = false;  // the sanitizer's own; it reports leaks itself
#else
constexpr bool heapIsCounted = true;
#endif

/// As a device that goes on asking would.
void pullFrames(const test::FakeAudioDevice& device)
{
    std::array<float, 512> samples{};
    for (int block = 0; block < 200; ++block) {
        static_cast<void>(device.source->read(samples));
    }
}

TEST_F(ModelBadInput, FailsToLoadOneSongWhileAnotherPlays)
{
    loadSong();
    model->playPreview();
    model->load(makeBrokenSong("broken.wav"));
    EXPECT_EQ(model->fileName(), "Could not load audio");
    expectPlaying(false);
    loadSong();
    model->playPreview();
    expectPlaying(true);
}

TEST_F(ModelBadInput, PlaysSongsOfNoFrameAndOfOne)
{
    for (const double seconds : {0.0, 1.0 / 8000}) {
        loadSong(seconds);
        EXPECT_EQ(model->fileName(), "song.wav");
        EXPECT_EQ(model->duration(), seconds);
        model->playPreview();
        expectPlaying(true);
        pullFrames(device);
        model->skipPreview(15);
        EXPECT_EQ(model->currentTime(), seconds);
        clock.advance(1);
        tick();
        EXPECT_EQ(model->isPreviewing(), seconds == 0);
        model->stopPreview();
    }
}

TEST_F(ModelBadInput, LivesOnWhenTheSongIsDeletedWhileItPlays)
{
    loadSong();
    model->playPreview();
    std::filesystem::remove(in("song.wav"));
    pullFrames(device);
    clock.advance(30);
    tick();
    EXPECT_EQ(model->currentTime(), 30);
    model->skipPreview(15);
    pullFrames(device);
    expectPlaying(true);
    panelAnswer = in("saved.wav");
    model->chooseExportLocationAndRender();
    ASSERT_TRUE(test::spinUntil([this] { return !model->isExporting(); }));
    EXPECT_EQ(model->fileDetail(), "No such file or directory");
}

TEST_F(ModelBadInput, LivesOnWhenTheSongIsCutShortWhileItPlays)
{
    loadSong();
    model->playPreview();
    std::filesystem::resize_file(in("song.wav"), 100);
    for (const double by : {15.0, -10.0, 40.0}) {
        model->skipPreview(by);
        pullFrames(device);
        expectPlaying(true);
    }
    clock.advance(100);
    tick();
    expectPlaying(false);
    EXPECT_EQ(model->currentTime(), 60);
    model->playPreview();
    pullFrames(device);
    expectPlaying(true);
    panelAnswer = in("saved.wav");
    model->chooseExportLocationAndRender();
    ASSERT_TRUE(test::spinUntil([this] { return !model->isExporting(); }));
}

TEST_F(ModelBadInput, DoesNotGrowOverAThousandLoads)
{
    const std::array songs{makeSong("a.wav", 1), makeSong("b.aiff", 2), makeSong("c.caf", 1),
                           makeBrokenSong("d.wav"), in("missing.mp3")};
    std::size_t heap = 0;
    std::size_t threads = 0;
    std::map<int, std::string> descriptors;
    for (std::size_t load = 0; load < 1000; ++load) {
        model->load(songs[load % songs.size()]);
        model->playPreview();
        test::runQueuedCalls();
        if (load == 49) {
            heap = test::heapBytesInUse();
            threads = test::threadCount();
            descriptors = test::openDescriptors();
        }
    }
    EXPECT_EQ(test::threadCount(), threads);
    EXPECT_EQ(test::openDescriptors().size(), descriptors.size());
    if (heapIsCounted) {
        RecordProperty("growthInBytes",
                       std::to_string(static_cast<std::int64_t>(test::heapBytesInUse() - heap)));
        EXPECT_LE(test::heapBytesInUse(), heap + 65536);  // a leak of 70 bytes a load
    }
}

}  // namespace
}  // namespace tonvale
