// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Loudspeakers.h"

#include <gtest/gtest.h>

namespace tonvale {
namespace {

TEST(Loudspeakers, StandWhereAMaskForAsManyChannelsSays)
{
    EXPECT_EQ(loudspeakersFor(1, 0x004), 0x004U);
    EXPECT_EQ(loudspeakersFor(2, 0x600), 0x600U);
    EXPECT_EQ(loudspeakersFor(4, 0x033), 0x033U);
    EXPECT_EQ(loudspeakersFor(18, 0x3FFFF), 0x3FFFFU) << "all there are";
}

TEST(Loudspeakers, StandInTheUsualPlacesWhereAMaskDoesNotFit)
{
    EXPECT_EQ(loudspeakersFor(4, 0x007), 0x107U) << "a loudspeaker too few";
    EXPECT_EQ(loudspeakersFor(4, 0x037), 0x107U) << "one too many";
    EXPECT_EQ(loudspeakersFor(3, 0x40003), 0x00BU) << "at a place that has no name";
}

TEST(Loudspeakers, OfOneAndTwoChannelsNeedNoPlaces)
{
    EXPECT_EQ(loudspeakersFor(1, 0), 0U);
    EXPECT_EQ(loudspeakersFor(2, 0), 0U);
}

TEST(Loudspeakers, HaveUsualPlacesForThreeToEightChannels)
{
    for (std::uint32_t count = 3; count <= 8; ++count) {
        const std::uint32_t mask = loudspeakersFor(count, 0);
        EXPECT_EQ(loudspeakersFor(count, mask), mask) << count;
        EXPECT_EQ(mask & 3U, 3U) << count << ": left and right are always there";
    }
    EXPECT_EQ(loudspeakersFor(9, 0), 0U);
    EXPECT_EQ(loudspeakersFor(64, 0), 0U);
}

}  // namespace
}  // namespace tonvale
