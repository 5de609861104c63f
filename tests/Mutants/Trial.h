// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <string>

namespace tonvale::test {

/// How a trial ended.
enum class Outcome {
    unfinished,  ///< a crash, a sanitizer's report, a leak, a broken promise or a limit
    refused,     ///< the song did not open, which was said in words
    empty,       ///< it opened, and holds nothing
    failed,      ///< it opened, and later came an error, in words
    rendered,    ///< all of it was read and rendered
};

struct Ending {
    Outcome outcome = Outcome::unfinished;
    std::string words;  ///< the error's sentence; of an unfinished trial, why
};

struct TrialResult {
    Ending ending;
    double processorSeconds = 0;
    double seconds = 0;    ///< until it ended
    double megabytes = 0;  ///< resident at most, 2^20 bytes
};

/// Runs `trial` in a process of its own that may use 10 seconds of the processor and 512 MiB of
/// memory, and end in any way; one that waits for five minutes hangs, too. What it has not freed
/// by its end is a leak. Whatever it throws or prints is a failure.
///
/// Where the address sanitizer is not, memory that is not there cannot be had: the limit holds for
/// all that is allocated. With it, which takes addresses by the terabyte, the limit holds for what
/// is resident in the end, the sanitizer's own part included, and for each allocation.
/// @thread the only one of the process
[[nodiscard]] TrialResult runTrial(const std::function<Ending()>& trial);

}  // namespace tonvale::test
