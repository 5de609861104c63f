// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

namespace tonvale::test {

/// A message bus of its own, in place of the desktop's for as long as it lives.
class SessionBus {
public:
    SessionBus();
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    /// Empty where the system has no message bus; there is no session bus at all then.
    [[nodiscard]] const std::string& address() const noexcept { return address_; }

private:
    int process_ = -1;
    std::string address_;
};

}  // namespace tonvale::test
