// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/PrivateMounts.h"

#include <sched.h>
#include <sys/mount.h>

#include <cerrno>
#include <exception>
#include <system_error>
#include <thread>

namespace tonvale::test {

namespace {

void check(int result, const char* what)
{
    if (result != 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

bool makeMountsPrivate()
{
    return ::unshare(CLONE_NEWNS) == 0
           && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

}  // namespace

bool runWithPrivateMounts(const std::function<void()>& body)
{
    bool isAllowed = false;
    std::exception_ptr error;
    std::thread([&] {
        isAllowed = makeMountsPrivate();
        try {
            if (isAllowed) {
                body();
            }
        } catch (...) {
            error = std::current_exception();
        }
    }).join();
    if (error) {
        std::rethrow_exception(error);
    }
    return isAllowed;
}

void mountOver(const std::filesystem::path& covered, const std::filesystem::path& shown)
{
    check(::mount(shown.c_str(), covered.c_str(), nullptr, MS_BIND, nullptr), "mount");
}

void unmount(const std::filesystem::path& covered)
{
    check(::umount(covered.c_str()), "umount");
}

}  // namespace tonvale::test
