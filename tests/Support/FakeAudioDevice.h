// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Output/AudioOutput.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

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
    bool refusesToStart = false;          ///< then start() throws "Connection refused"
    std::atomic<bool> isRunning = false;  ///< clear it to lose the device
    int startCount = 0;
    int discardCount = 0;
    AudioOutputSource* source = nullptr;  ///< of the last start(); null once that output is gone
    std::string title;
    std::atomic<std::uint64_t> underrunCount = 0;

    /// Lets the device read once. @return what the source had of `frames` frames, interleaved
    /// @thread any one, beside CONTROL
    [[nodiscard]] std::vector<float> pull(std::uint32_t frames);

    /// Reads again whenever the source says it has more, until there are `frames` frames; fewer
    /// when it says nothing for 30 seconds. @thread as pull()
    [[nodiscard]] std::vector<float> pullAll(std::uint32_t frames);

    /// What an output calls.
    void finishReads();
    void framesReady();

private:
    [[nodiscard]] std::uint64_t readyCount();

    std::mutex reading_;  // held while the source is read
    std::mutex mutex_;
    std::condition_variable ready_;
    std::uint64_t readyCount_ = 0;
};

}  // namespace tonvale::test
