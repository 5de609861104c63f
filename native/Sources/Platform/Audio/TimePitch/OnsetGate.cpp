// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>

#include "Platform/Audio/TimePitch/OnsetGate.h"

namespace tonvale::timepitch {

namespace {

constexpr double fadeSeconds = 0.0015;
constexpr double holdSeconds = 0.005;  // the input may be this early or late
constexpr float largestRise = 10;      // of power; 4 already eats the tails of castanets

}  // namespace

OnsetGate::OnsetGate(const LayerGeometry& layer, const SpanGain& spanGain, int block)
    : spanGain_(spanGain)
    , layer_(layer.index)
    , block_(block)
    , release_(layer.release)
    , fade_(std::max<Frames>(1, static_cast<Frames>(fadeSeconds * layer.sampleRate)))
    , hold_(static_cast<Frames>(holdSeconds * layer.sampleRate))
    , gains_(block)
{
}

void OnsetGate::process(const BlockPart& part, Frames onset, const AudibleSpan& span,
                        const OnsetDetector& envelope, float& limit,
                        std::span<float* const> samples, std::span<float* const> output) noexcept
{
    const Frames position = part.position();
    const Frames opening = std::max<Frames>(0, onset - fade_ - position);
    if (opening >= part.size()) {
        return;
    }
    computeGate(part, onset, span);
    const int step = block_ / BlockPart::perBlock;
    for (int first = 0; first < part.size(); first += step) {
        const int begin = std::max(first, static_cast<int>(opening));
        const int end = first + step;
        if (begin >= end) {
            continue;
        }
        float energy = 0;
        for (float* channel : samples) {
            for (int i = begin; i < end; ++i) {
                channel[i] *= gains_[i];
                energy += channel[i] * channel[i];
            }
        }
        const float target = limitFor(position + begin, position + end, energy, envelope);
        const float slope = (target - limit) / static_cast<float>(end - begin);
        for (std::size_t channel = 0; channel < samples.size(); ++channel) {
            float* out = output[channel] + part.begin;
            for (int i = begin; i < end; ++i) {
                out[i] += samples[channel][i] * (limit + slope * static_cast<float>(i - begin + 1));
            }
        }
        limit = target;
    }
}

void OnsetGate::computeGate(const BlockPart& part, Frames onset, const AudibleSpan& span) noexcept
{
    const Frames position = part.position();
    const int count = part.size();
    if (part.block < onset + release_ || span.startsHere() || span.endsHere()) {
        spanGain_.compute(span, position, count, gains_.data());
    } else {
        gains_.fill(1);
    }
    const Frames closed = std::clamp<Frames>(onset - position, 0, count);
    for (Frames i = 0; i < closed; ++i) {
        const auto before = static_cast<double>(onset - position - i);
        gains_[i] *= static_cast<float>(1 - raisedCosine(before / static_cast<double>(fade_)));
    }
}

float OnsetGate::limitFor(Frames from, Frames to, float energy,
                          const OnsetDetector& envelope) const noexcept
{
    constexpr float silence = 1e-12F;
    const float input = std::max(silence, envelope.largestPower(layer_, from - hold_, to + hold_));
    const float allowed = largestRise * input * static_cast<float>(to - from);
    return energy > allowed ? std::sqrt(allowed / energy) : 1;
}

}  // namespace tonvale::timepitch
