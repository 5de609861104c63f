// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/AudioPCMBuffer.h"

#include <gtest/gtest.h>

#include <limits>

namespace tonvale {
namespace {

TEST(AudioPCMBuffer, StartsEmptyAndSilentWithRoomForItsCapacity)
{
    const auto buffer = AudioPCMBuffer::create({48000, 3}, 100);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(buffer->format(), (AudioFormat{48000, 3}));
    EXPECT_EQ(buffer->frameCapacity(), 100U);
    EXPECT_EQ(buffer->frameLength(), 0U);
    for (std::uint32_t channel = 0; channel < 3; ++channel) {
        ASSERT_EQ(buffer->channel(channel).size(), 100U);
        for (const float sample : buffer->channel(channel)) {
            EXPECT_EQ(sample, 0.0F);
        }
    }
}

TEST(AudioPCMBuffer, KeepsItsChannelsApart)
{
    const auto buffer = AudioPCMBuffer::create({48000, 2}, 4);
    buffer->channel(0)[3] = 1.0F;
    buffer->channel(1)[0] = 2.0F;
    EXPECT_EQ(buffer->channel(0)[3], 1.0F);
    EXPECT_EQ(buffer->channel(0)[0], 0.0F);
    buffer->silence(0, 1);
    EXPECT_EQ(buffer->channel(1)[0], 0.0F);
    EXPECT_EQ(buffer->channel(0)[3], 1.0F);
}

TEST(AudioPCMBuffer, CannotBeCreatedInAnImpossibleFormat)
{
    EXPECT_EQ(AudioPCMBuffer::create({48000, 0}, 4), nullptr);
    EXPECT_EQ(AudioPCMBuffer::create({48000, 65}, 4), nullptr);
    EXPECT_EQ(AudioPCMBuffer::create({0, 2}, 4), nullptr);
    EXPECT_EQ(AudioPCMBuffer::create({std::numeric_limits<double>::infinity(), 2}, 4), nullptr);
    EXPECT_EQ(AudioPCMBuffer::create({48000, 2}, 0), nullptr);
}

TEST(AudioPCMBufferDeathTest, AbortsOutsideItsBounds)
{
    const auto buffer = AudioPCMBuffer::create({48000, 2}, 4);
    EXPECT_EXIT(buffer->setFrameLength(5), ::testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT((void)buffer->channel(2), ::testing::KilledBySignal(SIGABRT), "");
}

}  // namespace
}  // namespace tonvale
