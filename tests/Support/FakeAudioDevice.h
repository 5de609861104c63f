// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Output/AudioOutput.h"

namespace tonvale::test {

/// A device without a loudspeaker, for as long as it exists: the test decides when it takes frames.
/// Outputs are shared through this object; at most one may be open at a time.
class FakeAudioDevice {
public:
    FakeAudioDevice();
    ~FakeAudioDevice();
    FakeAudioDevice(const FakeAudioDevice&) = delete;
    FakeAudioDevice& operator=(const FakeAudioDevice&) = delete;

    AudioFormat format{.sampleRate = 48000, .channelCount = 2};
    bool refusesToStart = false;  ///< then start() throws "Connection refused"
    bool isRunning = false;       ///< clear it to lose the device
    int startCount = 0;
    int discardCount = 0;
    AudioOutputSource* source = nullptr;  ///< of the last start(); null once that output is gone
};

}  // namespace tonvale::test
