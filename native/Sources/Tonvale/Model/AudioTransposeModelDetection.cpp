// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/DetachedTask.h"
#include "Platform/Foundation/LocalizedError.h"
#include "Tonvale/EssentiaKeyDetector.h"
#include "Tonvale/Model/AudioTransposeModel.h"

#include <exception>

namespace tonvale {

namespace {

QStringList linesOf(const DetectedSongDetails& details)
{
    QStringList lines;
    for (const std::string& line : details.displayLines()) {
        lines.append(QString::fromStdString(line));
    }
    return lines;
}

}  // namespace

bool AudioTransposeModel::canAutoDetectSongDetails() const noexcept
{
    return audioURL_ && !isDetectingSongDetails_;
}

void AudioTransposeModel::autoDetectSongDetails()
{
    if (!canAutoDetectSongDetails()) {
        return;
    }
    publish(isDetectingSongDetails_, true);
    publish(songDetailsMessage_, QStringLiteral("Detecting song details..."));
    publish(songDetailLines_, {});
    DetachedTask::run(
        TaskPriority::userInitiated, *this,
        [file = *audioURL_] { return EssentiaKeyDetector::detectSongDetails(file); },
        [](AudioTransposeModel& model, const TaskOutcome<DetectedSongDetails>& outcome) {
            model.applyDetectionOutcome(outcome);
        });
}

/// Whatever was loaded or cleared meanwhile; the flag goes down last.
void AudioTransposeModel::applyDetectionOutcome(const TaskOutcome<DetectedSongDetails>& outcome)
{
    try {
        const DetectedSongDetails& details = outcome.get();
        setSourceKey(details.musicKey());
        publish(songDetailsMessage_, {});
        publish(songDetailLines_, linesOf(details));
    } catch (...) {
        publish(songDetailsMessage_,
                QString::fromStdString(localizedDescription(std::current_exception())));
    }
    publish(isDetectingSongDetails_, false);
}

}  // namespace tonvale
