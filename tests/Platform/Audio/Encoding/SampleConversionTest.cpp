// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Encoding/SampleConversion.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace tonvale {
namespace {

std::int16_t convert(float sample)
{
    std::int16_t result = 12345;
    convertToInt16(std::array{sample}, &result, 1);
    return result;
}

TEST(SampleConversion, GivesEvery16BitSampleBack)
{
    for (int value = -32768; value <= 32767; ++value) {
        ASSERT_EQ(convert(static_cast<float>(value) / 32768.0F), value);
    }
}

TEST(SampleConversion, RoundsToTheNearest)
{
    EXPECT_EQ(convert(0.4F / 32768.0F), 0);
    EXPECT_EQ(convert(0.6F / 32768.0F), 1);
    EXPECT_EQ(convert(-0.6F / 32768.0F), -1);
}

TEST(SampleConversion, SaturatesInsteadOfWrappingAround)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    for (const float loud : {1.0F, 1.0001F, 1.4F, 2.0F, 1e9F, 3e38F, infinity}) {
        EXPECT_EQ(convert(loud), 32767) << loud;
        EXPECT_EQ(convert(-loud), -32768) << loud;
    }
}

TEST(SampleConversion, MakesSilenceOfWhatIsNotANumber)
{
    EXPECT_EQ(convert(std::numeric_limits<float>::quiet_NaN()), 0);
    EXPECT_EQ(convert(std::numeric_limits<float>::denorm_min()), 0);
}

TEST(SampleConversion, LeavesTheOtherChannelsOfAnInterleavedBlockAlone)
{
    std::vector<std::int16_t> block(6, 7);
    convertToInt16(std::array{0.5F, -0.5F}, block.data() + 1, 3);
    EXPECT_EQ(block, (std::vector<std::int16_t>{7, 16384, 7, 7, -16384, 7}));
}

}  // namespace
}  // namespace tonvale
