// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/ProcessState.h"
#include "Support/Songs.h"
#include "Tonvale/Model/ModelTest.h"

#include <algorithm>
#include <array>
#include <vector>

namespace tonvale {
namespace {

/// A model whose sound the device takes, as it takes it from any other program.
class ModelBadInput : public test::ModelTest {
protected:
    /// How many of the next frames are not silent; all of them must come.
    std::ptrdiff_t soundingFrames(std::uint32_t frames)
    {
        const std::vector<float> samples = device.pullAll(frames);
        EXPECT_EQ(samples.size(), std::size_t{2} * frames);
        return std::ranges::count_if(samples, [](float sample) { return sample != 0; }) / 2;
    }
    /// Whether a second of the tone sounds, which is silent for a frame now and then.
    bool isHeard() { return soundingFrames(48000) > 47000; }
};

TEST_F(ModelBadInput, FailsToLoadOneSongWhileAnotherPlays)
{
    loadSong();
    model->playPreview();
    EXPECT_TRUE(isHeard());
    model->load(makeBrokenSong("broken.wav"));
    EXPECT_EQ(model->fileName(), "Could not load audio");
    expectPlaying(false);
    EXPECT_TRUE(device.pull(480).empty());
    loadSong();
    model->playPreview();
    expectPlaying(true);
    EXPECT_TRUE(isHeard());
}

TEST_F(ModelBadInput, PlaysSongsOfNoFrameAndOfOne)
{
    for (const double seconds : {0.0, 1.0 / 8000}) {
        loadSong(seconds);
        EXPECT_EQ(model->fileName(), "song.wav");
        EXPECT_EQ(model->duration(), seconds);
        model->playPreview();
        expectPlaying(true);
        const std::uint32_t frames = seconds == 0 ? 0 : 6;  // at 48 kHz
        EXPECT_EQ(device.pullAll(frames).size(), 2 * frames);
        EXPECT_TRUE(device.pull(480).empty());
        model->skipPreview(15);
        EXPECT_EQ(device.pullAll(frames).size(), 2 * frames) << "from the beginning again";
        EXPECT_EQ(model->currentTime(), seconds);
        clock.advance(1);
        tick();
        EXPECT_EQ(model->isPreviewing(), seconds == 0);
        model->stopPreview();
    }
}

TEST_F(ModelBadInput, PlaysOnWhenTheSongIsDeletedWhileItPlays)
{
    loadSong();
    model->playPreview();
    EXPECT_TRUE(isHeard());
    std::filesystem::remove(in("song.wav"));
    for (int second = 1; second < 30; ++second) {
        ASSERT_TRUE(isHeard()) << second;
    }
    clock.advance(30);
    tick();
    EXPECT_EQ(model->currentTime(), 30);
    model->skipPreview(15);
    EXPECT_TRUE(isHeard());
    expectPlaying(true);
    panelAnswer = in("saved.wav");
    model->chooseExportLocationAndRender();
    ASSERT_TRUE(test::spinUntil([this] { return !model->isExporting(); }));
    EXPECT_EQ(model->fileDetail(), "No such file or directory");
}

TEST_F(ModelBadInput, IsSilentWhereTheSongWasCutOffWhileItPlays)
{
    loadSong();
    model->playPreview();
    EXPECT_TRUE(isHeard());
    std::filesystem::resize_file(in("song.wav"), 44 + 2 * 8000 * 20);  // 20 of 60 seconds
    model->skipPreview(5);
    EXPECT_TRUE(isHeard());
    for (const double by : {20.0, 10.0}) {
        model->skipPreview(by);
        EXPECT_EQ(soundingFrames(48000), 0) << model->currentTime();
        expectPlaying(true);
    }
    clock.advance(100);
    tick();
    expectPlaying(false);
    EXPECT_EQ(model->currentTime(), 60);
    model->playPreview();
    EXPECT_TRUE(isHeard()) << "what is left of the song";
    expectPlaying(true);
    panelAnswer = in("saved.wav");
    model->chooseExportLocationAndRender();
    ASSERT_TRUE(test::spinUntil([this] { return !model->isExporting(); }));
    EXPECT_EQ(test::readSong(in("saved.wav")).channels[0].size(), 160000U);
    model->load(in("song.wav"));
    model->playPreview();
    EXPECT_TRUE(isHeard());
}

TEST_F(ModelBadInput, DoesNotGrowOverAThousandLoads)
{
    const std::array songs{makeSong("a.wav", 1), makeSong("b.aiff", 2), makeSong("c.caf", 1),
                           makeBrokenSong("d.wav"), in("missing.mp3")};
    std::size_t heap = 0;
    std::size_t threads = 0;
    std::map<int, std::string> descriptors;
    // When the device has a frame of a song, whoever renders has let go of those before it.
    const auto settle = [&] {
        model->load(songs[0]);
        model->playPreview();
        test::runQueuedCalls();
        EXPECT_EQ(device.pullAll(1).size(), 2U);
    };
    for (std::size_t load = 0; load < 1000; ++load) {
        model->load(songs[load % songs.size()]);
        model->playPreview();
        test::runQueuedCalls();
        if (load == 49) {
            settle();
            heap = test::heapBytesInUse();
            threads = test::threadCount();
            descriptors = test::openDescriptors();
        }
    }
    settle();
    EXPECT_EQ(test::threadCount(), threads);
    EXPECT_EQ(test::openDescriptors().size(), descriptors.size());
    if (test::heapIsCountedExactly()) {  // under ctest; sanitizers report leaks themselves
        EXPECT_LE(test::heapBytesInUse(), heap + 4096);
    }
}

}  // namespace
}  // namespace tonvale
