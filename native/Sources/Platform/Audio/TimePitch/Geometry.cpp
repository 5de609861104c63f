// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <array>
#include <cmath>

#include "Platform/Audio/TimePitch/Geometry.h"

namespace tonvale::timepitch {

namespace {

constexpr double designRate = 44100;

struct LayerDesignSizes {
    int attack;
    int release;
    Crossover upper;
};

// Frames at 44.1 kHz. The long attack gives the lowest layer the resolution of 7000 frames at the
// latency of 4096; the crossovers are flat optima (550 ... 1000 Hz for the first).
constexpr std::array<LayerDesignSizes, 3> designSizes{{
    {4864, 2048, {1000, 300}},
    {2048, 2048, {3500, 600}},
    {1024, 1024, {}},
}};

/// The size factor: a power of two or one and a half times one, nearest on a logarithmic scale.
double sizeFactor(double sampleRate)
{
    constexpr double smallest = 0.125;  // hop 64; below 5.5 kHz nobody listens to music
    const double ratio = std::max(sampleRate / designRate, smallest);
    const double power = std::exp2(std::floor(std::log2(ratio)));
    const std::array<double, 3> candidates{power, 1.5 * power, 2 * power};
    return *std::ranges::min_element(
        candidates, {}, [ratio](double factor) { return std::abs(std::log2(factor / ratio)); });
}

/// Number of layers whose band is (mostly) below the Nyquist frequency.
std::size_t usefulLayers(double sampleRate)
{
    std::size_t count = 1;
    while (count < designSizes.size()) {
        const Crossover& below = designSizes[count - 1].upper;
        if (sampleRate / 2 < below.centre + 2 * below.halfWidth) {
            break;
        }
        ++count;
    }
    return count;
}

/// The largest power of two that leaves the layer's band, moved up an octave, below 0.77 of the
/// decimated Nyquist frequency; the sizes must stay divisible for an even FFT.
int decimationFor(const LayerGeometry& layer)
{
    constexpr int largest = 8;
    constexpr double margin = 1.3;
    if (!layer.upper.exists()) {
        return 1;
    }
    const double bandEdge = layer.upper.centre + layer.upper.halfWidth;
    int decimation = 1;
    const auto fits = [&](int next) {
        return layer.size() % (2 * next) == 0 && layer.attack % (2 * next) == 0
               && layer.sampleRate / (2 * next) >= margin * 2 * bandEdge;
    };
    while (decimation < largest && fits(2 * decimation)) {
        decimation *= 2;
    }
    return decimation;
}

LayerGeometry makeLayer(std::size_t index, std::size_t count, double sampleRate, double factor)
{
    const LayerDesignSizes& design = designSizes[index];
    const auto scaled = [factor](int frames) { return static_cast<int>(frames * factor); };
    LayerGeometry layer;
    layer.index = static_cast<int>(index);
    layer.sampleRate = sampleRate;
    layer.lower = index > 0 ? designSizes[index - 1].upper : Crossover{};
    layer.upper = index + 1 < count ? design.upper : Crossover{};
    layer.attack = scaled(design.attack);
    layer.release = scaled(design.release);
    layer.hop = layer.release / 2;  // cos^4 windows add up to a constant from half of R down
    layer.decimation = decimationFor(layer);
    return layer;
}

}  // namespace

Geometry makeGeometry(double sampleRate)
{
    Geometry geometry;
    geometry.sampleRate = sampleRate;
    const double factor = sizeFactor(sampleRate);
    const std::size_t count = usefulLayers(sampleRate);
    for (std::size_t index = 0; index < count; ++index) {
        const LayerGeometry layer = makeLayer(index, count, sampleRate, factor);
        geometry.block = index == 0 ? layer.hop : std::min(geometry.block, layer.hop);
        geometry.longestHop = std::max(geometry.longestHop, layer.hop);
        geometry.longestWindow = std::max(geometry.longestWindow, layer.size());
        geometry.lookAhead = std::max(geometry.lookAhead, layer.release + layer.hop);
        geometry.tail = std::max(geometry.tail, layer.release);
        geometry.layers.push_back(layer);
    }
    return geometry;
}

}  // namespace tonvale::timepitch
