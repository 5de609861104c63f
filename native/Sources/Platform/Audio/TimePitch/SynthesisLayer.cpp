// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <utility>

#include "Platform/Audio/TimePitch/OnsetSplit.h"
#include "Platform/Audio/TimePitch/SynthesisLayer.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {

SynthesisLayer::SynthesisLayer(const LayerDesign& design, const Geometry& geometry,
                               unsigned channelCount)
    : design_(design)
    , channelCount_(channelCount)
    , block_(geometry.block)
    , fft_(design.geometry.decimatedSize())
    , parts_(design, channelCount)
    , phases_(design)
    , shifter_(design)
    , interpolator_(design.geometry, geometry.block / design.geometry.decimation)
    , spanGain_(design.geometry, design.windows)
    , gate_(design.geometry, spanGain_, geometry.block)
    , source_(channelCount, design.binCount)
    , target_(channelCount, fft_.binCount())
    , lowRate_(geometry.block / design.geometry.decimation + interpolator_.samplesBefore()
               + interpolator_.samplesAfter())
    , gains_(geometry.block)
{
    for (std::size_t index = 0; index < pitchRingCount; ++index) {
        pitchVoices_.emplace_back(makeRing(geometry));
    }
    for (std::size_t index = 0; index < onsetRingsPerPitch * pitchesPerOnset; ++index) {
        onsetVoices_.emplace_back(makeRing(geometry));
    }
    for (unsigned channel = 0; channel < channelCount; ++channel) {
        fullRate_.emplace_back(geometry.block + kernels::overrun);
        fullRatePointers_.push_back(fullRate_.back().data());
    }
}

OverlapRing SynthesisLayer::makeRing(const Geometry& geometry) const
{
    const int interpolation = 2 * interpolator_.samplesAfter() * design_.geometry.decimation;
    const int frames =
        geometry.tail + design_.geometry.release + 3 * geometry.block + interpolation;
    return OverlapRing(channelCount_, frames, design_.geometry.decimation);
}

void SynthesisLayer::reset(double ratio) noexcept
{
    for (std::vector<Voice>* voices : {&pitchVoices_, &onsetVoices_}) {
        for (Voice& voice : *voices) {
            voice.ring.clear();
            voice = Voice(std::move(voice.ring));
        }
    }
    phases_.reset(ratio);
    parts_.reset();
    currentPitchVoice_ = 0;
    pitchNumber_ = 0;
    pitchStart_ = AudibleSpan::openBegin;
    lastReference_ = 0;
    prepared_ = {};
}

void SynthesisLayer::changeRatio(Frames firstFrame) noexcept
{
    const Frames border = firstFrame - design_.geometry.hop / 2;
    const auto close = [&](Voice& voice) {
        if (voice.span.end > border) {
            voice.span.end = border;
            voice.span.lastFrame = firstFrame - design_.geometry.hop;
        }
    };
    close(pitchVoices_[currentPitchVoice_]);
    std::ranges::for_each(onsetVoices_, close);
    ++pitchNumber_;
    pitchStart_ = border;
    currentPitchVoice_ = (currentPitchVoice_ + 1) % pitchRingCount;
    Voice& voice = pitchVoices_[currentPitchVoice_];
    voice.span = {firstFrame, AudibleSpan::openEnd, border, AudibleSpan::openEnd};
}

/// Rings are reused in turn; the numbers tell whose frames are in them. Without them the part
/// before the third next hit would be heard ungated when hits come closer than 70 ms.
SynthesisLayer::Voice& SynthesisLayer::voiceOf(const Onset& onset, Frames reference,
                                               bool isFirst) noexcept
{
    const auto onsetSlot = static_cast<std::size_t>(onset.number) % onsetRingsPerPitch;
    const auto pitchSlot = static_cast<std::size_t>(pitchNumber_) % pitchesPerOnset;
    Voice& voice = onsetVoices_[onsetSlot * pitchesPerOnset + pitchSlot];
    if (voice.onset != onset.number || voice.pitch != pitchNumber_) {
        voice.onset = onset.number;
        voice.pitch = pitchNumber_;
        voice.limit = 1;
        voice.span = {reference, AudibleSpan::openEnd,
                      isFirst ? AudibleSpan::openBegin : pitchStart_, AudibleSpan::openEnd};
    }
    return voice;
}

