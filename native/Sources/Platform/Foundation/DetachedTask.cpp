// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/DetachedTask.h"

#include "Platform/Foundation/PlatformError.h"

#include <exception>
#include <system_error>
#include <thread>

namespace tonvale::DetachedTask::detail {

std::exception_ptr startThread(std::function<void()> body)
{
    try {
        std::thread(std::move(body)).detach();
    } catch (const std::system_error& error) {
        return std::make_exception_ptr(PlatformError::fromErrno(error.code().value()));
    }
    return nullptr;
}

}  // namespace tonvale::DetachedTask::detail
