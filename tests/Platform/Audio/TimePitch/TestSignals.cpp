// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <random>

#include "TestSignals.h"

namespace tonvale::timepitch::test {

namespace {

constexpr double twoPi = 6.283185307179586;

/// Solves the symmetric positive system a x = b in place (Gaussian elimination); x is left in b.
void solve(std::vector<std::vector<double>>& a, std::vector<double>& b)
{
    const std::size_t n = b.size();
    for (std::size_t p = 0; p < n; ++p) {
        for (std::size_t row = p + 1; row < n; ++row) {
            const double factor = a[row][p] / a[p][p];
            for (std::size_t column = p; column < n; ++column) {
                a[row][column] -= factor * a[p][column];
            }
            b[row] -= factor * b[p];
        }
    }
    for (std::size_t p = n; p-- > 0;) {
        for (std::size_t column = p + 1; column < n; ++column) {
            b[p] -= a[p][column] * b[column];
        }
        b[p] /= a[p][p];
    }
}

/// Least-squares weights of cosine and sine of every frequency.
std::vector<double> fit(const Channel& samples, std::size_t from, std::size_t to, double sampleRate,
                        const std::vector<double>& frequencies)
{
    const std::size_t n = 2 * frequencies.size();
    std::vector<std::vector<double>> normal(n, std::vector<double>(n));
    std::vector<double> right(n);
    std::vector<double> row(n);
    for (std::size_t i = from; i < to; ++i) {
        for (std::size_t f = 0; f < frequencies.size(); ++f) {
            const double angle = twoPi * frequencies[f] * static_cast<double>(i) / sampleRate;
            row[2 * f] = std::cos(angle);
            row[2 * f + 1] = std::sin(angle);
        }
        for (std::size_t a = 0; a < n; ++a) {
            right[a] += row[a] * static_cast<double>(samples[i]);
            for (std::size_t b = 0; b < n; ++b) {
                normal[a][b] += row[a] * row[b];
            }
        }
    }
    solve(normal, right);
    return right;
}

}  // namespace

Signal tones(const std::vector<Partial>& partials, double sampleRate, std::size_t frames,
             unsigned channels)
{
    Channel channel(frames);
    const double fade = 0.02 * sampleRate;
    for (std::size_t i = 0; i < frames; ++i) {
        const auto t = static_cast<double>(i);
        double sum = 0;
        for (const Partial& partial : partials) {
            sum += partial.amplitude
                   * std::cos(twoPi * partial.frequency * t / sampleRate + partial.phase);
        }
        const double edge = std::min({1.0, t / fade, static_cast<double>(frames - i) / fade});
        channel[i] = static_cast<float>(sum * (0.5 - 0.5 * std::cos(twoPi / 2 * edge)));
    }
    return Signal(channels, channel);
}

Signal silence(std::size_t frames, unsigned channels)
{
    return Signal(channels, Channel(frames));
}

Signal noise(double amplitude, std::size_t frames, unsigned channels, std::uint32_t seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> value(-amplitude, amplitude);
    Signal signal = silence(frames, channels);
    for (Channel& channel : signal) {
        std::ranges::generate(channel, [&] { return static_cast<float>(value(generator)); });
    }
    return signal;
}

Signal render(PitchShifter& shifter, const Signal& in, unsigned block, const BeforeBlock& before)
{
    const std::size_t frames = in.front().size();
    const auto latency = static_cast<std::size_t>(shifter.latencyFrames());
    Signal padded = in;
    Signal out = silence(frames + latency, static_cast<unsigned>(in.size()));
    for (Channel& channel : padded) {
        channel.resize(frames + latency);
    }
    std::vector<const float*> from(in.size());
    std::vector<float*> to(in.size());
    for (std::size_t done = 0; done < frames + latency;) {
        if (before) {
            before(shifter, done);
        }
        const auto count =
            static_cast<unsigned>(std::min<std::size_t>(block, frames + latency - done));
        for (std::size_t channel = 0; channel < in.size(); ++channel) {
            from[channel] = padded[channel].data() + done;
            to[channel] = out[channel].data() + done;
        }
        shifter.process(from, to, count);
        done += count;
    }
    for (Channel& channel : out) {
        channel.erase(channel.begin(), channel.begin() + static_cast<std::ptrdiff_t>(latency));
    }
    return out;
}

Signal shifted(const Signal& in, double sampleRate, float cents, unsigned block)
{
    PitchShifter shifter({.sampleRate = sampleRate,
                          .channelCount = static_cast<unsigned>(in.size()),
                          .workerThreads = 0});
    shifter.setPitch(cents);
    return render(shifter, in, block);
}

double toneToRest(const Channel& samples, std::size_t from, std::size_t to, double sampleRate,
                  const std::vector<double>& frequencies)
{
    const std::vector<double> weights = fit(samples, from, to, sampleRate, frequencies);
    double signal = 0;
    double rest = 1e-30;
    for (std::size_t i = from; i < to; ++i) {
        double model = 0;
        for (std::size_t f = 0; f < frequencies.size(); ++f) {
            const double angle = twoPi * frequencies[f] * static_cast<double>(i) / sampleRate;
            model += weights[2 * f] * std::cos(angle) + weights[2 * f + 1] * std::sin(angle);
        }
        const double difference = static_cast<double>(samples[i]) - model;
        signal += model * model;
        rest += difference * difference;
    }
    return 10 * std::log10(signal / rest);
}

double toneAmplitude(const Channel& samples, std::size_t from, std::size_t to, double sampleRate,
                     double frequency)
{
    const std::vector<double> weights = fit(samples, from, to, sampleRate, {frequency});
    return std::hypot(weights[0], weights[1]);
}

double rms(const Channel& samples, std::size_t from, std::size_t to)
{
    double sum = 0;
    for (std::size_t i = from; i < to; ++i) {
        sum += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
    }
    return std::sqrt(sum / static_cast<double>(to - from));
}

double largest(const Channel& samples)
{
    double peak = 0;
    for (const float sample : samples) {
        peak = std::max(peak, std::abs(static_cast<double>(sample)));
    }
    return peak;
}

double decibels(double ratio)
{
    return 20 * std::log10(std::max(ratio, 1e-30));
}

bool allFinite(const Signal& signal)
{
    return std::ranges::all_of(signal, [](const Channel& channel) {
        return std::ranges::all_of(channel, [](float sample) { return std::isfinite(sample); });
    });
}

}  // namespace tonvale::timepitch::test
