// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/StereoMix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace tonvale {
namespace {

using Gains = std::pair<float, float>;

/// What a 1 on `channel` alone becomes on the left and on the right.
Gains gainsOf(const AudioFormat& format, std::uint32_t channel)
{
    const auto buffer = AudioPCMBuffer::create(format, 1);
    buffer->setFrameLength(1);
    buffer->channel(channel)[0] = 1;
    std::array<float, 1> left{9};
    std::array<float, 1> right{9};
    StereoMix(format).mix(*buffer, left, right);
    return {left[0], right[0]};
}

void expectGains(const Gains& gains, float left, float right)
{
    EXPECT_NEAR(gains.first, left, 1e-6F);
    EXPECT_NEAR(gains.second, right, 1e-6F);
}

constexpr float half = 0.70710678F;
constexpr float most = 1 + 2 * half;  // a side of 5.1: front, centre and surround

TEST(StereoMix, LeavesOneAndTwoChannelsAlone)
{
    EXPECT_EQ(gainsOf({48000, 1}, 0), Gains(1, 1));
    EXPECT_EQ(gainsOf({48000, 1, 4}, 0), Gains(1, 1));
    EXPECT_EQ(gainsOf({48000, 2}, 0), Gains(1, 0));
    EXPECT_EQ(gainsOf({48000, 2, 0x600}, 1), Gains(0, 1));
}

TEST(StereoMix, MixesSurroundByWhereTheLoudspeakersStand)
{
    for (const std::uint32_t mask : {0U, 0x3FU, 0x60FU}) {
        const AudioFormat surround{96000, 6, mask};
        expectGains(gainsOf(surround, 0), 1 / most, 0);
        expectGains(gainsOf(surround, 1), 0, 1 / most);
        expectGains(gainsOf(surround, 2), half / most, half / most);
        expectGains(gainsOf(surround, 3), 0, 0);
        expectGains(gainsOf(surround, 4), half / most, 0);
        expectGains(gainsOf(surround, 5), 0, half / most);
    }
}

TEST(StereoMix, KnowsEveryLoudspeaker)
{
    // In the order of the mask's bits, behind front left and front right.
    const std::array<Gains, 16> expected{
        Gains{half, half}, {0, 0},    {half, 0},    {0, half},    {half, 0}, {0, half},
        {0.5F, 0.5F},      {half, 0}, {0, half},    {0.5F, 0.5F}, {half, 0}, {0.5F, 0.5F},
        {0, half},         {half, 0}, {0.5F, 0.5F}, {0, half}};
    for (std::uint32_t index = 0; index < expected.size(); ++index) {
        SCOPED_TRACE(index + 2);
        const AudioFormat format{48000, 3, 3U | 1U << (index + 2)};
        const auto [left, right] = expected[index];
        const float loudest = 1 + std::max(left, right);
        expectGains(gainsOf(format, 0), 1 / loudest, 0);
        expectGains(gainsOf(format, 1), 0, 1 / loudest);
        expectGains(gainsOf(format, 2), left / loudest, right / loudest);
    }
}

TEST(StereoMix, BelievesAMaskOnlyIfItNamesEveryChannel)
{
    expectGains(gainsOf({96000, 6, 0x7}, 2), half / most, half / most);
    expectGains(gainsOf({96000, 3, 0xB}, 2), 0, 0);
    expectGains(gainsOf({96000, 3, 0x7}, 2), half / (1 + half), half / (1 + half));
}

TEST(StereoMix, NeverExceedsFullScale)
{
    for (std::uint32_t channelCount = 1; channelCount <= 64; ++channelCount) {
        const AudioFormat format{48000, channelCount};
        Gains sum;
        for (std::uint32_t channel = 0; channel < channelCount; ++channel) {
            const auto [left, right] = gainsOf(format, channel);
            sum.first += left;
            sum.second += right;
        }
        EXPECT_NEAR(sum.first, 1, 1e-5F) << channelCount;
        EXPECT_NEAR(sum.second, 1, 1e-5F) << channelCount;
    }
}

}  // namespace
}  // namespace tonvale
