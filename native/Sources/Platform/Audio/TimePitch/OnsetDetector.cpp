// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>

#include "Platform/Audio/TimePitch/OnsetDetector.h"

namespace tonvale::timepitch {

namespace {

constexpr double blocksPerSecond = 689;
constexpr int smallestBlock = 8;   // frames
constexpr double rumbleEdge = 40;  // Hz: the lowest band is rumbleEdge ... midEdge,
constexpr double midEdge = 900;    // the middle one all above it,
constexpr double highEdge = 4000;  // the upper one all above this
constexpr float silence = 1e-8F;   // -80 dBFS
constexpr float certainRise = 6;   // over the mean of the past
constexpr float certainPeak = 2;   // over its maximum,
constexpr float certainAgain = 3;  // or this, within againSeconds of another onset
constexpr float softRise = 4;      // enough for a band when another one is certain
constexpr int pastBegin = 2;       // blocks before: the past that a block is compared with
constexpr int pastEnd = 18;
constexpr double shortestGapSeconds = 0.015;  // closer hits count as one
constexpr double joinSeconds = 0.004;         // bands may still join an onset
constexpr double againSeconds = 0.1;

int blockFramesAt(double sampleRate)
{
    return std::max(smallestBlock, static_cast<int>(sampleRate / blocksPerSecond));
}

float onePole(double edge, double sampleRate)
{
    return static_cast<float>(1 - std::exp(-twoPi * edge / sampleRate));
}

}  // namespace

OnsetDetector::OnsetDetector(const Geometry& geometry, unsigned channelCount)
    : geometry_(geometry)
    , channelCount_(channelCount)
    , blockFrames_(blockFramesAt(geometry.sampleRate))
    , shortestGap_(static_cast<Frames>(shortestGapSeconds * geometry.sampleRate))
    , joinTime_(static_cast<Frames>(joinSeconds * geometry.sampleRate))
    , againTime_(static_cast<Frames>(againSeconds * geometry.sampleRate))
    , coefficients_{onePole(rumbleEdge, geometry.sampleRate), onePole(midEdge, geometry.sampleRate),
                    onePole(highEdge, geometry.sampleRate)}
    , filters_((channelCount + 1) / 2)
    , silence_(blockFrames_)
    , differences_(3 * blockFrames_)
{
    for (Array<float>& band : powers_) {
        band = Array<float>(historyBlocks);
    }
}

void OnsetDetector::reset() noexcept
{
    std::ranges::fill(filters_, Filters{});
    for (Array<float>& band : powers_) {
        band.clear();
    }
    block_ = 0;
    onsetCount_ = 0;
    onsets_.clear();
}

float& OnsetDetector::power(std::size_t band, std::int64_t block) noexcept
{
    return powers_[band][block & (historyBlocks - 1)];
}

float OnsetDetector::power(std::size_t band, std::int64_t block) const noexcept
{
    return powers_[band][block & (historyBlocks - 1)];
}

int OnsetDetector::framesNeeded(const Geometry& geometry) noexcept
{
    return 4 * blockFramesAt(geometry.sampleRate);
}

void OnsetDetector::advance(const InputHistory& input) noexcept
{
    while ((block_ + 2) * blockFrames_ <= input.end()) {  // one block ahead for firstSample()
        measureBlock(input);
        if (block_ > 0) {
            judgeBlock(input);
        }
        ++block_;
    }
}

void OnsetDetector::measureBlock(const InputHistory& input) noexcept
{
    const Frames begin = block_ * blockFrames_;
    Powers sum{};
    for (unsigned channel = 0; channel < channelCount_; channel += 2) {
        const bool isPair = channel + 1 < channelCount_;
        filterPair(filters_[channel / 2], input.at(channel, begin),
                   isPair ? input.at(channel + 1, begin) : silence_.data(), sum);
    }
    for (std::size_t band = 0; band < powerCount; ++band) {
        power(band, block_) = sum[band] / static_cast<float>(blockFrames_);
    }
}

// The upper bands are what one-pole low-passes leave over, twice; the lowest one is a low-pass
// minus a much lower one. Every step waits for the one before, so four filters take no longer than
// one.
void OnsetDetector::filterPair(Filters& state, const float* a, const float* b,
                               Powers& energy) const noexcept
{
    const auto [slow, mid, high] = coefficients_;
    const Quad speed{mid, mid, high, high};
    Filters s = state;
    Quad upper{};
    Quad lower{};
    Quad lowest{};
    for (int i = 0; i < blockFrames_; ++i) {
        const Quad x{a[i], b[i], a[i], b[i]};
        s.first += speed * (x - s.first);
        const Quad above = x - s.first;
        s.second += speed * (above - s.second);
        const Quad rest = above - s.second;
        s.rumble += slow * (s.first - s.rumble);
        const Quad low = s.first - s.rumble;
        upper += rest * rest;
        lower += low * low;
        lowest += s.first * s.first;
    }
    state = s;
    energy[0] += lower[0] + lower[1];
    energy[1] += upper[0] + upper[1];
    energy[2] += upper[2] + upper[3];
    energy[lowestEnvelope] += lowest[0] + lowest[1];
}

void OnsetDetector::judgeBlock(const InputHistory& input) noexcept
{
    Onset* last = onsets_.last();
    const Frames sinceLast = last != nullptr ? block_ * blockFrames_ - last->position : againTime_;
    const float peakRise = sinceLast < againTime_ ? certainAgain : certainPeak;
    unsigned certain = 0;
    unsigned soft = 0;
    for (std::size_t band = 0; band < bandCount; ++band) {
        float sum = 0;
        float largest = 0;
        for (int past = pastBegin; past < pastEnd; ++past) {
            sum += power(band, block_ - past);
            largest = std::max(largest, power(band, block_ - past));
        }
        const float mean = sum / (pastEnd - pastBegin);
        const float now = power(band, block_);
        const unsigned bit = 1U << band;
        certain |= now > certainRise * mean + silence && now > peakRise * largest ? bit : 0;
        soft |= now > softRise * mean + silence ? bit : 0;
    }
    constexpr unsigned upperBands = 6;
    if ((certain & upperBands) != 0) {
        if (last != nullptr && sinceLast < shortestGap_) {
            last->layers |= certain | soft;
            return;
        }
        Onset onset{firstSample(input), certain | soft, onsetCount_++, {}};
        for (std::size_t layer = 0; layer < onset.remainder.size(); ++layer) {
            onset.remainder[layer] = layer < geometry_.layers.size() ? remainder(layer) : 1;
        }
        onsets_.add(onset);
    } else if (last != nullptr && soft != 0 && sinceLast < joinTime_) {
        last->layers |= soft;
    }
}

Frames OnsetDetector::firstSample(const InputHistory& input) noexcept
{
    constexpr float smallestShare = 0.02F;
    const Frames begin = (block_ - 1) * blockFrames_;
    differences_.clear();
    for (unsigned channel = 0; channel < channelCount_; ++channel) {
        const float* x = input.at(channel, begin - 1) + 1;
        for (int i = 0; i < differences_.size(); ++i) {
            const float step = x[i] - x[i - 1];
            differences_[i] += step * step;
        }
    }
    const float threshold = smallestShare * *std::ranges::max_element(differences_);
    return begin
           + (std::ranges::find_if(differences_, [threshold](float d) { return d > threshold; })
              - differences_.begin());
}

float OnsetDetector::remainder(std::size_t layer) const noexcept
{
    constexpr int justBefore = 8;  // blocks pastBegin ... justBefore - 1 before the onset
    constexpr int mostBlocks = 250;
    constexpr float generosity = 2;  // a decay within the blocks themselves must not count twice
    constexpr float tiny = 1e-12F;
    const int count = std::min(mostBlocks, 2 * geometry_.layers[layer].release / blockFrames_);
    float recent = 0;
    for (int past = pastBegin; past < justBefore; ++past) {
        recent += power(layer, block_ - past) / (justBefore - pastBegin);
    }
    float weighted = 0;
    float weights = 0;
    for (int past = pastBegin; past < count; ++past) {  // as the frame before weighs it: cos^4
        const double s = std::sin(pi * past / count);
        const auto weight = static_cast<float>(s * s * s * s);
        weighted += weight * power(layer, block_ - past);
        weights += weight;
    }
    return std::min(1.0F, generosity * recent * weights / (weighted + tiny));
}

float OnsetDetector::largestPower(int layer, Frames from, Frames to) const noexcept
{
    float largest = 0;
    const std::size_t band = layer == 0 ? lowestEnvelope : static_cast<std::size_t>(layer);
    const std::int64_t last = floorDivide(to, blockFrames_);
    for (std::int64_t block = floorDivide(from, blockFrames_); block <= last; ++block) {
        largest = std::max(largest, power(band, block));
    }
    return largest;
}

}  // namespace tonvale::timepitch
