// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

// The other engine behind the class, for builds with TONVALE_TIME_PITCH=rubberband. It keeps what
// the class promises of length, place and blocks. It cannot keep all: 0 cents is a shift like any
// other and changes the samples, reset() and process() allocate.

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

#include <rubberband/RubberBandStretcher.h>

#include "Platform/Audio/TimePitch/DenormalGuard.h"
#include "Platform/Audio/TimePitch/PitchShifter.h"
#include "Platform/Foundation/Precondition.h"

namespace tonvale::timepitch {

namespace {

using RubberBand::RubberBandStretcher;

/// The waveform depends on the block size, so there is one for every caller.
constexpr std::size_t blockFrames = 512;

// Finer is the engine with the better sound; channels together keeps the stereo image; high
// consistency lets the pitch change at any time without a click.
constexpr RubberBandStretcher::Options options =
    RubberBandStretcher::OptionProcessRealTime | RubberBandStretcher::OptionEngineFiner
    | RubberBandStretcher::OptionChannelsTogether | RubberBandStretcher::OptionPitchHighConsistency;

const PitchShifter::Configuration& checked(const PitchShifter::Configuration& configuration)
{
    if (!std::isfinite(configuration.sampleRate) || configuration.sampleRate < 1) {
        throw std::invalid_argument("The sample rate must be at least one frame a second.");
    }
    if (configuration.channelCount == 0 || configuration.workerThreads > 1) {
        throw std::invalid_argument("At least one channel and at most one extra thread.");
    }
    return configuration;
}

std::unique_ptr<RubberBandStretcher> makeStretcher(const PitchShifter::Configuration& configuration)
{
    auto stretcher = std::make_unique<RubberBandStretcher>(
        static_cast<std::size_t>(configuration.sampleRate), configuration.channelCount, options);
    stretcher->setDebugLevel(0);
    stretcher->setMaxProcessSize(blockFrames);
    return stretcher;
}

/// Samples of all channels, first in, first out.
class Queue {
public:
    explicit Queue(std::size_t channelCount) : channels_(channelCount) {}

    void fillWithSilence(std::size_t frames)
    {
        for (std::vector<float>& channel : channels_) {
            channel.assign(frames, 0.0F);
        }
    }

    /// Room for `frames` more at the end, to be filled by the caller.
    [[nodiscard]] std::vector<float*> grow(std::size_t frames)
    {
        const std::size_t end = size();
        std::vector<float*> added;
        for (std::vector<float>& channel : channels_) {
            channel.resize(end + frames);
            added.push_back(channel.data() + end);
        }
        return added;
    }

    /// Gives the oldest frames away. @param out  empty: to nobody
    void take(std::size_t frames, std::span<float* const> out, std::size_t place)
    {
        precondition(frames <= size());
        for (std::size_t channel = 0; channel < out.size(); ++channel) {
            std::copy_n(channels_[channel].begin(), frames, out[channel] + place);
        }
        for (std::vector<float>& channel : channels_) {
            channel.erase(channel.begin(), channel.begin() + static_cast<std::ptrdiff_t>(frames));
        }
    }

    [[nodiscard]] std::size_t size() const noexcept { return channels_.front().size(); }

private:
    std::vector<std::vector<float>> channels_;
};

}  // namespace

/// The library, with as much waiting at either end as gives every frame its place.
class PitchShifter::Engine {
public:
    explicit Engine(const Configuration& configuration);

    void reset();
    void setPitch(float cents) noexcept;
    /// @param out  empty: the output is thrown away
    void process(std::span<const float* const> in, std::span<float* const> out,
                 unsigned frameCount);

    [[nodiscard]] const Configuration& configuration() const noexcept { return configuration_; }
    [[nodiscard]] float pitch() const noexcept { return cents_; }
    [[nodiscard]] std::int64_t latency() const noexcept
    {
        return static_cast<std::int64_t>(latency_);
    }

private:
    void fillBlock(std::span<const float* const> in, std::size_t place, std::size_t frames);
    void begin();
    void shiftBlock();
    void collect();
    [[nodiscard]] std::vector<const float*> blockPointers() const;

