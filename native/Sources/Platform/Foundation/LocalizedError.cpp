// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/LocalizedError.h"

namespace tonvale {

namespace {

std::string describe(const std::exception_ptr& error)
{
    try {
        std::rethrow_exception(error);
    } catch (const LocalizedError& known) {
        return known.errorDescription();
    } catch (const std::exception& foreign) {
        return foreign.what();
    } catch (...) {
        return {};
    }
}

}  // namespace

std::string localizedDescription(const std::exception_ptr& error)
{
    const std::string description = error ? describe(error) : std::string();
    return description.empty() ? "An unknown error occurred." : description;
}

}  // namespace tonvale
