// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Numbers.h"

#include <vector>

namespace tonvale::timepitch {

/// A raised-cosine transition between two bands; it reaches `halfWidth` to both sides.
struct Crossover {
    double centre = 0;     ///< Hz; 0: there is none, the band is open on this side
    double halfWidth = 0;  ///< Hz

    [[nodiscard]] bool exists() const noexcept { return centre > 0; }
};

/// Sizes of one layer: one band of the spectrum with the window length that suits it.
struct LayerGeometry {
    int index = 0;          ///< 0 = lowest band
    double sampleRate = 0;  ///< Hz, of the song
    Crossover lower;
    Crossover upper;
    int attack = 0;      ///< frames of the window before its reference frame
    int release = 0;     ///< frames of the window from its reference frame on
    int hop = 0;         ///< frames from one reference to the next
    int decimation = 1;  ///< the layer's own rate is sampleRate / decimation

    [[nodiscard]] int size() const noexcept { return attack + release; }
    [[nodiscard]] int decimatedSize() const noexcept { return size() / decimation; }
    [[nodiscard]] double binWidth() const noexcept { return sampleRate / size(); }
};

/// Sizes of the whole engine at one sample rate.
struct Geometry {
    double sampleRate = 0;  ///< Hz
    std::vector<LayerGeometry> layers;
    int block = 0;          ///< frames per step: the shortest hop
    int longestHop = 0;     ///< frames; every layer has a reference at its multiples
    int longestWindow = 0;  ///< frames
    int lookAhead = 0;      ///< frames of input after the reference that a synthesis needs
    int tail = 0;           ///< frames between the reference being synthesised and the output

    /// Whether the layer's windows are so much shorter than the longest one that its frames may be
    /// made a block late.
    [[nodiscard]] bool canWait(const LayerGeometry& layer) const noexcept
    {
        return layer.release + layer.hop + block <= lookAhead && layer.release + block <= tail;
    }
    /// Frames from a sample's arrival to its place in the output.
    [[nodiscard]] int latency() const noexcept { return lookAhead + tail; }
};

/// A piece of one of the engine's blocks: frames [begin, end) of the block that starts at `block`.
struct BlockPart {
    /// Blocks are cut at whole eighths only.
    static constexpr int perBlock = 8;

    Frames block = 0;
    int begin = 0;
    int end = 0;

    [[nodiscard]] Frames position() const noexcept { return block + begin; }
    [[nodiscard]] int size() const noexcept { return end - begin; }
};

/// The sizes at `sampleRate` (Hz): those measured best at 44.1 kHz, times the nearest of
/// 1, 1.5, 2, 3, 4, 6 ... (or their inverses), so that times stay within a quarter of the design
/// and the FFTs keep small factors. Layers whose band lies above Nyquist are left out.
/// @thread ANY
[[nodiscard]] Geometry makeGeometry(double sampleRate);

}  // namespace tonvale::timepitch
