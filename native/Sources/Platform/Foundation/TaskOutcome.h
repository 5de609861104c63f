// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <optional>
#include <utility>

namespace tonvale {

/// What a task came to: its result or the exception that ended it.
/// @thread one at a time
template <class Result>
class TaskOutcome {
public:
    /// Runs `work` and keeps what comes of it.
    template <class Work>
    void take(Work& work) noexcept
    {
        try {
            result_ = work();
        } catch (...) {
            error_ = std::current_exception();
        }
    }

    void fail(std::exception_ptr error) noexcept { error_ = std::move(error); }

    /// @error the exception that ended the task
    [[nodiscard]] const Result& get() const
    {
        if (error_) {
            std::rethrow_exception(error_);
        }
        return result_.value();
    }

private:
    std::optional<Result> result_;
    std::exception_ptr error_;
};

/// The same of a task without a result.
template <>
class TaskOutcome<void> {
public:
    template <class Work>
    void take(Work& work) noexcept
    {
        try {
            work();
        } catch (...) {
            error_ = std::current_exception();
        }
    }

    void fail(std::exception_ptr error) noexcept { error_ = std::move(error); }

    void get() const
    {
        if (error_) {
            std::rethrow_exception(error_);
        }
    }

private:
    std::exception_ptr error_;
};

}  // namespace tonvale
