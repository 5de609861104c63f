// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Foundation/LocalizedError.h"

#include <string>
#include <utility>

namespace tonvale {

/// The command line cannot be understood; the user should look at the help.
class UsageError : public LocalizedError {
public:
    explicit UsageError(std::string description) : description_(std::move(description)) {}
    [[nodiscard]] std::string errorDescription() const override { return description_; }

private:
    std::string description_;
};

}  // namespace tonvale
