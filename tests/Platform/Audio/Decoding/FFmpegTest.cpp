// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/FFmpeg.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>

namespace tonvale::test {

namespace {

TEST(FFmpegTest, ErrorsAreSaidInTheLibrarysOrTheSystemsWords)
{
    EXPECT_EQ(decoderError(invalidDataError).errorDescription(),
              "Invalid data found when processing input");
    EXPECT_EQ(decoderError(errorFromErrno(ENOENT)).errorDescription(), "No such file or directory");
}

TEST(FFmpegTest, FramesToDropStandInTheSecondFourBytes)
{
    constexpr std::array<std::uint8_t, 10> data = {9, 9, 9, 9, 0x04, 0x03, 0x02, 0x81, 9, 9};
    EXPECT_EQ(endDiscardOf(data.data(), data.size()), 0x81020304);
    EXPECT_EQ(endDiscardOf(data.data(), 8), 0x81020304);
    EXPECT_EQ(endDiscardOf(data.data(), 7), 0) << "cut off";
    EXPECT_EQ(endDiscardOf(nullptr, 10), 0);
}

AVChannelLayout unnamed(int channelCount)
{
    AVChannelLayout layout = {};
    layout.nb_channels = channelCount;
    return layout;
}

TEST(FFmpegTest, ChannelsWithoutNamesGetTheUsualOnes)
{
    AVChannelLayout stereo = {};
    av_channel_layout_default(&stereo, 2);
    EXPECT_TRUE(ChannelLayout(unnamed(2)).isSameAs(ChannelLayout(stereo)));
    EXPECT_EQ(ChannelLayout(unnamed(2)).get()->order, AV_CHANNEL_ORDER_NATIVE);
    EXPECT_FALSE(ChannelLayout(unnamed(1)).isSameAs(ChannelLayout(stereo)));
    EXPECT_FALSE(ChannelLayout(stereo).isSameAs(ChannelLayout(unnamed(6))));
}

}  // namespace

}  // namespace tonvale::test