    Configuration configuration_;
    std::unique_ptr<RubberBandStretcher> stretcher_;
    std::size_t latency_;
    float cents_ = 0;
    bool isBegun_ = false;
    std::vector<std::vector<float>> block_;  // of input, until it is whole
    std::size_t filled_ = 0;
    Queue shifted_;
};

PitchShifter::Engine::Engine(const Configuration& configuration)
    : configuration_(checked(configuration))
    , stretcher_(makeStretcher(configuration))
    // The library answers within start pad + start pad / pitch ratio (measured at 8 to 192 kHz),
    // three pads for an octave down; a block more for the input that waits to be whole, and one for
    // the library's own rounding.
    , latency_(3 * stretcher_->getPreferredStartPad() + 2 * blockFrames)
    , block_(configuration.channelCount, std::vector<float>(blockFrames))
    , shifted_(configuration.channelCount)
{
    shifted_.fillWithSilence(latency_);
}

void PitchShifter::Engine::reset()
{
    stretcher_ = makeStretcher(configuration_);  // its own reset keeps phases
    isBegun_ = false;
    filled_ = 0;
    shifted_.fillWithSilence(latency_);
}

void PitchShifter::Engine::setPitch(float cents) noexcept
{
    constexpr float octave = 1200;
    if (!std::isnan(cents)) {
        cents_ = std::clamp(cents, -octave, octave);
    }
}

void PitchShifter::Engine::process(std::span<const float* const> in, std::span<float* const> out,
                                   unsigned frameCount)
{
    const DenormalGuard guard;
    for (std::size_t done = 0; done < frameCount;) {
        const std::size_t taken = std::min(frameCount - done, blockFrames - filled_);
        fillBlock(in, done, taken);
        if (filled_ == blockFrames) {
            shiftBlock();
        }
        shifted_.take(taken, out, done);
        done += taken;
    }
}

void PitchShifter::Engine::fillBlock(std::span<const float* const> in, std::size_t place,
                                     std::size_t frames)
{
    for (std::size_t channel = 0; channel < block_.size(); ++channel) {
        std::transform(in[channel] + place, in[channel] + place + frames,
                       block_[channel].begin() + static_cast<std::ptrdiff_t>(filled_),
                       [](float sample) { return std::isfinite(sample) ? sample : 0.0F; });
    }
    filled_ += frames;
}

void PitchShifter::Engine::shiftBlock()
{
    stretcher_->setPitchScale(std::exp2(double{cents_} / 1200));
    if (!isBegun_) {
        begin();
    }
    stretcher_->process(blockPointers().data(), blockFrames, false);
    filled_ = 0;
    collect();
}

/// The library wants silence before the music, and its answer begins with a delay of its own; both
/// depend on the pitch that the stream begins with. The delay takes the place of silence of ours.
void PitchShifter::Engine::begin()
{
    isBegun_ = true;
    shifted_.take(stretcher_->getStartDelay(), {}, 0);
    const std::vector<float> silence(blockFrames);
    const std::vector<const float*> channels(block_.size(), silence.data());
    for (std::size_t left = stretcher_->getPreferredStartPad(); left > 0;) {
        const std::size_t frames = std::min(left, blockFrames);
        stretcher_->process(channels.data(), frames, false);
        collect();
        left -= frames;
    }
}

void PitchShifter::Engine::collect()
{
    for (int ready = stretcher_->available(); ready > 0; ready = stretcher_->available()) {
        const auto frames = static_cast<std::size_t>(ready);
        const std::size_t retrieved = stretcher_->retrieve(shifted_.grow(frames).data(), frames);
        precondition(retrieved == frames);
    }
}

std::vector<const float*> PitchShifter::Engine::blockPointers() const
{
    std::vector<const float*> pointers;
    for (const std::vector<float>& channel : block_) {
        pointers.push_back(channel.data());
    }
    return pointers;
}

PitchShifter::PitchShifter(const Configuration& configuration)
    : engine_(std::make_unique<Engine>(configuration))
{
}

PitchShifter::~PitchShifter() = default;
PitchShifter::PitchShifter(PitchShifter&&) noexcept = default;
PitchShifter& PitchShifter::operator=(PitchShifter&&) noexcept = default;

const PitchShifter::Configuration& PitchShifter::configuration() const noexcept
{
    return engine_->configuration();
}

void PitchShifter::reset() noexcept
{
    engine_->reset();
}

void PitchShifter::setPitch(float cents) noexcept
{
    engine_->setPitch(cents);
}

float PitchShifter::pitch() const noexcept
{
    return engine_->pitch();
}

std::int64_t PitchShifter::latencyFrames() const noexcept
{
    return engine_->latency();
}

// The library remembers phases for ever; after this much, level and place have settled.
std::int64_t PitchShifter::prerollFrames() const noexcept
{
    return 2 * engine_->latency();
}

void PitchShifter::prime(std::span<const float* const> in, unsigned frameCount) noexcept
{
    engine_->process(in, {}, frameCount);
}

void PitchShifter::process(std::span<const float* const> in, std::span<float* const> out,
                           unsigned frameCount) noexcept
{
    engine_->process(in, out, frameCount);
}

}  // namespace tonvale::timepitch
