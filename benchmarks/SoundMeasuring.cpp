// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "SoundMeasuring.h"

#include "Support/ProcessState.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace tonvale::benchmarks {

void report(const char* what, std::vector<double> figures, const char* unit)
{
    std::sort(figures.begin(), figures.end());
    std::printf("%-36s median %7.1f, from %7.1f to %7.1f %s\n", what, figures[figures.size() / 2],
                figures.front(), figures.back(), unit);
}

void reportProcessor(const char* what, std::chrono::seconds time)
{
    const double before = test::processorSeconds();
    std::this_thread::sleep_for(time);
    const double share = (test::processorSeconds() - before) / static_cast<double>(time.count());
    std::printf("%-36s %.2f %% of a core\n", what, 100 * share);
}

void reportUnderruns(std::uint64_t count, std::chrono::seconds time)
{
    std::printf("underruns in %lld s, every core busy   %llu\n",
                static_cast<long long>(time.count()), static_cast<unsigned long long>(count));
}

void wait(test::Recorder& recorder, double seconds)
{
    if (!recorder.waitForSeconds(seconds)) {
        throw std::runtime_error("the recording stopped");
    }
}

double now(const test::Recorder& recorder)
{
    return recorder.frameAt(test::Recorder::Clock::now());
}

BusyCores::BusyCores()
{
    for (unsigned core = 0; core < std::thread::hardware_concurrency(); ++core) {
        threads_.emplace_back([this] {
            while (!isOver_) {
            }
        });
    }
}

BusyCores::~BusyCores()
{
    isOver_ = true;
    for (std::thread& thread : threads_) {
        thread.join();
    }
}

}  // namespace tonvale::benchmarks
