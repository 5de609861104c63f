// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <vector>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/AudibleSpan.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/OverlapRing.h"

namespace tonvale::timepitch {
namespace {

class AudibleSpanTest : public testing::Test {
protected:
    AudibleSpanTest()
        : layer_(makeGeometry(44100).layers[1])
        , windows_(layer_)
        , gain_(layer_, windows_)
    {
    }

    /// Sum of the windows of frames first ... last (references, frames) at `position`.
    [[nodiscard]] float windowSum(Frames first, Frames last, Frames position) const
    {
        float sum = 0;
        for (Frames frame = first; frame <= last; frame += layer_.hop) {
            const Frames index = position - frame + layer_.release;
            sum += index >= 0 && index < 2 * layer_.release ? windows_.product()[index] : 0;
        }
        return sum;
    }
    [[nodiscard]] std::vector<float> gains(const AudibleSpan& span, Frames position,
                                           int count) const
    {
        std::vector<float> values(static_cast<std::size_t>(count));
        gain_.compute(span, position, count, values.data());
        return values;
    }

    LayerGeometry layer_;
    LayerWindows windows_;
    SpanGain gain_;
};

TEST_F(AudibleSpanTest, OpenSpanIsPlainAndHasUnityGain)
{
    const AudibleSpan open;
    EXPECT_TRUE(gain_.isPlain(open, 0, 512));
    for (const float gain : gains(open, 1234, 512)) {
        EXPECT_NEAR(gain, 1, 1e-5F);
    }
}

TEST_F(AudibleSpanTest, TwoNeighbourSpansAddUpToOneAroundTheBorder)
{
    constexpr Frames change = 20 * 1024;
    const Frames border = change - layer_.hop / 2;
    const AudibleSpan before{AudibleSpan::openBegin, change - layer_.hop, AudibleSpan::openBegin,
                             border};
    const AudibleSpan after{change, AudibleSpan::openEnd, border, AudibleSpan::openEnd};
    const Frames start = border - 2048;
    const std::vector<float> a = gains(before, start, 4096);
    const std::vector<float> b = gains(after, start, 4096);
    for (Frames i = 0; i < 4096; ++i) {
        const auto index = static_cast<std::size_t>(i);
        const float level = a[index] * windowSum(0, change - layer_.hop, start + i)
                            + b[index] * windowSum(change, 2 * change, start + i);
        EXPECT_NEAR(level, 1, 1e-4F) << i;
    }
    EXPECT_FALSE(gain_.isPlain(before, border - 1000, 512));
    EXPECT_FALSE(gain_.isPlain(after, border + 1000, 512));
    EXPECT_TRUE(gain_.isPlain(after, border + 4096, 512));
}

TEST_F(AudibleSpanTest, EndsAreIntegratedHannWindowsOfThreeMilliseconds)
{
    constexpr Frames half = 66;
    const AudibleSpan span{AudibleSpan::openBegin, AudibleSpan::openEnd, 20000, 24000};
    const std::vector<float> start = gains(span, 19900, 200);
    const std::vector<float> end = gains(span, 23900, 200);
    for (Frames i = 0; i < 200; ++i) {
        const auto index = static_cast<std::size_t>(i);
        const double fromStart = static_cast<double>(19900 + i - 20000 + half) / (2 * half);
        const double toEnd = static_cast<double>(24000 + half - 23900 - i) / (2 * half);
        EXPECT_NEAR(static_cast<double>(start[index]), hannRise(fromStart), 1e-6) << i;
        EXPECT_NEAR(static_cast<double>(end[index]), hannRise(toEnd), 1e-6) << i;
    }
}

TEST_F(AudibleSpanTest, BlocksArePlainWhereNeitherFrameNorFadeIsMissing)
{
    // Frames reach 2048 to both sides, fades 66.
    const AudibleSpan span{20480, 40960, 20000, 40000};
    EXPECT_FALSE(gain_.isPlain(span, 20000 + 2114, 512));
    EXPECT_TRUE(gain_.isPlain(span, 20000 + 2115, 512));
    EXPECT_TRUE(gain_.isPlain(span, 40000 - 2115 - 512, 512));
    EXPECT_FALSE(gain_.isPlain(span, 40000 - 2114 - 512, 512));
}

TEST_F(AudibleSpanTest, SilentBlocksAreThoseWhoseGainsAreAllZero)
{
    const AudibleSpan span{20480, 24576, 20000, 24000};
    for (Frames position = 18000; position < 26000; position += 64) {
        bool isSilent = true;
        for (const float gain : gains(span, position, 512)) {
            isSilent = isSilent && gain == 0;
        }
        EXPECT_EQ(gain_.isSilent(span, position, 512), isSilent) << position;
    }
}

TEST_F(AudibleSpanTest, MissingFramesAreMadeUpForButNotWithoutLimit)
{
    std::vector<float> gains(1024);
    gain_.computeCover(0, AudibleSpan::openEnd, -1536, 1024, gains.data());
    EXPECT_NEAR(gains.front(), 1 / 0.3F, 1e-4F) << "hardly any window there";
    const float sum = windowSum(0, 10240, -1536 + 1023);
    EXPECT_NEAR(gains.back(), 1 / sum, 1e-4F);
}

TEST(OverlapRingTest, AddsWrapsReadsAndErases)
{
    OverlapRing ring(2, 64, 2);  // 32 samples per channel
    const std::vector<float> ones(20, 1.0F);
    const std::vector<float> window(20, 0.5F);
    ring.add(1, 40, ones.data(), window.data(), 20);  // low-rate positions 20 ... 39
    ring.add(1, 60, ones.data(), window.data(), 5);   // 30 ... 34
    std::vector<float> out(24);
    ring.read(1, 18, 24, out.data());
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::size_t position = 18 + i;
        const float once = position >= 20 && position < 40 ? 0.5F : 0;
        const float twice = position >= 30 && position < 35 ? 0.5F : 0;
        EXPECT_EQ(out[i], once + twice) << position;
    }
    ring.erase(40, 20);  // 20 ... 29
    ring.read(1, 20, 12, out.data());
    EXPECT_EQ(out[9], 0);
    EXPECT_EQ(out[10], 1);
    ring.read(0, 20, 12, out.data());
    EXPECT_EQ(out[10], 0) << "the other channel is untouched";
}

TEST(OverlapRingTest, PositionsBeforeTheStartOfTheStreamWork)
{
    OverlapRing ring(1, 64, 1);
    const std::vector<float> ones(10, 1.0F);
    ring.add(0, -5, ones.data(), ones.data(), 10);
    std::vector<float> out(12);
    ring.read(0, -6, 12, out.data());
    EXPECT_EQ(out[0], 0);
    EXPECT_EQ(out[1], 1);
    EXPECT_EQ(out[10], 1);
    EXPECT_EQ(out[11], 0);
}

}  // namespace
}  // namespace tonvale::timepitch
