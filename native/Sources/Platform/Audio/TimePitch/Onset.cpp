// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cstdlib>

#include "Platform/Audio/TimePitch/Onset.h"

namespace tonvale::timepitch {

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
    return context;
}

bool OnsetList::isNear(Frames position, Frames distance, unsigned layers) const noexcept
{
    return std::any_of(begin(), end(), [&](const Onset& onset) {
        return (onset.layers & layers) != 0 && std::abs(onset.position - position) < distance;
    });
}

}  // namespace tonvale::timepitch
