// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/AnalysisStage.h"
#include "Platform/Audio/TimePitch/BlockAssembler.h"

#include <atomic>
#include <cstdint>
#include <span>
#include <thread>

namespace tonvale::timepitch {

/// Runs the analysis of a call's input on a second thread, a little ahead of the caller.
///
/// One call at a time: begin() hands over the input, the caller waits for each block with
/// waitFor() and reports it as used with release(), finish() ends when all input was taken. As the
/// analysis knows nothing of the pitch, the samples are the same as without the thread.
/// @thread begin(), waitFor(), release(), finish(), reset(): one WORKER; they may wait for each
///         other's thread but never allocate
class AnalysisThread {
public:
    /// Blocks the analysis may be ahead of the caller; FrameHistory has room for them.
    static constexpr std::int64_t largestLead = 16;

    AnalysisThread(AnalysisStage& stage, unsigned channelCount, int block);
    ~AnalysisThread();
    AnalysisThread(const AnalysisThread&) = delete;
    AnalysisThread& operator=(const AnalysisThread&) = delete;

    void begin(std::span<const float* const> channels, unsigned frameCount) noexcept;
    void waitFor(std::int64_t blocks) noexcept;
    void release(std::int64_t blocks) noexcept;
    void finish() noexcept;
    /// Between calls only: back to the first block.
    void reset() noexcept;

private:
    void run() noexcept;
    void takeInput() noexcept;

    AnalysisStage& stage_;
    BlockAssembler assembler_;
    std::span<const float* const> channels_;
    unsigned frameCount_ = 0;
    bool stopping_ = false;
    std::atomic<std::int64_t> callsBegun_ = 0;
    std::atomic<std::int64_t> callsDone_ = 0;
    std::atomic<std::int64_t> blocksAnalysed_ = 0;
    std::atomic<std::int64_t> blocksUsed_ = 0;
    std::thread thread_;
};

}  // namespace tonvale::timepitch
