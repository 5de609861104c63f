// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>

#include "Platform/Audio/TimePitch/BandWeights.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"

namespace tonvale::timepitch {

LayerDesign::LayerDesign(const LayerGeometry& layerGeometry)
    : geometry(layerGeometry)
    , windows(layerGeometry)
    , kernel(layerGeometry, windows)
    , bandWeights(makeBandWeights(layerGeometry, windows))
{
    constexpr int margin = 8;  // bins outside the band that tell where its outer peaks end
    constexpr int kernelReach = 3;
    constexpr int secondLayer = 1;  // may serve peaks of the lowest band (LowBandChooser)
    constexpr float silenceOfSample = 1e-16F;
    const int allBins = geometry.decimatedSize() / 2 + 1;
    int low = 0;
    int high = static_cast<int>(bandWeights.size());
    while (geometry.index != secondLayer && low < high && bandWeights[low] == 0) {
        ++low;
    }
    while (high > low && bandWeights[high - 1] == 0) {
        --high;
    }
    firstBin = std::max(0, low - margin);
    binCount = std::min(allBins, high + margin) - firstBin;
    activeBegin = std::max(carriesDc() ? 1 : kernelReach, low - firstBin);
    activeEnd = std::min(high - firstBin, binCount - kernelReach);
    const auto size = static_cast<float>(geometry.size());
    silencePower = silenceOfSample * size * size;
    advancePerBin = twoPi * geometry.hop / geometry.size();
}

int LayerDesign::nearestBin(const LayerDesign& other, int k) const noexcept
{
    const double bin =
        static_cast<double>(k + other.firstBin) * geometry.size() / other.geometry.size();
    return std::clamp(static_cast<int>(bin + 0.5) - firstBin, 0, binCount - 1);
}

}  // namespace tonvale::timepitch
