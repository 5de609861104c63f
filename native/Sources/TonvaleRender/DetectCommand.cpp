// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/DetectCommand.h"

#include "TonvaleRender/InputFiles.h"
#include "TonvaleRender/InterruptibleJobs.h"
#include "TonvaleRender/RenderReport.h"
#include "TonvaleRender/SongDetection.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <filesystem>
#include <iostream>

namespace tonvale {

namespace {

RenderReport::Style styleFor(const RenderRequest& request)
{
    const std::size_t songs = request.inputs.size();
    return {.results = songs,
            .success = "detected",
            .keepsOrder = true,
            // Of a single song nothing is known until it is done.
            .drawsBar = songs > 1 && !request.isQuiet && ::isatty(STDERR_FILENO) == 1};
}

}  // namespace

bool runDetection(const RenderRequest& request)
{
    const InputFiles inputs(request.inputs);
    RenderReport report(std::cout, std::cerr, styleFor(request));
    const std::size_t songs = request.inputs.size();
    InterruptibleJobs jobs(static_cast<unsigned>(std::min<std::size_t>(request.jobs, songs)));
    for (std::size_t index = 0; index < songs; ++index) {
        jobs.add(index, [&, index] {
            const std::filesystem::path& song = request.inputs[index];
            try {
                const DetectedSongDetails details = detectSong(song);
                report.succeeded(index, detectionLines(song, details, inputs.areSeveral()));
            } catch (...) {
                if (!jobs.areInterrupted()) {
                    report.failed({index}, localizedDescription(std::current_exception()));
                }
            }
        });
    }
    jobs.finish([&] { report.clear(); });
    report.clear();
    if (!request.isQuiet) {
        report.sumUp();
    }
    return !report.hasFailures();
}

}  // namespace tonvale
