// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/LocalizedError.h"
#include "Platform/Foundation/Precondition.h"
#include "Platform/Foundation/Timer.h"
#include "Tonvale/Keys/TranspositionInterval.h"
#include "Tonvale/Model/AudioTransposeModel.h"

#include <QPointer>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <exception>

namespace tonvale {

namespace {

/// Written as comparisons so that a time that is no number passes through as one.
double limited(double time, double duration)
{
    const double start = time <= 0 ? 0 : time;
    const double end = duration <= 0 ? 0 : duration;
    return end < start ? end : start;
}

QString failureHeadline()
{
    return QStringLiteral("Preview failed");
}

QString currentFailure()
{
    return QString::fromStdString(localizedDescription(std::current_exception()));
}

}  // namespace

QString AudioTransposeModel::previewStatus() const
{
    if (isPreviewing_) {
        return QStringLiteral("Playing");
    }
    if (!exportMessage_.isEmpty()) {
        return exportMessage_;
    }
    return audioURL_ ? QStringLiteral("Ready") : QStringLiteral("Unavailable");
}

QString AudioTransposeModel::previewHint() const
{
    return audioURL_ ? QStringLiteral(
               "Drag the timeline or use the skip buttons to jump through the song.")
                     : QStringLiteral("Select an audio file to preview the transposed playback.");
}

void AudioTransposeModel::playPreview()
{
    if (!audioURL_) {
        return;
    }
    try {
        previewEngine_.play(centsForSemitones(semitones()), currentTime_);
    } catch (...) {
        // The engine is left alone: where it played, it plays on.
        publish(fileName_, failureHeadline());
        publish(fileDetail_, currentFailure());
        publish(isPreviewing_, false);
        playbackTimer_.reset();
        return;
    }
    publish(isPreviewing_, true);
    startPlaybackTimer();
}

void AudioTransposeModel::stopPreview()
{
    previewEngine_.stop();
    publish(isPreviewing_, false);
    playbackTimer_.reset();
}

void AudioTransposeModel::restartPreview(double at)
{
    try {
        previewEngine_.play(centsForSemitones(semitones()), at);
    } catch (...) {
        stopPreview();
        publish(fileName_, failureHeadline());
        publish(fileDetail_, currentFailure());
        return;
    }
    publish(isPreviewing_, true);
    startPlaybackTimer();
}

void AudioTransposeModel::skipPreview(double by)
{
    if (!audioURL_) {
        return;
    }
    const double time = limited(currentTime_ + by, duration_);
    publish(currentTime_, time);
    if (isPreviewing_) {
        restartPreview(time);
    }
}

void AudioTransposeModel::setTimelinePreview(double seconds)
{
    publish(currentTime_, limited(seconds, duration_));
}

void AudioTransposeModel::timelineEditingChanged(bool isEditing)
{
    if (isEditing || !audioURL_) {
        return;
    }
    if (isPreviewing_) {
        restartPreview(currentTime_);
    }
}

void AudioTransposeModel::startPlaybackTimer()
{
    playbackTimer_.reset();
    playbackTimer_ = std::make_unique<Timer>(std::chrono::milliseconds(200),
                                             [model = QPointer<AudioTransposeModel>(this)] {
                                                 if (model) {
                                                     model->updatePosition();
                                                 }
                                             });
}

/// One tick of the timer. It may have been queued before the preview was stopped.
void AudioTransposeModel::updatePosition()
{
    if (!isPreviewing_) {
        return;
    }
    publish(currentTime_, limited(previewEngine_.currentTime(), duration_));
    if (duration_ > 0 && duration_ <= currentTime_) {
        stopPreview();
        publish(currentTime_, duration_);
    }
}

QString AudioTransposeModel::formatTime(double seconds) const
{
    if (!std::isfinite(seconds) || !(seconds > 0)) {
        return QStringLiteral("0:00");
    }
    const double rounded = std::round(seconds);
    precondition(rounded < 0x1p63);
    const auto whole = static_cast<std::int64_t>(rounded);
    const std::int64_t minutes = whole / 60;
    const std::int64_t rest = whole - minutes * 60;
    return QString::number(minutes) + u':' + QString::number(rest).rightJustified(2, u'0');
}

}  // namespace tonvale
