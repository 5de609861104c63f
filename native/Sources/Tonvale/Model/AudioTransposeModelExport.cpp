// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/FilePanels.h"
#include "Platform/Foundation/DetachedTask.h"
#include "Platform/Foundation/LocalizedError.h"
#include "Tonvale/Audio/AudioExportService.h"
#include "Tonvale/Keys/ExportFileName.h"
#include "Tonvale/Keys/TranspositionInterval.h"
#include "Tonvale/Model/AudioTransposeModel.h"

#include <cstdlib>
#include <exception>
#include <string>

namespace tonvale {

namespace {

/// "Saved +3 semitones"; only one semitone up or down is singular.
QString exportText(const std::string& what, int semitones)
{
    return QString::fromStdString(what + " " + formatSigned(semitones) + " semitone"
                                  + (std::abs(semitones) == 1 ? "" : "s"));
}

std::optional<std::filesystem::path> chooseDestination(const std::filesystem::path& sourceURL,
                                                       MusicKey targetKey)
{
    const auto panel = SavePanel::create();
    panel->title = "Save Transposed Song";
    panel->nameFieldStringValue = defaultExportFileName(sourceURL, targetKey).string();
    panel->directoryURL = sourceURL.parent_path();
    return panel->runModal();
}

}  // namespace

void AudioTransposeModel::chooseExportLocationAndRender()
{
    if (!audioURL_ || isExporting_) {
        return;
    }
    // Read before the panel: while it is open a detection may end, or a dropped song be loaded.
    const std::filesystem::path sourceURL = *audioURL_;
    const int exportedSemitones = semitones();
    const auto destinationURL = chooseDestination(sourceURL, targetKey_);
    if (!destinationURL) {
        return;
    }
    const int cents = centsForSemitones(exportedSemitones);
    ++rendersRunning_;
    stopPreview();
    publish(isExporting_, true);
    publish(exportMessage_, exportText("Rendering", exportedSemitones));
    DetachedTask::run(
        TaskPriority::unspecified, *this,
        [sourceURL, destinationURL = *destinationURL, cents] {
            AudioExportService::render(sourceURL, destinationURL, cents);
        },
        [exportedSemitones](AudioTransposeModel& model, const TaskOutcome<void>& outcome) {
            model.applyExportOutcome(outcome, exportedSemitones);
        });
}

/// Whatever was loaded or cleared meanwhile; the flag goes down before the texts come.
void AudioTransposeModel::applyExportOutcome(const TaskOutcome<void>& outcome,
                                             int exportedSemitones)
{
    --rendersRunning_;
    try {
        outcome.get();
    } catch (...) {
        const std::string description = localizedDescription(std::current_exception());
        publish(isExporting_, false);
        publish(exportMessage_, QStringLiteral("Export failed"));
        publish(fileName_, QStringLiteral("Export failed"));
        publish(fileDetail_, QString::fromStdString(description));
        return;
    }
    publish(isExporting_, false);
    publish(exportMessage_, exportText("Saved", exportedSemitones));
}

}  // namespace tonvale