void SynthesisLayer::prepare(std::int64_t number, const OnsetList& onsets) noexcept
{
    const LayerGeometry& layer = design_.geometry;
    const Frames reference = number * layer.hop;
    const OnsetContext context = onsets.around(layer, reference);
    const Onset* current = context.current;
    prepared_ = {.number = number, .onsets = context};
    prepared_.sustained = &pitchVoices_[currentPitchVoice_];
    if (current != nullptr) {
        prepared_.isFirst = reference - layer.hop < current->position - layer.hop / 2;
        prepared_.newPart = &voiceOf(*current, reference, prepared_.isFirst);
    }
}

void SynthesisLayer::anticipate(std::int64_t number, const OnsetList& onsets,
                                const InputHistory& input) noexcept
{
    parts_.cut(number, onsets.around(design_.geometry, number * design_.geometry.hop), input);
}

void SynthesisLayer::synthesise(const FrameHistory& frames, const Settings& settings) noexcept
{
    const SpectrumFrame& frame = frames.at(prepared_.number);
    lastReference_ = prepared_.number * design_.geometry.hop;
    parts_.divide(frames, prepared_.number, prepared_.onsets, settings.weights, settings.input);
    movePhases(frames, settings);
    shifter_.plan(frame, phases_, settings.ratio, settings.weights, prepared_.onsets.isPlain());

    parts_.makeSustained(frame, source_);
    synthesisePart(frame, true, *prepared_.sustained);
}

void SynthesisLayer::synthesiseHit(const FrameHistory& frames) noexcept
{
    if (prepared_.newPart != nullptr) {
        const SpectrumFrame& frame = frames.at(prepared_.number);
        parts_.makeHit(frame, source_);
        synthesisePart(frame, false, *prepared_.newPart);
    }
}

void SynthesisLayer::movePhases(const FrameHistory& frames, const Settings& settings) noexcept
{
    const SynthesisLayer* lower = settings.lower;
    const Frames reference = prepared_.number * design_.geometry.hop;
    const Onset* firstAfter = prepared_.isFirst ? prepared_.onsets.current : nullptr;
    const Array<float>* before =
        firstAfter == nullptr
            ? nullptr
            : &frames.at(OnsetSplit::frameBefore(design_.geometry, *firstAfter)).spreadPower;
    phases_.advance({.spectrum = frames.at(prepared_.number),
                     .reference = reference,
                     .ratio = settings.ratio,
                     .ownShare = settings.ownShare,
                     .lower = lower == nullptr ? nullptr : &lower->phases_,
                     .sinceLower = lower == nullptr ? 0 : reference - lower->lastReference_,
                     .firstAfter = firstAfter,
                     .powerBefore = before});
}

void SynthesisLayer::synthesisePart(const SpectrumFrame& frame, bool isSustained,
                                    Voice& voice) noexcept
{
    target_.clear();
    shifter_.apply(source_, target_, channelCount_, isSustained);
    if (frame.dcEnd > 0) {
        carryDc(frame);
    }
    voice.lastWritten = lastReference_;
    for (unsigned channel = 0; channel < channelCount_; ++channel) {
        fft_.inverse(target_.real(channel), target_.imaginary(channel));
        addFrame(voice.ring, channel, lastReference_);
    }
}

void SynthesisLayer::carryDc(const SpectrumFrame& frame) noexcept
{
    for (unsigned channel = 0; channel < channelCount_; ++channel) {
        kernels::add(source_.real(channel), frame.dcEnd, target_.real(channel));
        kernels::add(source_.imaginary(channel), frame.dcEnd, target_.imaginary(channel));
    }
}

