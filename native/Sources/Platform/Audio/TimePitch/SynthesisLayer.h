// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/AudibleSpan.h"
#include "Platform/Audio/TimePitch/FrameParts.h"
#include "Platform/Audio/TimePitch/InputHistory.h"
#include "Platform/Audio/TimePitch/Interpolator.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/OnsetDetector.h"
#include "Platform/Audio/TimePitch/OnsetGate.h"
#include "Platform/Audio/TimePitch/OverlapRing.h"
#include "Platform/Audio/TimePitch/PhaseTracker.h"
#include "Platform/Audio/TimePitch/RealFft.h"
#include "Platform/Audio/TimePitch/RegionShifter.h"
#include "Platform/Audio/TimePitch/SpectrumFrame.h"

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace tonvale::timepitch {

/// Makes the output of one layer from its frames.
///
/// Frames are put back where they came from (constant hop, no stretching), so nothing can move in
/// time. The old parts of frames go to one ring per pitch: when the ratio changes, new frames go to
/// the next ring and the two are crossfaded half a hop before the first new frame. The new parts of
/// an onset go to rings of their own, one per onset and pitch, and through the gate; what lies
/// before the onset in the same bins is told apart by a second analysis (FrameParts).
/// @thread WORKER, one at a time; only constructing allocates
class SynthesisLayer {
public:
    SynthesisLayer(const LayerDesign& design, const Geometry& geometry, unsigned channelCount);
    SynthesisLayer(const SynthesisLayer&) = delete;  // its parts refer to each other
    SynthesisLayer& operator=(const SynthesisLayer&) = delete;

    void reset(double ratio) noexcept;
    /// New frames from reference `firstFrame` on have another ratio.
    void changeRatio(Frames firstFrame) noexcept;

    /// What a frame is made with.
    struct Settings {
        double ratio;
        const InputHistory& input;     ///< at the layer's own rate
        const Array<float>& weights;   ///< band weight per stored bin
        const Array<float>& ownShare;  ///< see PhaseTracker::Frame
        const SynthesisLayer* lower;   ///< the layer below, or null
    };
    /// Decides what the onsets around frame `number` make of it. It is the next to be synthesised;
    /// until then the onsets must stay where they are.
    void prepare(std::int64_t number, const OnsetList& onsets) noexcept;
    /// Does ahead of time what the onsets known so far will need of frame `number`, the next one to
    /// be prepared; changes no result.
    void anticipate(std::int64_t number, const OnsetList& onsets,
                    const InputHistory& input) noexcept;
    /// A first part of synthesise() that may be done before it.
    void cutPrepared(const InputHistory& input) noexcept
    {
        parts_.cut(prepared_.number, prepared_.onsets, input);
    }
    /// Synthesises the frame that was prepared, all but what is new to its onset; it may be
    /// rendered before, if it is not yet heard.
    void synthesise(const FrameHistory& frames, const Settings& settings) noexcept;
    /// The rest of it.
    void synthesiseHit(const FrameHistory& frames) noexcept;

    /// Adds the next piece of a block to `output` (of the whole block); with its end, frees the
    /// memory of the block before it.
    void render(const BlockPart& part, const OnsetList& onsets, const OnsetDetector& envelope,
                std::span<float* const> output) noexcept;

    [[nodiscard]] PhaseTracker& phases() noexcept { return phases_; }

private:
    static constexpr std::size_t pitchRingCount = 6;      // changes within one window's length
    static constexpr std::size_t onsetRingsPerPitch = 3;  // hits within one window's length
    static constexpr std::size_t pitchesPerOnset = 4;

    struct Voice {  ///< frames that are heard together
        explicit Voice(OverlapRing memory) : ring(std::move(memory)) {}
        OverlapRing ring;
        AudibleSpan span;
        Frames lastWritten = AudibleSpan::openBegin;
        std::int64_t onset = -1;  ///< number of the onset; new parts only
        std::int64_t pitch = -1;  ///< number of the ratio; new parts only
        float limit = 1;          ///< gain of the gate's limiter
    };

    struct PreparedFrame {
        std::int64_t number = 0;
        OnsetContext onsets;
        bool isFirst = false;        ///< the first one after onsets.current
        Voice* newPart = nullptr;    ///< where the new part of onsets.current goes
        Voice* sustained = nullptr;  ///< where everything else goes
    };

    [[nodiscard]] OverlapRing makeRing(const Geometry& geometry) const;
    [[nodiscard]] Voice& voiceOf(const Onset& onset, Frames reference, bool isFirst) noexcept;
    void movePhases(const FrameHistory& frames, const Settings& settings) noexcept;
    void synthesisePart(const SpectrumFrame& frame, bool isSustained, Voice& voice) noexcept;
    void carryDc(const SpectrumFrame& frame) noexcept;
    void addFrame(OverlapRing& ring, unsigned channel, Frames reference) noexcept;
    void interpolate(const Voice& voice, const BlockPart& part) noexcept;
    [[nodiscard]] bool isAlive(const Voice& voice, Frames block) const noexcept;
    void renderPitch(Voice& voice, const BlockPart& part, std::span<float* const> output) noexcept;
    void renderOnset(Voice& voice, const BlockPart& part, const OnsetList& onsets,
                     const OnsetDetector& envelope, std::span<float* const> output) noexcept;

    const LayerDesign& design_;
    unsigned channelCount_;
    int block_;
    RealFft fft_;
    FrameParts parts_;
    PhaseTracker phases_;
    RegionShifter shifter_;
    Interpolator interpolator_;
    SpanGain spanGain_;
    OnsetGate gate_;
    std::vector<Voice> pitchVoices_;
    std::vector<Voice> onsetVoices_;
    std::size_t currentPitchVoice_ = 0;
    std::int64_t pitchNumber_ = 0;
    Frames pitchStart_ = AudibleSpan::openBegin;
    Frames lastReference_ = 0;
    PreparedFrame prepared_;
    ChannelSpectra source_;
    ChannelSpectra target_;
    Array<float> lowRate_;
    Array<float> gains_;
    std::vector<Array<float>> fullRate_;
    std::vector<float*> fullRatePointers_;
};

}  // namespace tonvale::timepitch
