// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/Numbers.h"
#include "Platform/Audio/TimePitch/RealFft.h"

namespace tonvale::timepitch {
namespace {

/// Bins from `first` on of random samples, against the definition.
void expectDefinition(int size, int first)
{
    RealFft fft(size);
    std::mt19937 generator(7);
    std::uniform_real_distribution<float> value(-1, 1);
    for (int n = 0; n < size; ++n) {
        fft.samples()[n] = value(generator);
    }
    const int count = fft.binCount() - first;
    Array<float> real(count);
    Array<float> imaginary(count);
    Array<float> power(count);
    power.fill(1);
    fft.forward(first, count, real.data(), imaginary.data(), power.data());
    for (int i = 0; i < count; ++i) {
        double idealReal = 0;
        double idealImaginary = 0;
        for (int n = 0; n < size; ++n) {
            const double angle = twoPi * (first + i) * n / size;
            idealReal += static_cast<double>(fft.samples()[n]) * std::cos(angle);
            idealImaginary -= static_cast<double>(fft.samples()[n]) * std::sin(angle);
        }
        EXPECT_NEAR(real[i], idealReal, 1e-5) << size << " " << first;
        EXPECT_NEAR(imaginary[i], idealImaginary, 1e-5) << size << " " << first;
        EXPECT_NEAR(power[i], 1 + real[i] * real[i] + imaginary[i] * imaginary[i], 1e-4);
    }
}

TEST(RealFftTest, ForwardIsTheDefinition)
{
    for (const int size : {2, 6, 46, 48}) {  // also without a whole vector, and of odd halves
        for (const int first : {0, 1, 5}) {
            if (first <= size / 2) {
                expectDefinition(size, first);
            }
        }
    }
}

TEST(RealFftTest, InverseOfForwardIsSizeTimesTheInput)
{
    for (const int size : {30, 1296, 1728, 2048, 5184}) {
        RealFft fft(size);
        for (int n = 0; n < size; ++n) {
            fft.samples()[n] = static_cast<float>(std::sin(0.01 * n * n));
        }
        Array<float> real(fft.binCount());
        Array<float> imaginary(fft.binCount());
        Array<float> power(fft.binCount());
        fft.forward(0, fft.binCount(), real.data(), imaginary.data(), power.data());
        std::fill_n(fft.samples(), size, 0.0F);
        fft.inverse(real.data(), imaginary.data());
        for (int n = 0; n < size; ++n) {
            EXPECT_NEAR(fft.samples()[n] / static_cast<float>(size), std::sin(0.01 * n * n), 1e-5);
        }
    }
}

TEST(RealFftTest, ManyThreadsMayPlanAtOnce)
{
    std::vector<std::thread> threads;
    std::vector<float> results(4);
    for (std::size_t index = 0; index < results.size(); ++index) {
        threads.emplace_back([&results, index] {
            for (int round = 1; round <= 20; ++round) {
                RealFft fft(64 * round);
                std::fill_n(fft.samples(), fft.size(), 1.0F);
                float dc[3] = {};
                fft.forward(0, 1, &dc[0], &dc[1], &dc[2]);
                results[index] += dc[0];
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const float result : results) {
        EXPECT_EQ(result, 64.0F * 20 * 21 / 2);
    }
}

}  // namespace
}  // namespace tonvale::timepitch
