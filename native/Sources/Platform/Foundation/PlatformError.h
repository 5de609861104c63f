// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Foundation/LocalizedError.h"

#include <string>
#include <utility>

namespace tonvale {

/// A failure reported by the system or one of its libraries, in that library's own words:
/// no prefix, no path, nothing added.
class PlatformError : public LocalizedError {
public:
    explicit PlatformError(std::string description) : description_(std::move(description)) {}

    /// @param errorNumber  a value of `errno`; the text is strerror's
    [[nodiscard]] static PlatformError fromErrno(int errorNumber);

    [[nodiscard]] std::string errorDescription() const override { return description_; }

private:
    std::string description_;
};

}  // namespace tonvale
