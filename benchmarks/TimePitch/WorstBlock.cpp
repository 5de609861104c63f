// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <random>
#include <vector>

#include "Platform/Audio/TimePitch/PitchShifter.h"

/// Prints how long one call of process() takes at worst, as a multiple of the block's duration.
///
/// The same three seconds (tones, noise, hits, a change of pitch now and then) run several times;
/// the work of a call is the same each time, so its shortest time is what it costs and the longest
/// of those is the worst. CPU time of the thread: other programs do not count.
namespace tonvale::timepitch {
namespace {

constexpr double seconds = 3;
constexpr int runs = 7;

double threadSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

std::vector<float> makeMaterial(double rate)
{
    std::mt19937 generator(1);
    std::uniform_real_distribution<double> noise(-0.05, 0.05);
    std::vector<float> samples(static_cast<std::size_t>(seconds * rate));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double t = static_cast<double>(i) / rate;
        double sum = noise(generator) * (1 + 8 * std::exp(-std::fmod(t, 0.13) / 0.03));
        for (int harmonic = 1; harmonic < 20; ++harmonic) {
            sum += 0.1 * std::sin(6.283185307 * 110 * harmonic * t) / harmonic;
        }
        samples[i] = static_cast<float>(sum);
    }
    return samples;
}

void measure(double rate, unsigned block, const std::vector<float>& material)
{
    std::vector<double> shortest(material.size() / block, 1e9);
    std::vector<float> left(block);
    std::vector<float> right(block);
    float* out[] = {left.data(), right.data()};
    for (int run = 0; run < runs; ++run) {
        PitchShifter shifter({.sampleRate = rate, .channelCount = 2, .workerThreads = 0});
        for (std::size_t call = 0; call < shortest.size(); ++call) {
            const float* channel = material.data() + call * block;
            const float* in[] = {channel, channel};
            const auto half = static_cast<std::size_t>(0.5 * rate) / block;
            shifter.setPitch(half > 0 && (call / half) % 2 == 0 ? 300.0F : -400.0F);
            const double start = threadSeconds();
            shifter.process(in, out, block);
            shortest[call] = std::min(shortest[call], threadSeconds() - start);
        }
    }
    double sum = 0;
    for (const double time : shortest) {
        sum += time;
    }
    const double duration = block / rate;
    std::printf("| %6.0f | %5u | %6.2f ms | %5.1f %% | %5.1f %% |\n", rate, block, 1000 * duration,
                100 * sum / duration / static_cast<double>(shortest.size()),
                100 * *std::ranges::max_element(shortest) / duration);
}

}  // namespace
}  // namespace tonvale::timepitch

int main()
{
    std::puts("| rate | block | duration | mean | worst |\n|---:|---:|---:|---:|---:|");
    for (const double rate : {44100.0, 192000.0}) {
        const std::vector<float> material = tonvale::timepitch::makeMaterial(rate);
        for (const unsigned block : {64U, 128U, 256U, 512U, 1024U, 4096U}) {
            tonvale::timepitch::measure(rate, block, material);
        }
    }
}
