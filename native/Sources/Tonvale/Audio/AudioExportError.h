// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Foundation/LocalizedError.h"

#include <cstddef>
#include <functional>
#include <string>

namespace tonvale {

/// What an export can fail of by itself; every other failure is the platform's.
class AudioExportError : public LocalizedError {
public:
    enum Case {
        couldNotCreateBuffer,
        emptyRender,
        renderFailed,
    };

    AudioExportError(Case which) noexcept : which_(which) {}

    [[nodiscard]] Case which() const noexcept { return which_; }
    [[nodiscard]] std::string errorDescription() const override;

    friend bool operator==(const AudioExportError& left, const AudioExportError& right) noexcept
    {
        return left.which_ == right.which_;
    }

private:
    Case which_;
};

}  // namespace tonvale

template <>
struct std::hash<tonvale::AudioExportError> {
    std::size_t operator()(const tonvale::AudioExportError& error) const noexcept
    {
        return static_cast<std::size_t>(error.which());
    }
};
