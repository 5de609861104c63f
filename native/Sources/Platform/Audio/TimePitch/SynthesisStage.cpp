// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>

#include "Platform/Audio/TimePitch/SynthesisStage.h"

namespace tonvale::timepitch {

namespace {

constexpr unsigned lowLayers = 3;  // bits of the two layers that share the lowest band

}  // namespace

SynthesisStage::SynthesisStage(const AnalysisStage& analysis, const Geometry& geometry,
                               std::span<const LayerDesign> designs, unsigned channelCount)
    : analysis_(analysis)
    , geometry_(geometry)
    , designs_(designs)
    , framesToNeutral_(static_cast<Frames>(pi / PhaseTracker::returnSpeed * geometry.sampleRate)
                       + geometry.latency() + geometry.longestWindow)
{
    for (const LayerDesign& design : designs) {
        layers_.push_back(std::make_unique<SynthesisLayer>(design, geometry, channelCount));
        noShare_.emplace_back(design.binCount);
        Array<float>& weights = fixedWeights_.emplace_back(design.binCount);
        std::copy_n(design.bandWeights.data() + design.firstBin, design.binCount, weights.data());
    }
    if (designs.size() > 1) {
        lowBand_.emplace(designs[0], designs[1]);
    }
    reset(1);
}

void SynthesisStage::reset(double ratio) noexcept
{
    ratio_ = wantedRatio_ = ratio;
    block_ = 0;
    inputEnd_ = 0;
    neutralFrames_ = ratio == 1 ? framesToNeutral_ : 0;
    for (const std::unique_ptr<SynthesisLayer>& layer : layers_) {
        layer->reset(ratio);
    }
    if (lowBand_) {
        lowBand_->reset();
    }
}

void SynthesisStage::begin() noexcept
{
    ++block_;
    inputEnd_ += geometry_.block;
    const Frames reference = inputEnd_ - geometry_.lookAhead;
    takeOverRatio(reference);
    countNeutralFrames();
    chooseLowBand(reference);
    prepareLayers(reference);
    synthesise(reference, false);
    synthesiseHits(reference, false);
}

void SynthesisStage::render(int begin, int end, std::span<float* const> output) noexcept
{
    for (float* channel : output) {
        std::fill(channel + begin, channel + end, 0.0F);
    }
    for (const std::unique_ptr<SynthesisLayer>& layer : layers_) {
        layer->render(part(begin, end), onsets(), analysis_.detector(), output);
    }
}

void SynthesisStage::cutWaiting() noexcept
{
    const Frames reference = inputEnd_ - geometry_.lookAhead;
    for (std::size_t index = 0; index < layers_.size(); ++index) {
        const LayerGeometry& layer = geometry_.layers[index];
        if (geometry_.canWait(layer) && reference % layer.hop == 0) {
            layers_[index]->cutPrepared(analysis_.input().of(layer));
        }
    }
}

void SynthesisStage::synthesiseWaiting() noexcept
{
    synthesise(inputEnd_ - geometry_.lookAhead, true);
}

void SynthesisStage::finish() noexcept
{
    synthesiseHits(inputEnd_ - geometry_.lookAhead, true);
}

void SynthesisStage::anticipate() noexcept
{
    const Frames reference = inputEnd_ + geometry_.block - geometry_.lookAhead;
    for (std::size_t index = 0; index < layers_.size(); ++index) {
        const LayerGeometry& layer = geometry_.layers[index];
        if (!geometry_.canWait(layer) && reference % layer.hop == 0) {
            layers_[index]->anticipate(floorDivide(reference, layer.hop), onsets(),
                                       analysis_.input().of(layer));
        }
    }
}

void SynthesisStage::takeOverRatio(Frames reference) noexcept
{
    if (reference % geometry_.longestHop != 0 || ratio_ == wantedRatio_) {
        return;
    }
    ratio_ = wantedRatio_;
    for (const std::unique_ptr<SynthesisLayer>& layer : layers_) {
        layer->changeRatio(reference);
    }
}

void SynthesisStage::countNeutralFrames() noexcept
{
    if (ratio_ != 1) {
        neutralFrames_ = 0;
        return;
    }
    const bool was = isNeutral();
    neutralFrames_ = std::min(framesToNeutral_, neutralFrames_ + geometry_.block);
    if (!was && isNeutral()) {  // bins that nothing used for so long may still hold a rotation
        for (const std::unique_ptr<SynthesisLayer>& layer : layers_) {
            layer->phases().clearRotations();
        }
    }
}

void SynthesisStage::chooseLowBand(Frames reference) noexcept
{
    const LayerGeometry& lowest = geometry_.layers.front();
    if (lowBand_ && reference % lowest.hop == 0) {
        const bool isNearOnset = onsets().isNear(reference, lowest.release, lowLayers);
        lowBand_->update(analysis_.frames(1), floorDivide(reference, lowest.hop), !isNearOnset);
    }
}

void SynthesisStage::prepareLayers(Frames reference) noexcept
{
    for (std::size_t index = 0; index < layers_.size(); ++index) {
        const LayerGeometry& layer = geometry_.layers[index];
        if (reference % layer.hop == 0) {
            layers_[index]->prepare(floorDivide(reference, layer.hop), onsets());
        }
    }
}

/// Synthesises the frame at `reference`, in those layers that can wait or in the others.
void SynthesisStage::synthesise(Frames reference, bool waiting) noexcept
{
    for (std::size_t index = 0; index < layers_.size(); ++index) {
        const LayerGeometry& layer = geometry_.layers[index];
        if (geometry_.canWait(layer) == waiting && reference % layer.hop == 0) {
            synthesiseLayer(index);
        }
    }
}

void SynthesisStage::synthesiseHits(Frames reference, bool waiting) noexcept
{
    for (std::size_t index = 0; index < layers_.size(); ++index) {
        const LayerGeometry& layer = geometry_.layers[index];
        if (geometry_.canWait(layer) == waiting && reference % layer.hop == 0) {
            layers_[index]->synthesiseHit(analysis_.frames(index));
        }
    }
}

void SynthesisStage::synthesiseLayer(std::size_t index) noexcept
{
    const bool isLowest = index == 0;
    const bool isSecond = index == 1;
    const Array<float>* weights = &fixedWeights_[index];
    if (lowBand_ && (isLowest || isSecond)) {
        weights = isLowest ? &lowBand_->lowestWeights() : &lowBand_->secondWeights();
    }
    const SynthesisLayer::Settings settings{
        .ratio = ratio_,
        .input = analysis_.input().of(geometry_.layers[index]),
        .weights = *weights,
        .ownShare = lowBand_ && isSecond ? lowBand_->servedShare() : noShare_[index],
        .lower = isLowest ? nullptr : layers_[index - 1].get()};
    layers_[index]->synthesise(analysis_.frames(index), settings);
    if (lowBand_ && isSecond) {
        layers_[1]->phases().handTo(layers_[0]->phases(), lowBand_->lostShare());
    }
}

}  // namespace tonvale::timepitch
