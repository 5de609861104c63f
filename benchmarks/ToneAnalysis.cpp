// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "ToneAnalysis.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace tonvale::benchmarks {

double decibels(double ratio)
{
    return 20 * std::log10(std::max(ratio, 1e-9));
}

std::size_t firstSound(const Samples& sound, double from)
{
    auto frame = static_cast<std::size_t>(std::max(0.0, from));
    while (frame < sound.size() && sound[frame] == 0.0F) {
        ++frame;
    }
    return frame;
}

std::size_t endOfSound(const Samples& sound)
{
    std::size_t end = sound.size();
    while (end > 0 && sound[end - 1] == 0.0F) {
        --end;
    }
    return end;
}

std::size_t strongest(const Samples& sound, double from, double count)
{
    const auto first = sound.begin() + static_cast<std::ptrdiff_t>(from);
    const auto place =
        std::max_element(first, first + static_cast<std::ptrdiff_t>(count),
                         [](float left, float right) { return std::abs(left) < std::abs(right); });
    return static_cast<std::size_t>(place - sound.begin());
}

double levelAt(const Samples& sound, double centre, std::size_t size, double frequency)
{
    const auto first = static_cast<std::size_t>(centre) - size / 2;
    std::complex<double> sum = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const double x = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(size);
        // Blackman-Harris: what is elsewhere in the spectrum stays 92 dB down.
        const double window =
            0.35875 - 0.48829 * std::cos(x) + 0.14128 * std::cos(2 * x) - 0.01168 * std::cos(3 * x);
        const double turns = frequency * static_cast<double>(i) / deviceRate;
        sum += window * double{sound[first + i]} * std::polar(1.0, 2 * std::numbers::pi * turns);
    }
    return 2 * std::abs(sum) / (0.35875 * static_cast<double>(size));
}

double clickIn(const Samples& sound, double level, double from, double to)
{
    constexpr std::size_t size = 512;
    double worst = 0;
    for (double centre = from; centre < to; centre += size / 4) {
        for (double frequency = 3000; frequency < 20000; frequency += 2 * deviceRate / size) {
            worst = std::max(worst, levelAt(sound, centre, size, frequency));
        }
    }
    return decibels(worst / level);
}

double dipIn(const Samples& sound, double level, double from, double to)
{
    constexpr std::size_t size = 960;
    double least = 1e9;
    for (double first = from; first < to; first += size / 20) {
        double power = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const double window =
                1 - std::cos(2 * std::numbers::pi * static_cast<double>(i) / size);
            const double sample = double{sound[static_cast<std::size_t>(first) + i]};
            power += window * sample * sample;
        }
        least = std::min(least, power / size);
    }
    return decibels(std::sqrt(2 * least) / level);
}

}  // namespace tonvale::benchmarks
