// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/QueuedFrames.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tonvale::test {

namespace {

/// Writes the number of each frame to both of its samples.
void number(QueuedFrames& frames, std::int64_t first, std::int64_t end)
{
    for (std::int64_t frame = first; frame < end; ++frame) {
        for (float& sample : frames.piece(frame, 1)) {
            sample = static_cast<float>(frame);
        }
    }
}

TEST(QueuedFramesTest, FramesAreFoundByTheirPlaceInTheStream)
{
    QueuedFrames frames;
    frames.resize(100);
    number(frames, 250, 350);
    for (std::int64_t frame = 250; frame < 350; ++frame) {
        const auto samples = frames.piece(frame, 1);
        ASSERT_EQ(samples.size(), 2U);
        EXPECT_EQ(samples[0], static_cast<float>(frame));
        EXPECT_EQ(samples[1], static_cast<float>(frame));
    }
    EXPECT_EQ(frames.piece(250, 80).size(), 2U * 50) << "up to the end of the memory";
    EXPECT_EQ(frames.piece(300, 80).size(), 2U * 80);
}

TEST(QueuedFramesTest, ClearingSilencesTheseFramesAndNoOthers)
{
    QueuedFrames frames;
    frames.resize(100);
    number(frames, 250, 350);
    frames.clear(280, 320);
    EXPECT_EQ(frames.piece(279, 1)[0], 279.0F);
    for (std::int64_t frame = 280; frame < 320; ++frame) {
        ASSERT_EQ(frames.piece(frame, 1)[1], 0.0F) << frame;
    }
    EXPECT_EQ(frames.piece(320, 1)[0], 320.0F);

    frames.clear(0, 1'000'000'000'000);  // far more than it remembers, at once
    EXPECT_EQ(frames.piece(349, 1)[0], 0.0F);
}

TEST(QueuedFramesTest, FadeFallsSteadilyFromTheFirstFrameToSilence)
{
    QueuedFrames frames;
    frames.resize(100);
    for (std::int64_t frame = 250; frame < 350; ++frame) {
        frames.piece(frame, 1)[0] = 1.0F;
    }
    frames.fadeOut(270, 330, 340);
    EXPECT_EQ(frames.piece(269, 1)[0], 1.0F);
    float before = 1.0F;
    for (std::int64_t frame = 270; frame < 330; ++frame) {
        const float level = frames.piece(frame, 1)[0];
        EXPECT_LT(level, before);
        EXPECT_LT(before - level, 0.03F) << "no step: half a turn in 60 frames";
        before = level;
    }
    EXPECT_EQ(before, 0.0F);
    EXPECT_EQ(frames.piece(330, 1)[0], 0.0F);
    EXPECT_EQ(frames.piece(339, 1)[0], 0.0F);
    EXPECT_EQ(frames.piece(340, 1)[0], 1.0F);
}

}  // namespace

}  // namespace tonvale::test
