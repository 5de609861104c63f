// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <memory>

namespace tonvale {

/// One call of a function on the main thread, made ready there and asked for by another thread.
///
/// Where nobody asks for it, the function is never called. Copies stand for the same call.
class MainThreadCall {
public:
    /// @param body  called, and destroyed, on the main thread
    /// @thread CONTROL
    explicit MainThreadCall(std::function<void()> body);

    /// Lets the main thread call the function out of its event queue: later, even when asked from
    /// the main thread itself. Takes effect once. @thread ANY
    void post() &&;

private:
    class Receiver;

    std::shared_ptr<Receiver> receiver_;
};

}  // namespace tonvale
