// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/Onset.h"
#include "Platform/Audio/TimePitch/SpectrumFrame.h"

namespace tonvale::timepitch {

/// Decides by which angle the region of every peak is turned.
///
/// A partial of frequency w that is moved to r w gains (r - 1) w radians per frame on the input; so
///
///     rotation_m(k) = rotation_(m-1)(k') + (r - 1) advance
///
/// with k' and the advance from PeakTracker. The rotation is kept for every bin of the region, so
/// that a peak which is new inherits from whoever owned its bin. Exceptions: in the crossover a
/// peak takes the rotation of the layer below, so both halves of a partial stay together; at an
/// onset a peak that is new gets the rotation that is zero at the onset's first sample, so all
/// partials of a hit keep its wave shape (one that has only risen goes on as it was: its frames
/// from before and after the onset overlap and must agree); at the input's own pitch rotations
/// slowly return to zero.
/// @thread WORKER, one at a time; only constructing allocates
class PhaseTracker {
public:
    explicit PhaseTracker(const LayerDesign& design);

    /// What a frame's rotations depend on besides its peaks.
    struct Frame {
        const SpectrumFrame& spectrum;
        Frames reference;
        double ratio;
        const Array<float>& ownShare;     ///< by bin: below 0.5 the layer below leads in its band
        const PhaseTracker* lower;        ///< the layer below, or null
        Frames sinceLower;                ///< frames since the lower layer's last reference
        const Onset* firstAfter;          ///< the onset that this is the first frame after, or null
        const Array<float>* powerBefore;  ///< spread power before that onset
    };

    void reset(double ratio) noexcept;
    /// Sets rotation() for all peaks of the frame; call once per frame, in order.
    void advance(const Frame& frame) noexcept;
    /// Forgets what the pitch has turned so far.
    void clearRotations() noexcept { rotations_.clear(); }
    /// Gives bins of `lower` whose partial this layer serves the rotation it has here.
    void handTo(PhaseTracker& lower, const Array<float>& servedShare) const noexcept;

    /// By peak index of the last frame, radians in [-pi, pi].
    [[nodiscard]] float rotation(std::size_t peak) const noexcept
    {
        return peakRotations_[static_cast<std::ptrdiff_t>(peak)];
    }

    /// Largest speed at which rotations return to zero at the input's own pitch, radians per
    /// second: 0.16 Hz, below any just noticeable difference of pitch.
    static constexpr double returnSpeed = 1;

private:
    [[nodiscard]] double rotationOf(const SpectralPeak& peak, const Frame& frame,
                                    double gained) const noexcept;
    [[nodiscard]] bool followsLower(int bin, const Frame& frame) const noexcept;
    void keep(const SpectralPeak& peak, int begin, float rotation, double ratio) noexcept;
    [[nodiscard]] double returned(double rotation) const noexcept;

    const LayerDesign& design_;
    int crossoverEnd_;         ///< one past the last bin where the layer below also has a part
    float returnStep_;         ///< radians per frame
    double framesPerAdvance_;  ///< 1 / (2 hop): of the two advances' sum
    double previousRatio_ = 1;
    Array<float> rotations_;  ///< by bin
    Array<float> speeds_;     ///< by bin: (ratio - 1) w, radians per frame of the song
    Array<float> nextRotations_;
    Array<float> peakRotations_;
};

}  // namespace tonvale::timepitch
