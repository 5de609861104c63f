// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {
namespace {

Array<float> randomValues(int count, unsigned seed)
{
    Array<float> values(count);
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> value(-1, 1);
    for (float& v : values) {
        v = value(generator);
    }
    return values;
}

TEST(VectorKernelsTest, SanitisedValuesAreFiniteAndBounded)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const std::array<float, 6> in{0.5F, std::nanf(""), infinity, -infinity, 1e30F, -1e30F};
    std::array<float, 6> out{};
    kernels::sanitise(in.data(), 6, out.data());
    EXPECT_EQ(out, (std::array<float, 6>{0.5F, 0, 0, 0, 65536, -65536}));
}

TEST(VectorKernelsTest, ProductsAreSetAddedAndSubtracted)
{
    const std::array<float, 2> a{2, -3};
    const std::array<float, 2> b{4, 5};
    std::array<float, 2> out{};
    kernels::multiply(a.data(), b.data(), 2, out.data());
    EXPECT_EQ(out, (std::array<float, 2>{8, -15}));
    kernels::multiplyAdd(a.data(), b.data(), 2, out.data());
    EXPECT_EQ(out, (std::array<float, 2>{16, -30}));
    kernels::multiplySubtract(a.data(), a.data(), 2, out.data());
    EXPECT_EQ(out, (std::array<float, 2>{12, -39}));
}

TEST(VectorKernelsTest, MaximaExceedTwoNeighboursOnBothSides)
{
    const std::array<float, 12> power{0, 1, 3, 2, 1, 5, 5, 1, 0, 2, 1, 0};
    std::array<std::uint8_t, 12> flags{};
    kernels::flagMaxima(power.data(), 2, 10, 0.5F, flags.data());
    EXPECT_EQ(flags, (std::array<std::uint8_t, 12>{0, 0, 1, 0, 0, 1, 0, 0, 0, 1, 0, 0}));
    flags = {};
    kernels::flagMaxima(power.data(), 2, 10, 4, flags.data());
    EXPECT_EQ(flags[2], 0) << "below the floor";
}

TEST(VectorKernelsTest, AmplitudeRatiosAreClampedBetweenTheLimits)
{
    const std::array<float, 4> before{0, 0.1225F, 1, 4};
    const std::array<float, 4> now{1, 1, 1, 0};
    std::array<float, 4> share{};
    kernels::amplitudeRatios(before.data(), now.data(), 1, 0.3F, 0.4F, 4, share.data());
    EXPECT_EQ(share[0], 0);
    EXPECT_NEAR(share[1], 0.5F, 1e-5F);
    EXPECT_EQ(share[2], 1);
    EXPECT_EQ(share[3], 1) << "silence now: nothing is new";
}

TEST(VectorKernelsTest, RunsOfAnyLengthGoWhereTheyShouldAndNowhereElse)
{
    constexpr int size = 64;
    constexpr int pad = kernels::overrun;
    const Array<float> real = randomValues(size + 2 * pad, 2);
    const Array<float> imaginary = randomValues(size + 2 * pad, 3);
    for (int length = 0; length <= 20; ++length) {
        const kernels::BinRun run{
            10, 10 + length, 5, {0.1F, 0.2F, 0.7F, -0.3F, 0.4F, 0.5F, -0.6F, 0.2F, 0.3F, 0.8F}};
        Array<float> outReal(size + 2 * pad);
        Array<float> outImaginary(size + 2 * pad);
        kernels::shiftRuns(&run, 1, real.data() + pad, imaginary.data() + pad, outReal.data() + pad,
                           outImaginary.data() + pad);
        for (int k = 0; k < size; ++k) {
            float expectedReal = 0;
            float expectedImaginary = 0;
            if (k >= 15 && k < 15 + length) {
                for (int tap = 0; tap < kernels::tapCount; ++tap) {
                    const int source = pad + k - 5 + kernels::tapCount / 2 - tap;
                    const float a = run.taps[2 * tap];
                    const float b = run.taps[2 * tap + 1];
                    expectedReal += a * real[source] - b * imaginary[source];
                    expectedImaginary += a * imaginary[source] + b * real[source];
                }
            }
            EXPECT_NEAR(outReal[pad + k], expectedReal, 2e-6F) << length << " " << k;
            EXPECT_NEAR(outImaginary[pad + k], expectedImaginary, 2e-6F) << length << " " << k;
        }
    }
}

TEST(VectorKernelsTest, FilterIsTheSumOfProducts)
{
    const Array<float> taps = randomValues(12, 5);
    for (const int count : {1, 31, 32, 37, 64, 100}) {
        const Array<float> in = randomValues(count + 11, 4);
        Array<float> out(count);
        kernels::filter(in.data(), taps.data(), 12, count, out.data());
        for (int i = 0; i < count; ++i) {
            float sum = 0;
            for (int k = 0; k < 12; ++k) {
                sum += taps[k] * in[i + k];
            }
            EXPECT_NEAR(out[i], sum, 1e-5F);
        }
    }
}

