// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/FadeIn.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace tonvale {
namespace {

constexpr std::uint32_t swell = 240;  // 5 ms at 48 kHz

std::vector<float> gainsOf(FadeIn& fade, std::uint32_t frames, std::uint32_t blockFrames)
{
    const auto buffer = AudioPCMBuffer::create({48000, 2}, blockFrames);
    std::vector<float> gains;
    while (gains.size() < frames) {
        buffer->setFrameLength(blockFrames);
        std::ranges::fill(buffer->channel(0), 1.0F);
        std::ranges::fill(buffer->channel(1), 1.0F);
        fade.process(*buffer);
        EXPECT_TRUE(std::ranges::equal(buffer->channel(0), buffer->channel(1)));
        gains.insert(gains.end(), buffer->channel(0).begin(), buffer->channel(0).end());
    }
    return gains;
}

TEST(FadeIn, SwellsSmoothlyForFiveMillisecondsAndIsGoneThen)
{
    FadeIn fade;
    fade.begin(48000);
    const std::vector<float> gains = gainsOf(fade, 480, 100);
    EXPECT_LT(gains[0], 0.0001F);
    EXPECT_LT(gains[swell - 1], 1.0F);
    EXPECT_NEAR(gains[swell / 2], 0.5F, 0.01F);
    for (std::size_t frame = 1; frame < swell; ++frame) {
        ASSERT_GT(gains[frame], gains[frame - 1]);
        ASSERT_LT(gains[frame] - gains[frame - 1], 0.007F);
    }
    EXPECT_TRUE(
        std::all_of(gains.begin() + swell, gains.end(), [](float gain) { return gain == 1.0F; }));
}

TEST(FadeIn, DoesNothingToASongThatStartsAtItsBeginning)
{
    FadeIn fade;
    fade.begin(48000);
    fade.skip();
    EXPECT_EQ(gainsOf(fade, 480, 480), std::vector<float>(480, 1.0F));
}

TEST(FadeIn, SwellsAgainWhenBegunAgain)
{
    FadeIn fade;
    fade.begin(48000);
    const std::vector<float> first = gainsOf(fade, 480, 480);
    fade.begin(48000);
    EXPECT_EQ(gainsOf(fade, 480, 480), first);
}

}  // namespace
}  // namespace tonvale
