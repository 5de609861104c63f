// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/AudioPlayerNode.h"

#include "Support/Songs.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <memory>
#include <numeric>
#include <vector>

namespace tonvale {
namespace {

class AudioPlayer : public ::testing::Test {
protected:
    AudioPlayer()
    {
        // A ramp in 16-bit steps: every sample tells its frame.
        std::vector<float> ramp(1000);
        for (std::size_t frame = 0; frame < ramp.size(); ++frame) {
            ramp[frame] = static_cast<float>(frame) / 32768.0F;
        }
        test::writeSong(folder.path() / "ramp.wav", 44100, {ramp});
        file = std::make_shared<AudioFile>(AudioFile::forReading(folder.path() / "ramp.wav"));
    }

    /// Renders one block; silence reads as -1, every other frame as its number in the file.
    std::vector<int> render(std::uint32_t frameCount)
    {
        const auto buffer = AudioPCMBuffer::create({44100, 1}, frameCount);
        std::ranges::fill(buffer->channel(0),
                          0.9F);  // what a block held before must not shine through
        player.render(*buffer, frameCount);
        EXPECT_EQ(buffer->frameLength(), frameCount);
        std::vector<int> frames;
        for (const float sample : buffer->channel(0)) {
            frames.push_back(sample == 0 ? -1 : static_cast<int>(sample * 32768.0F));
        }
        return frames;
    }

    static std::vector<int> range(int first, int count)
    {
        std::vector<int> numbers(static_cast<std::size_t>(count));
        std::iota(numbers.begin(), numbers.end(), first);
        return numbers;
    }

    const std::vector<int> silence = std::vector<int>(8, -1);
    test::TemporaryFolder folder;
    std::shared_ptr<AudioFile> file;
    AudioPlayerNode player;
};

TEST_F(AudioPlayer, IsSilentUntilItPlaysWhatWasScheduled)
{
    EXPECT_EQ(render(8), silence);
    player.scheduleSegment(file, 100, 900);
    EXPECT_EQ(render(8), silence);
    player.play();
    EXPECT_EQ(render(8), range(100, 8));
    EXPECT_EQ(render(5), range(108, 5));
}

TEST_F(AudioPlayer, PlaysASegmentToItsEndAndSilenceForEverAfter)
{
    player.scheduleSegment(file, 10, 12);
    player.play();
    EXPECT_EQ(render(8), range(10, 8));
    std::vector<int> end = range(18, 4);
    end.resize(8, -1);
    EXPECT_EQ(render(8), end);
    EXPECT_EQ(render(8), silence);
}

TEST_F(AudioPlayer, PlaysTheLastFrameOfAFileAlone)
{
    player.scheduleSegment(file, 999, 1);
    player.play();
    EXPECT_EQ(render(2), (std::vector<int>{999, -1}));
}

TEST_F(AudioPlayer, PlaysNothingOfAnEmptySegment)
{
    player.scheduleSegment(file, 1000, 0);
    player.play();
    EXPECT_EQ(render(8), silence);
}

TEST_F(AudioPlayer, ForgetsWhatWasScheduledWhenStopped)
{
    player.scheduleSegment(file, 100, 900);
    player.play();
    (void)render(8);
    player.stop();
    EXPECT_EQ(render(8), silence);
    EXPECT_EQ(file.use_count(), 1);
    player.scheduleSegment(file, 500, 500);
    player.play();
    EXPECT_EQ(render(8), range(500, 8));
}

TEST_F(AudioPlayer, PlaysWhatIsScheduledWhileItPlays)
{
    player.play();
    EXPECT_EQ(render(8), silence);
    player.scheduleSegment(file, 100, 900);
    EXPECT_EQ(render(8), range(100, 8));
}

TEST_F(AudioPlayer, GoesOnWhenToldToPlayOnceMore)
{
    player.scheduleSegment(file, 100, 900);
    player.play();
    EXPECT_EQ(render(8), range(100, 8));
    player.play();
    EXPECT_EQ(render(8), range(108, 8));
}

TEST_F(AudioPlayer, BeginsAnewWithWhatLiesBeforeWhenReset)
{
    EXPECT_EQ(player.reset(10), 0U) << "nothing is scheduled";
    player.scheduleSegment(file, 100, 30);
    player.play();
    EXPECT_EQ(render(8), range(100, 8));
    EXPECT_EQ(player.reset(0), 0U);
    EXPECT_EQ(render(8), range(100, 8));
    EXPECT_EQ(player.reset(40), 40U);
    EXPECT_EQ(render(8), range(60, 8));
    EXPECT_EQ(player.reset(150), 100U) << "the file has no more";
    EXPECT_EQ(player.reset(99), 99U);
    EXPECT_EQ(render(8), range(1, 8));
    std::vector<int> rest = range(9, 121);
    rest.push_back(-1);
    EXPECT_EQ(render(122), rest) << "the end stays";
}

using AudioPlayerDeathTest = AudioPlayer;

TEST_F(AudioPlayerDeathTest, AbortsForSegmentsThatTheFileDoesNotHave)
{
    const auto aborts = ::testing::KilledBySignal(SIGABRT);
    EXPECT_EXIT(player.scheduleSegment(file, -1, 10), aborts, "");
    EXPECT_EXIT(player.scheduleSegment(file, 1, 1000), aborts, "");
    EXPECT_EXIT(player.scheduleSegment(nullptr, 0, 10), aborts, "");
}

}  // namespace
}  // namespace tonvale
