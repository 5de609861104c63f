// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/UnfinishedOutputs.h"

namespace tonvale {

UnfinishedOutputs::Entry::Entry(UnfinishedOutputs& outputs) : outputs_(outputs)
{
    const std::lock_guard lock(outputs_.mutex_);
    check();
    ++outputs_.count_;
}

UnfinishedOutputs::Entry::~Entry()
{
    const std::lock_guard lock(outputs_.mutex_);
    --outputs_.count_;
    outputs_.changed_.notify_all();
}

void UnfinishedOutputs::Entry::check() const
{
    if (outputs_.isInterrupted_) {
        throw Interrupted();
    }
}

void UnfinishedOutputs::interrupt()
{
    std::unique_lock lock(mutex_);
    isInterrupted_ = true;
    changed_.wait(lock, [this] { return count_ == 0; });
}

}  // namespace tonvale
