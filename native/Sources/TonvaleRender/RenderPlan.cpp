// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/RenderPlan.h"

#include "Platform/Foundation/FileName.h"
#include "Tonvale/Keys/ExportFileName.h"
#include "Tonvale/Keys/TranspositionInterval.h"
#include "TonvaleRender/OutputFile.h"
#include "TonvaleRender/TerminalText.h"
#include "TonvaleRender/UsageError.h"

#include <cstdlib>
#include <map>
#include <string>
#include <system_error>

namespace tonvale {

namespace {

std::string countOf(int number, const std::string& unit)
{
    return formatSigned(number) + " " + unit + (std::abs(number) == 1 ? "" : "s");
}

std::filesystem::path shiftedFileName(const std::filesystem::path& song,
                                      const RenderRequest& request)
{
    const std::string shift = request.countsSemitones ? countOf(request.cents / 100, "semitone")
                                                      : countOf(request.cents, "cent");
    std::filesystem::path name = FileName::deletingPathExtension(song);
    name += " (" + shift + ").wav";
    return name;
}

PlannedRender renderInKey(const std::filesystem::path& song, const RenderRequest& request,
                          MusicKey target)
{
    PlannedRender render{defaultExportFileName(song, target), target};
    if (request.sourceKey) {
        render.cents = centsForSemitones(semitonesBetween(*request.sourceKey, target));
    }
    return render;
}

/// The song's results, their names still without a folder.
PlannedSong planSong(const std::filesystem::path& song, const RenderRequest& request)
{
    PlannedSong planned{song, {}};
    for (const MusicKey target : request.targetKeys) {
        planned.renders.push_back(renderInKey(song, request, target));
    }
    if (request.targetKeys.empty()) {
        planned.renders.push_back({shiftedFileName(song, request), std::nullopt, request.cents});
    }
    return planned;
}

void place(RenderPlan& plan, const std::optional<std::filesystem::path>& output)
{
    if (output && isFolder(*output)) {
        plan.folder = output;
    } else if (output && plan.renderCount() > 1) {
        throw UsageError("Several results need a folder: end " + quotedName(*output)
                         + " with a slash, or name a folder that is there.");
    } else if (output) {
        plan.songs.front().renders.front().output = *output;
        return;
    }
    for (PlannedSong& song : plan.songs) {
        for (PlannedRender& render : song.renders) {
            render.output = plan.folder.value_or(song.input.parent_path()) / render.output;
        }
    }
}

/// The same for every way to write the path of one file, whether it is there or not.
std::filesystem::path identityOf(const std::filesystem::path& output)
{
    std::error_code error;
    const auto folder = std::filesystem::weakly_canonical(
        std::filesystem::absolute(output.parent_path() / ".", error), error);
    return (error ? output.parent_path() : folder) / output.filename();
}

void checkNames(const RenderPlan& plan)
{
    std::map<std::filesystem::path, const PlannedSong*> taken;
    for (const PlannedSong& song : plan.songs) {
        for (const PlannedRender& render : song.renders) {
            const auto [other, isNew] = taken.emplace(identityOf(render.output), &song);
            if (!isNew) {
                throw UsageError(quotedName(other->second->input) + " and " + quotedName(song.input)
                                 + " would both be saved as " + quotedName(render.output) + ".");
            }
        }
    }
}

}  // namespace

std::size_t RenderPlan::renderCount() const
{
    std::size_t count = 0;
    for (const PlannedSong& song : songs) {
        count += song.renders.size();
    }
    return count;
}

RenderPlan planRenders(const RenderRequest& request)
{
    RenderPlan plan;
    for (const auto& song : request.inputs) {
        plan.songs.push_back(planSong(song, request));
    }
    place(plan, request.output);
    checkNames(plan);
    return plan;
}

}  // namespace tonvale
