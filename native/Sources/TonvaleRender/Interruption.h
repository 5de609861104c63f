// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace tonvale {

/// Remembers that the user asked to stop (Ctrl-C, or the terminal or system going down), so that
/// the render can end between two blocks and clean up. Further signals change nothing: shells,
/// terminals and timeouts like to send more than one.
/// One per process; the destructor gives the signals back.
/// @thread CONTROL; signalNumber() ANY
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// @return the signal that asked to stop, 0 while none did
    [[nodiscard]] int signalNumber() const noexcept;
};

/// Ends the process by `signalNumber`, as the shell expects of an interrupted command.
[[noreturn]] void endBySignal(int signalNumber);

}  // namespace tonvale
