// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/TimePitch/AnalysisThread.h"
#include "Platform/Audio/TimePitch/DenormalGuard.h"

namespace tonvale::timepitch {

namespace {

/// Waits until `counter` has reached `target`.
void waitUntil(const std::atomic<std::int64_t>& counter, std::int64_t target) noexcept
{
    for (std::int64_t now = counter.load(std::memory_order_acquire); now < target;
         now = counter.load(std::memory_order_acquire)) {
        counter.wait(now, std::memory_order_acquire);
    }
}

void advanceTo(std::atomic<std::int64_t>& counter, std::int64_t value) noexcept
{
    counter.store(value, std::memory_order_release);
    counter.notify_one();
}

}  // namespace

AnalysisThread::AnalysisThread(AnalysisStage& stage, unsigned channelCount, int block)
    : stage_(stage)
    , assembler_(channelCount, block)
    , thread_([this] { run(); })
{
}

AnalysisThread::~AnalysisThread()
{
    stopping_ = true;  // published by the counter
    advanceTo(callsBegun_, callsBegun_.load() + 1);
    thread_.join();
}

void AnalysisThread::begin(std::span<const float* const> channels, unsigned frameCount) noexcept
{
    channels_ = channels;
    frameCount_ = frameCount;
    advanceTo(callsBegun_, callsBegun_.load() + 1);
}

void AnalysisThread::waitFor(std::int64_t blocks) noexcept
{
    waitUntil(blocksAnalysed_, blocks);
}

void AnalysisThread::release(std::int64_t blocks) noexcept
{
    advanceTo(blocksUsed_, blocks);
}

void AnalysisThread::finish() noexcept
{
    waitUntil(callsDone_, callsBegun_.load());
}

void AnalysisThread::reset() noexcept
{
    assembler_.reset();
    stage_.reset();
    blocksAnalysed_ = 0;
    blocksUsed_ = 0;
}

void AnalysisThread::run() noexcept
{
    const DenormalGuard guard;
    for (std::int64_t call = 1;; ++call) {
        waitUntil(callsBegun_, call);
        if (stopping_) {
            return;
        }
        takeInput();
        advanceTo(callsDone_, call);
    }
}

void AnalysisThread::takeInput() noexcept
{
    unsigned taken = 0;
    while (taken < frameCount_) {
        taken += static_cast<unsigned>(assembler_.push(channels_, taken, frameCount_ - taken));
        if (assembler_.isFull()) {
            const std::int64_t block = blocksAnalysed_.load(std::memory_order_relaxed) + 1;
            waitUntil(blocksUsed_, block - largestLead);
            stage_.begin(assembler_.channels());
            stage_.finish();
            assembler_.startNext();
            advanceTo(blocksAnalysed_, block);
        }
    }
}

}  // namespace tonvale::timepitch
