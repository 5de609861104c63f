// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/BlockAssembler.h"
#include "Platform/Audio/TimePitch/DirectPath.h"
#include "TestSignals.h"

namespace tonvale::timepitch {
namespace {

constexpr int block = 64;

/// A direct path over an input of 1 in the first channel and 2 in the second, into an output of 5.
class DirectPathTest : public testing::Test {
protected:
    DirectPathTest()
    {
        for (const unsigned channel : {0U, 1U}) {
            std::fill_n(input_.tail(channel), 2 * block, static_cast<float>(channel + 1));
        }
        input_.commit(2 * block);
    }

    [[nodiscard]] test::Signal heard(const std::vector<int>& borders) const
    {
        test::Signal out(2, test::Channel(block, 5));
        const std::array<float*, 2> pointers{out[0].data(), out[1].data()};
        for (std::size_t index = 0; index + 1 < borders.size(); ++index) {
            path_.process(input_, {block, borders[index], borders[index + 1]}, pointers);
        }
        return out;
    }
    void expectCrossfade(bool toInput) const
    {
        const test::Signal out = heard({0, block});
        for (int i = 0; i < block; ++i) {
            const auto index = static_cast<std::size_t>(i);
            const double rise = raisedCosine((i + 0.5) / block);
            const double part = toInput ? rise : 1 - rise;
            EXPECT_NEAR(static_cast<double>(out[0][index]), 5 + part * (1 - 5), 1e-6) << i;
            EXPECT_NEAR(static_cast<double>(out[1][index]), 5 + part * (2 - 5), 1e-6) << i;
        }
        EXPECT_EQ(heard({0, 8, 16, 40, block}), out) << "however it is cut";
    }

    InputHistory input_{2, 4 * block, 2 * block};
    DirectPath path_{block, 2};
};

TEST_F(DirectPathTest, IsTheInputWhileItIsWantedAndNothingElse)
{
    path_.begin(true);
    EXPECT_EQ(heard({0, 32, block}),
              (test::Signal{test::Channel(block, 1), test::Channel(block, 2)}));
    path_.reset(false);
    EXPECT_EQ(heard({0, block}), test::Signal(2, test::Channel(block, 5)));
    path_.begin(false);
    EXPECT_EQ(heard({0, block}), test::Signal(2, test::Channel(block, 5)));
}

TEST_F(DirectPathTest, CrossfadesWithinABlockWhenTheDecisionChanges)
{
    path_.begin(false);
    expectCrossfade(false);
    path_.begin(false);
    EXPECT_EQ(heard({0, block}), test::Signal(2, test::Channel(block, 5)));
    path_.begin(true);
    expectCrossfade(true);
}

TEST(BlockAssemblerTest, CollectsSafeBlocksWhateverTheStepsAre)
{
    BlockAssembler assembler(2, 8);
    const test::Channel left{1, 2, 3, std::nanf(""), 5, 6, 7, 8, 9, 10};
    const test::Channel right{-1, -2, -3, -4, -5, -1e9F, -7, -8, -9, -10};
    const std::array<const float*, 2> in{left.data(), right.data()};
    EXPECT_EQ(assembler.push(in, 1, 3), 3);
    EXPECT_FALSE(assembler.isFull());
    EXPECT_EQ(assembler.push(in, 4, 6), 5) << "what fits";
    EXPECT_TRUE(assembler.isFull());
    const auto collected = [&assembler](int channel) {
        return test::Channel(assembler.channels()[channel], assembler.channels()[channel] + 8);
    };
    EXPECT_EQ(collected(0), (test::Channel{2, 3, 0, 5, 6, 7, 8, 9}));
    EXPECT_EQ(collected(1), (test::Channel{-2, -3, -4, -5, -65536, -7, -8, -9}));
    assembler.startNext();
    EXPECT_FALSE(assembler.isFull());
    EXPECT_EQ(assembler.push(in, 0, 1), 1);
    EXPECT_EQ(collected(0)[0], 1);
}

}  // namespace
}  // namespace tonvale::timepitch
