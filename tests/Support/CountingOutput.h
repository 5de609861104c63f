// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Output/AudioOutput.h"
#include "Platform/Audio/Output/PulseAudioOutput.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace tonvale::test {

/// What the device has taken from its source.
struct TakenFrames {
    std::atomic<std::uint64_t> all = 0;
    std::atomic<std::uint64_t> sounding = 0;  ///< those that are not silent
};

/// The desktop's sound server, with a count of what it takes.
class CountingOutput final : public AudioOutput, private AudioOutputSource {
public:
    /// @param taken  outlives this object
    explicit CountingOutput(TakenFrames& taken) noexcept : taken_(taken) {}

    void start(AudioOutputSource& source) override
    {
        source_ = &source;
        output_.start(*this);
    }
    [[nodiscard]] bool isRunning() const noexcept override { return output_.isRunning(); }
    [[nodiscard]] AudioFormat format() const noexcept override { return output_.format(); }
    void discardQueued() noexcept override { output_.discardQueued(); }
    void framesReady() noexcept override { output_.framesReady(); }
    [[nodiscard]] std::uint64_t underrunCount() const noexcept override
    {
        return output_.underrunCount();
    }
    void setTitle(std::string_view title) override { output_.setTitle(title); }

private:
    [[nodiscard]] std::uint32_t read(std::span<float> samples) noexcept override
    {
        const std::uint32_t count = source_->read(samples);
        taken_.all += count;
        for (std::size_t frame = 0; frame < count; ++frame) {
            taken_.sounding += samples[2 * frame] != 0.0F ? 1 : 0;
        }
        return count;
    }

    TakenFrames& taken_;
    AudioOutputSource* source_ = nullptr;
    PulseAudioOutput output_;  // last: its thread uses all of the above
};

}  // namespace tonvale::test
