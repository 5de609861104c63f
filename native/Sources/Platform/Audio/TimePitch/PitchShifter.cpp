// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <vector>

#include "Platform/Audio/TimePitch/AnalysisStage.h"
#include "Platform/Audio/TimePitch/AnalysisThread.h"
#include "Platform/Audio/TimePitch/BlockAssembler.h"
#include "Platform/Audio/TimePitch/DenormalGuard.h"
#include "Platform/Audio/TimePitch/DirectPath.h"
#include "Platform/Audio/TimePitch/PitchShifter.h"
#include "Platform/Audio/TimePitch/SynthesisStage.h"

namespace tonvale::timepitch {

namespace {

const PitchShifter::Configuration& checked(const PitchShifter::Configuration& configuration)
{
    constexpr double highestRate = 1e6;  // what is tested; far above it sizes overflow
    if (!(configuration.sampleRate > 0 && configuration.sampleRate <= highestRate)) {
        throw std::invalid_argument("The sample rate must be positive and at most a million.");
    }
    if (configuration.channelCount == 0 || configuration.workerThreads > 1) {
        throw std::invalid_argument("At least one channel and at most one extra thread.");
    }
    return configuration;
}

std::vector<LayerDesign> makeDesigns(const Geometry& geometry)
{
    std::vector<LayerDesign> designs;
    for (const LayerGeometry& layer : geometry.layers) {
        designs.emplace_back(layer);
    }
    return designs;
}

double ratioOf(float cents)
{
    return std::exp2(static_cast<double>(cents) / 1200);
}

}  // namespace

/// The parts of the engine and the buffers between the caller's blocks and ours.
class PitchShifter::Engine {
public:
    explicit Engine(const Configuration& configuration);

    void reset() noexcept;
    void setPitch(float cents) noexcept;
    /// @param out  empty: the output is thrown away
    void process(std::span<const float* const> in, std::span<float* const> out,
                 unsigned frameCount) noexcept;

    [[nodiscard]] const Configuration& configuration() const noexcept { return configuration_; }
    [[nodiscard]] float pitch() const noexcept { return cents_; }
    [[nodiscard]] const Geometry& geometry() const noexcept { return geometry_; }

private:
    static constexpr int stepCount = 5;  ///< what is left of a block's work after beginBlock()

    void beginBlock() noexcept;
    void renderUntil(int end) noexcept;
    void continueBlock() noexcept;
    void doStep(int step) noexcept;

