// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <cstdint>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/FrameParts.h"
#include "TestSignals.h"

namespace tonvale::timepitch {
namespace {

/// Frame 10 of the top layer (reference 5120, heard from 4096 to 6144) of noise that rose since
/// the frames before, which were silent.
class FramePartsTest : public testing::Test {
protected:
    FramePartsTest()
        : design_(makeGeometry(44100).layers[2])
        , input_(1, 16384, 64)
        , frames_(1, design_.binCount)
        , weights_(design_.binCount)
        , parts_(design_, 1)
        , sustained_(1, design_.binCount)
        , hit_(1, design_.binCount)
    {
        const test::Channel noise = test::noise(0.5, 8192, 1, 3)[0];
        for (std::size_t i = 0; i < noise.size(); i += 64) {
            std::copy_n(noise.begin() + static_cast<std::ptrdiff_t>(i), 64, input_.tail(0));
            input_.commit(64);
        }
        SpectrumFrame& frame = frames_.at(number);
        for (int k = 0; k < design_.binCount; ++k) {
            frame.spectra.real(0)[k] = static_cast<float>(k % 7) - 3;
            frame.spectra.imaginary(0)[k] = static_cast<float>(k % 5) - 2;
            frame.spreadPower[k] = 1;
        }
        weights_.fill(0.5F);
    }

    void divide(const OnsetContext& onsets)
    {
        parts_.divide(frames_, number, onsets, weights_, input_);
        parts_.makeSustained(frames_.at(number), sustained_);
        if (onsets.current != nullptr) {
            parts_.makeHit(frames_.at(number), hit_);
        }
    }
    [[nodiscard]] float weighed(int bin) const
    {
        return 0.5F * frames_.at(number).spectra.real(0)[bin];
    }

    static constexpr std::int64_t number = 10;
    LayerDesign design_;
    InputHistory input_;
    FrameHistory frames_;
    Array<float> weights_;
    FrameParts parts_;
    ChannelSpectra sustained_;
    ChannelSpectra hit_;
    const Onset early_{.position = 4700, .layers = 7, .number = 0, .remainder = {1, 1, 1}};
    const Onset late_{.position = 5600, .layers = 7, .number = 1, .remainder = {1, 1, 1}};
};

TEST_F(FramePartsTest, FrameWithoutOnsetsIsAllSustained)
{
    divide({});
    for (int k = design_.activeBegin; k < design_.activeEnd; ++k) {
        ASSERT_EQ(sustained_.real(0)[k], weighed(k));
    }
}

TEST_F(FramePartsTest, PartsBesideOneOnsetAddUpToTheFrame)
{
    divide({.current = &early_, .next = nullptr});
    float largest = 0;
    for (int k = design_.activeBegin; k < design_.activeEnd; ++k) {
        ASSERT_NEAR(sustained_.real(0)[k] + hit_.real(0)[k], weighed(k), 1e-4F);
        largest = std::max(largest, std::abs(sustained_.real(0)[k]));
    }
    EXPECT_GT(largest, 0.1F) << "what lies before the onset is heard";
}

TEST_F(FramePartsTest, WhatFollowsTheNextOnsetIsInNoPart)
{
    CutFrame before(design_, 1);
    before.analyse(number, late_.position, input_);
    divide({.current = nullptr, .next = &late_});
    for (int k = design_.activeBegin; k < design_.activeEnd; ++k) {
        ASSERT_NEAR(sustained_.real(0)[k], 0.5F * before.spectra().real(0)[k], 1e-4F);
    }
    divide({.current = &early_, .next = &late_});
    for (int k = design_.activeBegin; k < design_.activeEnd; ++k) {
        ASSERT_NEAR(sustained_.real(0)[k] + hit_.real(0)[k], 0.5F * before.spectra().real(0)[k],
                    1e-4F);
    }
}

TEST_F(FramePartsTest, BinsThatSoundOnPassWhole)
{
    constexpr int bin = 300;
    frames_.at(OnsetSplit::frameBefore(design_.geometry, early_)).spreadPower[bin] = 1;
    divide({.current = &early_, .next = nullptr});
    EXPECT_EQ(sustained_.real(0)[bin], weighed(bin));
    EXPECT_EQ(hit_.real(0)[bin], 0);
}

}  // namespace
}  // namespace tonvale::timepitch
