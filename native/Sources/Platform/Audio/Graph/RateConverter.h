// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct SwrContext;

namespace tonvale {

/// Brings a stereo stream from one sample rate to another. What comes out is not late: the frame of
/// second t of the input is the frame of second t of the output.
/// @thread one at a time
class RateConverter {
public:
    using Sides = std::array<std::span<const float>, 2>;

    /// @param sourceRate, targetRate  Hz, whole and positive
    /// @error PlatformError when there is no memory
    RateConverter(double sourceRate, double targetRate, std::uint32_t maximumFrameCount);
    ~RateConverter();
    RateConverter(const RateConverter&) = delete;
    RateConverter& operator=(const RateConverter&) = delete;

    /// The most frames that one convert() or finish() gives.
    [[nodiscard]] std::uint32_t maximumOutput() const noexcept { return maximumOutput_; }

    /// Back to the start of a stream; silence lies before it.
    /// @error PlatformError when there is no memory
    void reset();

    /// @param in  left and right, of one length: the maximum given at construction or less
    /// @return interleaved frames, valid until the next call
    [[nodiscard]] std::span<const float> convert(const Sides& in);

    /// What is still to come when silence follows; then reset() is due.
    [[nodiscard]] std::span<const float> finish();

private:
    struct Deleter {
        void operator()(SwrContext* context) const noexcept;
    };

    void makeContext(std::uint32_t sourceRate, std::uint32_t targetRate);
    void feedSilence(std::uint64_t frames);
    /// Fills output_ and outputFrames_.
    void resample(const Sides& in);

    std::uint32_t inputStep_;   // so many frames of input are exactly
    std::uint32_t outputStep_;  // so many of output
    std::uint32_t memory_;      // frames of input that the filter reaches over
    std::uint32_t maximumFrameCount_;
    std::uint32_t maximumOutput_;
    std::unique_ptr<SwrContext, Deleter> context_;
    std::vector<float> silence_;
    std::vector<float> output_;  // interleaved
    std::size_t outputFrames_ = 0;
    std::uint64_t framesToDrop_ = 0;  // what silence before the stream becomes, still to come
    std::uint64_t framesTaken_ = 0;
    std::uint64_t framesGiven_ = 0;
};

}  // namespace tonvale
