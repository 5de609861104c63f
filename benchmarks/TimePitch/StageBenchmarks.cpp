// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include "Platform/Audio/TimePitch/AnalysisStage.h"
#include "Platform/Audio/TimePitch/DenormalGuard.h"
#include "Platform/Audio/TimePitch/OnsetDetector.h"
#include "Platform/Audio/TimePitch/PitchShifter.h"
#include "Platform/Audio/TimePitch/SynthesisStage.h"

/// The stages of the engine one by one, in time per block of stereo sound (512 frames at 44.1 kHz).
namespace tonvale::timepitch {
namespace {

constexpr double rate = 44100;
constexpr unsigned channels = 2;

/// Ten seconds of tones, noise and hits: every branch of the engine has its usual share.
class Material {
public:
    Material() : samples_(channels, std::vector<float>(441000))
    {
        std::mt19937 generator(1);
        std::uniform_real_distribution<float> noise(-0.05F, 0.05F);
        for (std::size_t i = 0; i < samples_[0].size(); ++i) {
            const double t = static_cast<double>(i) / rate;
            const double hit = std::exp(-std::fmod(t, 0.25) / 0.03);
            double tones = 0;
            for (int harmonic = 1; harmonic < 20; ++harmonic) {
                tones += std::sin(twoPi * (110 * harmonic * t)) / harmonic
                         + std::sin(twoPi * (164.8 * harmonic * t + 0.002 * std::sin(30 * t)))
                               / harmonic;
            }
            for (std::vector<float>& channel : samples_) {
                channel[i] = static_cast<float>(0.1 * tones)
                             + noise(generator) * static_cast<float>(1 + 8 * hit);
            }
        }
    }

    /// The next block, over and over.
    const float* const* next(int block)
    {
        position_ = position_ + 2 * static_cast<std::size_t>(block) > samples_[0].size()
                        ? 0
                        : position_ + static_cast<std::size_t>(block);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            pointers_[channel] = samples_[channel].data() + position_;
        }
        return pointers_.data();
    }

private:
    std::vector<std::vector<float>> samples_;
    std::vector<const float*> pointers_{channels};
    std::size_t position_ = 0;
};

struct Parts {
    Parts() : geometry(makeGeometry(rate))
    {
        for (const LayerGeometry& layer : geometry.layers) {
            designs.emplace_back(layer);
        }
    }

    Geometry geometry;
    std::vector<LayerDesign> designs;
    Material material;
    DenormalGuard guard;
};

void transforms(benchmark::State& state)
{
    RealFft fft(static_cast<int>(state.range(0)));
    Array<float> real(fft.binCount());
    Array<float> imaginary(fft.binCount());
    Array<float> power(fft.binCount());
    for (auto _ : state) {
        fft.forward(0, fft.binCount(), real.data(), imaginary.data(), power.data());
        fft.inverse(real.data(), imaginary.data());
        power.clear();
    }
}
BENCHMARK(transforms)->Arg(1728)->Arg(2048);

/// Includes the onset detection.
void analysis(benchmark::State& state)
{
    Parts parts;
    AnalysisStage stage(parts.geometry, parts.designs, channels);
    for (auto _ : state) {
        stage.begin(parts.material.next(parts.geometry.block));
        stage.finish();
    }
}
BENCHMARK(analysis);

/// Includes the decimators.
void onsetDetection(benchmark::State& state)
{
    Parts parts;
    OnsetDetector detector(parts.geometry, channels);
    OctaveInput input(parts.geometry, channels,
                      OnsetDetector::framesNeeded(parts.geometry) + parts.geometry.block);
    for (auto _ : state) {
        input.advance(parts.material.next(parts.geometry.block));
        detector.advance(input.whole());
    }
}
BENCHMARK(onsetDetection);

/// Includes the analysis, which it needs: subtract that.
void analysisAndSynthesis(benchmark::State& state)
{
    Parts parts;
    AnalysisStage stage(parts.geometry, parts.designs, channels);
    SynthesisStage synthesis(stage, parts.geometry, parts.designs, channels);
    synthesis.reset(std::exp2(3.0 / 12));
    std::vector<std::vector<float>> output(channels, std::vector<float>(512));
    std::vector<float*> pointers{output[0].data(), output[1].data()};
    for (auto _ : state) {
        stage.begin(parts.material.next(parts.geometry.block));
        stage.finish();
        synthesis.begin();
        synthesis.render(0, parts.geometry.block, pointers);
        synthesis.synthesiseWaiting();
        synthesis.finish();
    }
}
BENCHMARK(analysisAndSynthesis);

/// The whole engine in blocks of the given size; the counter is the speed in times real time.
void wholeEngine(benchmark::State& state)
{
    const auto block = static_cast<int>(state.range(0));
    Material material;
    PitchShifter shifter({.sampleRate = rate,
                          .channelCount = channels,
                          .workerThreads = static_cast<unsigned>(state.range(1))});
    shifter.setPitch(300);
    std::vector<std::vector<float>> output(channels,
                                           std::vector<float>(static_cast<std::size_t>(block)));
    std::vector<float*> pointers{output[0].data(), output[1].data()};
    for (auto _ : state) {
        shifter.process({material.next(block), channels}, pointers, static_cast<unsigned>(block));
    }
    state.counters["realTime"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * block / rate, benchmark::Counter::kIsRate);
}
BENCHMARK(wholeEngine)
    ->Args({64, 0})
    ->Args({512, 0})
    ->Args({32768, 0})
    ->Args({32768, 1})
    ->UseRealTime();

void construction(benchmark::State& state)
{
    for (auto _ : state) {
        const PitchShifter shifter(
            {.sampleRate = rate, .channelCount = channels, .workerThreads = 0});
        benchmark::DoNotOptimize(shifter.latencyFrames());
    }
}
BENCHMARK(construction)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tonvale::timepitch

BENCHMARK_MAIN();
