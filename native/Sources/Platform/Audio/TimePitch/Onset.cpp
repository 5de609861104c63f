// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cstdlib>

#include "Platform/Audio/TimePitch/Onset.h"

namespace tonvale::timepitch {

namespace {

/// Whether a frame that holds two onsets must ignore the second one, because the first would not be
/// heard otherwise. In the layers with long windows that is when all of the first one's frames hold
/// the second as well; in the last one the factor of the release was measured.
bool ignoresSecond(const LayerGeometry& layer, Frames first, Frames second)
{
    constexpr double closestPair = 1.3;
    if (!layer.upper.exists()) {
        return static_cast<double>(second - first) < closestPair * layer.release;
    }
    const Frames firstFrame = ceilDivide(first - layer.hop / 2, layer.hop) * layer.hop;
    return second - firstFrame < layer.release;
}

}  // namespace

Onset* OnsetList::last() noexcept
{
    return count_ > 0 ? &onsets_[count_ - 1] : nullptr;
}

void OnsetList::add(const Onset& onset) noexcept
{
    if (count_ == capacity) {
        drop(1);
    }
    onsets_[count_++] = onset;
}

void OnsetList::forgetBefore(Frames position) noexcept
{
    const auto isOld = [position](const Onset& onset) { return onset.position < position; };
    drop(static_cast<std::size_t>(std::find_if_not(begin(), end(), isOld) - begin()));
}

void OnsetList::drop(std::size_t count) noexcept
{
    std::copy(begin() + count, end(), onsets_.begin());
    count_ -= count;
}

OnsetContext OnsetList::around(const LayerGeometry& layer, Frames reference) const noexcept
{
    OnsetContext context;
    for (const Onset& onset : *this) {
        if (!onset.isIn(layer.index)) {
            continue;
        }
        if (onset.position <= reference + layer.hop / 2) {
            if (reference - onset.position < layer.release) {
                context.current = &onset;
            }
        } else if (context.next == nullptr && onset.position - reference < layer.release) {
            context.next = &onset;
        }
    }
    if (context.current != nullptr && context.next != nullptr
        && ignoresSecond(layer, context.current->position, context.next->position)) {
        context.next = nullptr;
    }
    return context;
}

bool OnsetList::isNear(Frames position, Frames distance, unsigned layers) const noexcept
{
    return std::any_of(begin(), end(), [&](const Onset& onset) {
        return (onset.layers & layers) != 0 && std::abs(onset.position - position) < distance;
    });
}

}  // namespace tonvale::timepitch
