// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/NamedPipe.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace tonvale::test {

namespace {

constexpr int patienceInMilliseconds = 30'000;

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

NamedPipe::NamedPipe(std::filesystem::path path) : path_(std::move(path))
{
    if (::mkfifo(path_.c_str(), 0600) != 0) {
        fail("mkfifo");
    }
    // Opened both ways, so that neither side ever waits for the other to open it.
    descriptor_ = FileDescriptor(::open(path_.c_str(), O_RDWR | O_CLOEXEC));
    if (!descriptor_.isOpen()) {
        fail("open");
    }
}

NamedPipe::~NamedPipe()
{
    // The name goes first: who opened the pipe sees its end, who did not cannot any more.
    std::error_code ignored;  // a leftover name is removed with its folder
    std::filesystem::remove(path_, ignored);
}

void NamedPipe::send(std::string_view line)
{
    const std::string text = std::string(line) + "\n";
    if (::write(descriptor_.get(), text.data(), text.size()) < 0) {
        fail("write");
    }
}

std::string NamedPipe::receive()
{
    std::string line;
    for (;;) {
        pollfd request{descriptor_.get(), POLLIN, 0};
        if (::poll(&request, 1, patienceInMilliseconds) != 1) {
            throw std::runtime_error("no line came through " + path_.string());
        }
        char letter = 0;
        if (::read(descriptor_.get(), &letter, 1) != 1) {
            fail("read");
        }
        if (letter == '\n') {
            return line;
        }
        line += letter;
    }
}

}  // namespace tonvale::test
