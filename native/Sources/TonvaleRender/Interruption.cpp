// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/Interruption.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdlib>

namespace tonvale {

namespace {

constexpr std::array<int, 3> stoppingSignals{SIGINT, SIGTERM, SIGHUP};

// A signal handler can reach nothing but an object of static storage.
std::atomic<int> receivedSignal = 0;
static_assert(std::atomic<int>::is_always_lock_free);

void remember(int signalNumber)
{
    receivedSignal.store(signalNumber);
}

void handle(int signalNumber, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigaction(signalNumber, &action, nullptr);
}

bool isIgnored(int signalNumber)
{
    struct sigaction action = {};
    sigaction(signalNumber, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

}  // namespace

Interruption::Interruption()
{
    receivedSignal.store(0);
    for (const int signalNumber : stoppingSignals) {
        if (!isIgnored(signalNumber)) {  // nohup and background jobs ignore some on purpose
            handle(signalNumber, remember);
        }
    }
}

Interruption::~Interruption()
{
    for (const int signalNumber : stoppingSignals) {
        if (!isIgnored(signalNumber)) {
            handle(signalNumber, SIG_DFL);
        }
    }
}

int Interruption::signalNumber() const noexcept
{
    return receivedSignal.load();
}

void endBySignal(int signalNumber)
{
    handle(signalNumber, SIG_DFL);
    std::raise(signalNumber);
    std::_Exit(128 + signalNumber);  // reached only where the signal is blocked
}

}  // namespace tonvale