    Configuration configuration_;
    Geometry geometry_;
    std::vector<LayerDesign> designs_;
    AnalysisStage analysis_;
    SynthesisStage synthesis_;
    DirectPath direct_;
    BlockAssembler assembler_;            ///< not used with a thread, which has its own
    std::vector<Array<float>> finished_;  ///< the block of output being given away
    std::vector<float*> finishedPointers_;
    int filled_ = 0;  ///< how much of the block was taken, and of finished_ given away
    float cents_ = 0;
    int rendered_ = 0;                      ///< how much of the block of output was made
    std::int64_t blocks_ = 0;               ///< begun since the last reset
    int nextStep_ = stepCount;              ///< of the last block
    std::optional<AnalysisThread> thread_;  // last: it must end before what it uses
};

PitchShifter::Engine::Engine(const Configuration& configuration)
    : configuration_(checked(configuration))
    , geometry_(makeGeometry(configuration.sampleRate))
    , designs_(makeDesigns(geometry_))
    , analysis_(geometry_, designs_, configuration.channelCount,
                configuration.workerThreads > 0 ? static_cast<int>(AnalysisThread::largestLead) : 0)
    , synthesis_(analysis_, geometry_, designs_, configuration.channelCount)
    , direct_(geometry_.block, configuration.channelCount)
    , assembler_(configuration.channelCount, geometry_.block)
{
    for (unsigned channel = 0; channel < configuration.channelCount; ++channel) {
        finishedPointers_.push_back(finished_.emplace_back(geometry_.block).data());
    }
    rendered_ = geometry_.block;  // silence comes out first
    if (configuration.workerThreads > 0) {
        thread_.emplace(analysis_, configuration.channelCount, geometry_.block);
    }
}

void PitchShifter::Engine::reset() noexcept
{
    if (thread_) {
        thread_->reset();
    } else {
        analysis_.reset();
    }
    synthesis_.reset(ratioOf(cents_));
    direct_.reset(synthesis_.isNeutral());
    assembler_.reset();
    filled_ = 0;
    for (Array<float>& channel : finished_) {
        channel.clear();
    }
    blocks_ = 0;
    rendered_ = geometry_.block;
    nextStep_ = stepCount;
}

void PitchShifter::Engine::setPitch(float cents) noexcept
{
    constexpr float octave = 1200;
    if (std::isnan(cents)) {
        return;
    }
    cents_ = std::clamp(cents, -octave, octave);
    if (blocks_ == 0) {
        synthesis_.reset(ratioOf(cents_));
        direct_.reset(synthesis_.isNeutral());
    } else {
        synthesis_.setRatio(ratioOf(cents_));
    }
}

void PitchShifter::Engine::process(std::span<const float* const> in, std::span<float* const> out,
                                   unsigned frameCount) noexcept
{
    const DenormalGuard guard;
    if (thread_) {
        thread_->begin(in, frameCount);
    }
    unsigned done = 0;
    while (done < frameCount) {
        const auto room = static_cast<unsigned>(geometry_.block - filled_);
        const unsigned taken = std::min(frameCount - done, room);
        if (!thread_) {
            assembler_.push(in, done, taken);
        }
        renderUntil(filled_ + static_cast<int>(taken));
        for (std::size_t channel = 0; channel < out.size(); ++channel) {
            std::copy_n(finishedPointers_[channel] + filled_, taken, out[channel] + done);
        }
        done += taken;
        filled_ += static_cast<int>(taken);
        continueBlock();
        if (filled_ == geometry_.block) {
            beginBlock();
            filled_ = 0;
        }
    }
    if (thread_) {
        thread_->finish();
    }
}

void PitchShifter::Engine::beginBlock() noexcept
{
    ++blocks_;
    if (thread_) {
        thread_->waitFor(blocks_);
    } else {
        analysis_.begin(assembler_.channels());
        assembler_.startNext();
    }
    synthesis_.begin();
    direct_.begin(synthesis_.isNeutral());
    rendered_ = 0;
    if (thread_) {
        renderUntil(geometry_.block);
        synthesis_.synthesiseWaiting();
        synthesis_.finish();
        thread_->release(blocks_);
    } else {
        nextStep_ = 0;
    }
}

// Rendered when it is asked for, in whole eighths of a block.
void PitchShifter::Engine::renderUntil(int end) noexcept
{
    if (end <= rendered_) {
        return;
    }
    const int step = geometry_.block / BlockPart::perBlock;
    const int rounded = (end + step - 1) / step * step;
    synthesis_.render(rendered_, rounded, finishedPointers_);
    direct_.process(analysis_.input().whole(), synthesis_.part(rendered_, rounded),
                    finishedPointers_);
    rendered_ = rounded;
}

// What can wait is done after two to six sevenths of the next block, so that a caller of small
// blocks does not meet all the work in one call: not with beginBlock(), nor just before the next.
void PitchShifter::Engine::continueBlock() noexcept
{
    while (nextStep_ < stepCount
           && filled_ >= (nextStep_ + 2) * geometry_.block / (stepCount + 2)) {
        doStep(nextStep_);
        ++nextStep_;
    }
}

void PitchShifter::Engine::doStep(int step) noexcept
{
    switch (step) {
    case 0:
        analysis_.finish();
        break;
    case 1:
        synthesis_.cutWaiting();
        break;
    case 2:
        synthesis_.synthesiseWaiting();
        break;
    case 3:
        synthesis_.finish();
        break;
    default:
        synthesis_.anticipate();
        break;
    }
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
    return engine_->geometry().latency();
}

// The frames heard at a position reach back a window, those their phases are locked in (with an
// onset before them) another one, and the first sound after a reset takes a release to settle.
std::int64_t PitchShifter::prerollFrames() const noexcept
{
    const Geometry& geometry = engine_->geometry();
    return 2 * std::int64_t{geometry.longestWindow} + 2 * geometry.tail;
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
