// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <string>

namespace tonvale {

/// An error that can say, in one sentence for the user, what went wrong.
/// Base of everything the program throws on purpose.
class LocalizedError : public std::exception {
public:
    [[nodiscard]] virtual std::string errorDescription() const = 0;

    /// For debuggers and uncaught errors only; users are shown errorDescription().
    [[nodiscard]] const char* what() const noexcept override { return "tonvale::LocalizedError"; }
};

/// The sentence to show for any exception; never empty.
/// @thread ANY
[[nodiscard]] std::string localizedDescription(const std::exception_ptr& error);

}  // namespace tonvale