TEST(VectorKernelsTest, RowsAreInterleaved)
{
    const Array<float> rows = randomValues(8 * 50, 6);
    for (const int rowCount : {1, 2, 4, 8}) {
        Array<float> out(37 * rowCount);
        kernels::interleaveRows(rows.data(), 50, rowCount, 37, out.data());
        for (int i = 0; i < out.size(); ++i) {
            EXPECT_EQ(out[i], rows[i % rowCount * 50 + i / rowCount]);
        }
    }
}

// The arrays of these tests are as long as the loops may reach: see GuardedMemory.h.
constexpr std::array<int, 6> counts{0, 1, 7, 8, 13, 40};

TEST(VectorKernelsTest, ElementwiseLoopsTakeAllOfTheirCountAndNoMore)
{
    for (const int count : counts) {
        const Array<float> a = randomValues(count, 7);
        const Array<float> b = randomValues(count, 8);
        const Array<float> before = randomValues(count, 9);
        Array<float> product(count);
        Array<float> more = randomValues(count, 9);
        Array<float> less = randomValues(count, 9);
        Array<float> sum = randomValues(count, 9);
        Array<float> same(count);
        kernels::multiply(a.data(), b.data(), count, product.data());
        kernels::multiplyAdd(a.data(), b.data(), count, more.data());
        kernels::multiplySubtract(a.data(), b.data(), count, less.data());
        kernels::add(a.data(), count, sum.data());
        kernels::sanitise(a.data(), count, same.data());
        for (int i = 0; i < count; ++i) {
            EXPECT_EQ(product[i], a[i] * b[i]);
            EXPECT_EQ(more[i], before[i] + a[i] * b[i]);
            EXPECT_EQ(less[i], before[i] - a[i] * b[i]);
            EXPECT_EQ(sum[i], before[i] + a[i]);
            EXPECT_EQ(same[i], a[i]);
        }
    }
}

TEST(VectorKernelsTest, AnglesAndTheirSinesAreThoseOfEveryPoint)
{
    for (const int count : counts) {
        const Array<float> x = randomValues(count, 10);
        const Array<float> y = randomValues(count, 11);
        Array<float> angle(count);
        Array<float> sine(count);
        Array<float> cosine(count);
        kernels::angles(y.data(), x.data(), count, angle.data());
        kernels::sinesAndCosines(angle.data(), count, sine.data(), cosine.data());
        for (int i = 0; i < count; ++i) {
            EXPECT_NEAR(angle[i], std::atan2(y[i], x[i]), 2e-6F);
            EXPECT_NEAR(sine[i], y[i] / std::hypot(x[i], y[i]), 4e-6F);
            EXPECT_NEAR(cosine[i], x[i] / std::hypot(x[i], y[i]), 4e-6F);
        }
    }
}

TEST(VectorKernelsTest, SumsOfThreeLeaveBothEndsAlone)
{
    for (const int count : {3, 9, 20}) {
        const Array<float> a = randomValues(count, 12);
        Array<float> out(count);
        kernels::sumOfThree(a.data(), count, out.data());
        EXPECT_EQ(out[0], 0);
        EXPECT_EQ(out[count - 1], 0);
        for (int i = 1; i < count - 1; ++i) {
            EXPECT_EQ(out[i], a[i - 1] + a[i] + a[i + 1]);
        }
    }
}

TEST(VectorKernelsTest, MaximaAreLookedForInTheirRangeOnly)
{
    Array<float> power(14);
    Array<std::uint8_t> flags(14);
    flags.fill(7);
    for (const int peak : {2, 6, 11}) {
        power[peak] = 1;
    }
    kernels::flagMaxima(power.data(), 3, 11, 0, flags.data());
    for (int k = 0; k < 14; ++k) {
        EXPECT_EQ(flags[k], k < 3 || k >= 11 ? 7 : k == 6 ? 1 : 0) << k;
    }
}

TEST(VectorKernelsTest, RatiosAreTakenOfAmplitudesAfterTheScale)
{
    for (const int count : {1, 9}) {
        Array<float> before(count);
        Array<float> now(count);
        Array<float> share(count);
        before.fill(0.5F);
        now.fill(2);
        kernels::amplitudeRatios(before.data(), now.data(), 1.44F, 0.5F, 0.9F, count, share.data());
        for (const float each : share) {
            EXPECT_NEAR(each, (0.6F - 0.5F) / 0.4F, 1e-5F);
        }
    }
}

TEST(VectorKernelsTest, DecimationReachesAsFarAsItsTaps)
{
    constexpr int pairs = 3;
    constexpr int reach = 2 * pairs - 1;
    const Array<float> taps = randomValues(pairs, 13);
    for (const int count : {1, 8, 21}) {
        const Array<float> in = randomValues(2 * reach + 2 * count - 1, 14);
        Array<float> out(count);
        kernels::halfBandDecimate(in.data() + reach, taps.data(), pairs, count, out.data());
        for (int j = 0; j < count; ++j) {
            const int middle = reach + 2 * j;
            float expected = 0.5F * in[middle];
            for (int p = 0; p < pairs; ++p) {
                expected += taps[p] * (in[middle - 2 * p - 1] + in[middle + 2 * p + 1]);
            }
            EXPECT_NEAR(out[j], expected, 1e-6F);
        }
    }
}

}  // namespace
}  // namespace tonvale::timepitch
