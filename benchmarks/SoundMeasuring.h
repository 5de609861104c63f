// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Support/Recorder.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>

namespace tonvale::benchmarks {

/// Prints a line with the median and the extremes of some figures.
void report(const char* what, std::vector<double> figures, const char* unit);

/// Prints the share of one core that this process uses in the time from now on.
void reportProcessor(const char* what, std::chrono::seconds time);

void reportUnderruns(std::uint64_t count, std::chrono::seconds time);

/// Returns when so much more was recorded. @error std::runtime_error when nothing is any more
void wait(test::Recorder& recorder, double seconds);

/// The frame that the device is playing.
[[nodiscard]] double now(const test::Recorder& recorder);

/// Keeps every core of the machine busy for as long as it exists.
class BusyCores {
public:
    BusyCores();
    ~BusyCores();
    BusyCores(const BusyCores&) = delete;
    BusyCores& operator=(const BusyCores&) = delete;

private:
    std::atomic<bool> isOver_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace tonvale::benchmarks