void SynthesisLayer::addFrame(OverlapRing& ring, unsigned channel, Frames reference) noexcept
{
    const LayerGeometry& layer = design_.geometry;
    const int centre = design_.windows.phaseCentre() / layer.decimation;
    const int begin = (layer.attack - layer.release) / layer.decimation;  // of the heard part
    const float* window = design_.windows.synthesis().data();
    const float* samples = fft_.samples();
    const Frames position = reference - layer.release;
    const int wrapped = std::max(0, centre - begin);  // samples before the phase centre
    ring.add(channel, position, samples + fft_.size() - wrapped, window, wrapped);
    const int first = std::max(centre, begin);
    ring.add(channel, position + static_cast<Frames>(wrapped) * layer.decimation,
             samples + first - centre, window + wrapped, fft_.size() - first);
}

// Rendered until the block after the last one that the frames reach into: the interpolation still
// reads them there, and they are erased with it.
bool SynthesisLayer::isAlive(const Voice& voice, Frames block) const noexcept
{
    return voice.lastWritten + design_.geometry.release > block - block_;
}

void SynthesisLayer::interpolate(const Voice& voice, const BlockPart& part) noexcept
{
    const int decimation = design_.geometry.decimation;
    const int count = part.size() / decimation;
    const std::int64_t start = part.position() / decimation - interpolator_.samplesBefore();
    const int needed = count + interpolator_.samplesBefore() + interpolator_.samplesAfter();
    for (unsigned channel = 0; channel < channelCount_; ++channel) {
        voice.ring.read(channel, start, needed, lowRate_.data());
        interpolator_.process(lowRate_.data(), count, fullRatePointers_[channel]);
    }
}

void SynthesisLayer::render(const BlockPart& part, const OnsetList& onsets,
                            const OnsetDetector& envelope, std::span<float* const> output) noexcept
{
    const auto eraseBefore = [&](Voice& voice) {
        if (part.end == block_) {
            voice.ring.erase(part.block - block_, block_);
        }
    };
    for (Voice& voice : pitchVoices_) {
        if (isAlive(voice, part.block)) {
            renderPitch(voice, part, output);
            eraseBefore(voice);
        }
    }
    for (Voice& voice : onsetVoices_) {
        if (isAlive(voice, part.block)) {
            renderOnset(voice, part, onsets, envelope, output);
            eraseBefore(voice);
        }
    }
}

// What is decided about a voice is decided for the whole block, so that rounding does not depend on
// how it is cut.
void SynthesisLayer::renderPitch(Voice& voice, const BlockPart& part,
                                 std::span<float* const> output) noexcept
{
    if (spanGain_.isSilent(voice.span, part.block, block_)) {
        return;
    }
    interpolate(voice, part);
    const bool plain = spanGain_.isPlain(voice.span, part.block, block_);
    if (!plain) {
        spanGain_.compute(voice.span, part.position(), part.size(), gains_.data());
    }
    for (unsigned channel = 0; channel < channelCount_; ++channel) {
        float* out = output[channel] + part.begin;
        if (plain) {
            kernels::add(fullRatePointers_[channel], part.size(), out);
        } else {
            kernels::multiplyAdd(fullRatePointers_[channel], gains_.data(), part.size(), out);
        }
    }
}

void SynthesisLayer::renderOnset(Voice& voice, const BlockPart& part, const OnsetList& onsets,
                                 const OnsetDetector& envelope,
                                 std::span<float* const> output) noexcept
{
    const auto* onset = std::find_if(onsets.begin(), onsets.end(), [&](const Onset& candidate) {
        return candidate.number == voice.onset && candidate.isIn(design_.geometry.index);
    });
    if (onset == onsets.end() || onset->position - gate_.fadeFrames() >= part.block + part.end
        || spanGain_.isSilent(voice.span, part.block, block_)) {
        return;
    }
    interpolate(voice, part);
    gate_.process(part, onset->position, voice.span, envelope, voice.limit, fullRatePointers_,
                  output);
}

}  // namespace tonvale::timepitch
