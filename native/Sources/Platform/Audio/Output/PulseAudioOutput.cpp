// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/PulseAudioOutput.h"

#include "Platform/Audio/Output/RealTimeMarks.h"

#include <pulse/pulseaudio.h>

#include <algorithm>

namespace tonvale {

namespace {

using namespace std::chrono_literals;

constexpr auto serverPatience = 2500ms;  // start() promises three seconds in all
constexpr auto accountPatience = 20ms;   // an answer takes less than one, on an idle machine
constexpr auto lookAgain = 3ms;          // a fifth of what our source keeps ready
constexpr auto pauseAfter = 250ms;       // of silence: longer than any song's reader stumbles
constexpr auto fadeLength = 5ms;
constexpr std::uint32_t queueSeconds = 1;  // more than any device is asked to hold

/// The server drops a text that is not UTF-8, and old file names are not: `_` for what is wrong.
std::string utf8(std::string_view text)
{
    const std::unique_ptr<char, decltype(&pa_xfree)> filtered(
        pa_utf8_filter(std::string(text).c_str()), &pa_xfree);
    return filtered.get();
}

}  // namespace

PulseAudioOutput::~PulseAudioOutput()
{
    if (loop_) {
        const PulseMainLoop::Lock lock(*loop_);
        close();
        loop_->api().time_free(timer_);
        loop_->api().defer_free(wakeUp_);
    }
}

void PulseAudioOutput::startMainLoop()
{
    if (loop_) {
        return;
    }
    loop_ = std::make_unique<PulseMainLoop>();
    const PulseMainLoop::Lock lock(*loop_);
    pa_mainloop_api& api = loop_->api();
    wakeUp_ = api.defer_new(
        &api,
        [](pa_mainloop_api* loop, pa_defer_event* event, void* self) {
            const DeviceCallback mark;
            loop->defer_enable(event, 0);
            static_cast<PulseAudioOutput*>(self)->fill();
        },
        this);
    timer_ = api.time_new(
        &api, nullptr,
        [](pa_mainloop_api*, pa_time_event*, const timeval*, void* self) {
            const DeviceCallback mark;
            static_cast<PulseAudioOutput*>(self)->fill();
        },
        this);
}

void PulseAudioOutput::start(AudioOutputSource& source)
{
    startMainLoop();
    const PulseMainLoop::Lock lock(*loop_);
    close();
    PulseStreamListener& listener = *this;
    stream_ = std::make_unique<PulseStream>(*loop_, title_, listener, Deadline(serverPatience));
    prepare(source);
}

void PulseAudioOutput::close() noexcept
{
    isRunning_ = false;
    isWaiting_ = false;
    stream_.reset();
}

void PulseAudioOutput::prepare(AudioOutputSource& source)
{
    source_ = &source;
    format_ = {.sampleRate = static_cast<double>(stream_->sampleRate()),
               .channelCount = QueuedFrames::channelCount};
    queue_.resize(stream_->sampleRate() * queueSeconds);
    end_ = 0;
    isFollowing_ = false;
    isStarving_ = false;
    isDry_ = true;
    isRunning_ = true;
    fillSoon();
}

void PulseAudioOutput::setTitle(std::string_view title)
{
    if (!loop_) {
        title_ = utf8(title);
        return;
    }
    const PulseMainLoop::Lock lock(*loop_);
    title_ = utf8(title);
    if (isRunning_) {
        stream_->setTitle(title_);
    }
}

void PulseAudioOutput::framesReady() noexcept
{
    // Both sides exchange: whichever comes second sees what the other did before, so either we
    // find the device waiting, or it finds the frames.
    if (isWaiting_.exchange(false)) {
        const PulseMainLoop::Lock lock(*loop_);
        fillSoon();
    }
}

void PulseAudioOutput::streamHasRoom() noexcept
{
    const DeviceCallback mark;
    fill();
}

void PulseAudioOutput::streamRanDry(std::int64_t end) noexcept
{
    const DeviceCallback mark;
    isDry_ = true;
    isStarving_ = isFollowing_ && end >= followedFrom_;
    fill();
}

void PulseAudioOutput::fillSoon() noexcept
{
    loop_->api().defer_enable(wakeUp_, 1);
}

void PulseAudioOutput::fill() noexcept
{
    if (!isRunning_ || isDiscarding_) {
        return;
    }
    if (pour()) {
        return;  // the server will ask for more
    }
    static_cast<void>(isWaiting_.exchange(true));
    if (pour()) {  // frames may have come just before that
        isWaiting_ = false;
        return;
    }
    rest();
}

/// @return whether the server has all it wants
bool PulseAudioOutput::pour() noexcept
{
    for (std::int64_t room = stream_->room(); room > 0; room = stream_->room()) {
        if (pourOnce(room) == 0) {
            return false;
        }
    }
    return true;
}

/// @return how many frames the source gave
std::int64_t PulseAudioOutput::pourOnce(std::int64_t room) noexcept
{
    const std::int64_t first = isDry_ ? std::max(end_, stream_->firstFreeFrame()) : end_;
    // The server counts what it was sent, not what was skipped: a gap is sent as silence, or the
    // server would wait for its length once more.
    const std::int64_t gap = first - end_;
    // Half of the queue for the gap's end, half for the frames: a gap can be longer than all of it.
    const std::int64_t half = queue_.capacity() / 2;
    const std::int64_t wanted = std::clamp(room - gap, framesIn(lookAgain), half);
    const std::int64_t count = source_->read(queue_.piece(first, wanted));
    if (count == 0) {
        return 0;
    }
    const std::int64_t silent = std::max(end_, first - half);
    queue_.clear(silent, first);
    write(silent, first + count);
    noteFrames();
    if (stream_->isPaused()) {
        stream_->setPaused(false);
    }
    return count;
}

/// Counts the underrun that these frames end, if they do.
void PulseAudioOutput::noteFrames() noexcept
{
    underrunCount_ += isStarving_ ? 1 : 0;
    followedFrom_ = isFollowing_ ? followedFrom_ : end_;
    isFollowing_ = true;
    isStarving_ = false;
    isDry_ = false;
    lastFrames_ = Clock::now();
}

/// Looks again soon after the source's last frames; pauses when there have been none for long.
void PulseAudioOutput::rest() noexcept
{
    if (stream_->isPaused()) {
        return;
    }
    if (Clock::now() - lastFrames_ < pauseAfter) {
        wakeIn(lookAgain);
    } else if (isDry_) {
        stream_->setPaused(true);
    }
}

void PulseAudioOutput::wakeIn(std::chrono::milliseconds time) noexcept
{
    const LibraryCall mark;
    timeval now{};
    loop_->api().time_restart(
        timer_, pa_timeval_add(pa_gettimeofday(&now), static_cast<pa_usec_t>(time / 1us)));
}

void PulseAudioOutput::discardQueued() noexcept
{
    if (!loop_) {
        return;
    }
    const PulseMainLoop::Lock lock(*loop_);
    if (!isRunning_) {
        return;
    }
    isDiscarding_ = true;  // the lock is open while we wait for the answer
    stream_->refreshPlace(Deadline(accountPatience));
    isDiscarding_ = false;
    if (isRunning_) {
        takeBack();
        isFollowing_ = false;
        isStarving_ = false;
        isDry_ = true;  // little is left: what comes next may come too late to follow it
        fillSoon();     // there may have been frames in the meantime
    }
}

/// Lets what is queued fade out from the first frame on that the device will not have taken.
void PulseAudioOutput::takeBack() noexcept
{
    const std::int64_t first = std::max(stream_->firstFreeFrame(), end_ - queue_.capacity());
    if (first >= end_) {
        return;
    }
    const std::int64_t end = end_;
    const std::int64_t silent = std::min(first + framesIn(fadeLength), end);
    queue_.fadeOut(first, silent, end);
    write(first, end);
    // The silence again, as a block of its own: PulseAudio 16 plays the beginning of a block once
    // more behind a place in its middle that is replaced, and new frames will replace silence.
    write(silent, end);
    // The last frame of the fade again, so that new frames follow it: the server goes on where the
    // last write ended.
    write(silent - 1, silent);
}

void PulseAudioOutput::write(std::int64_t first, std::int64_t end) noexcept
{
    end_ = end;
    while (first < end) {
        const std::span<const float> samples = queue_.piece(first, end - first);
        stream_->write(first, samples);
        first += static_cast<std::int64_t>(samples.size() / QueuedFrames::channelCount);
    }
}

std::int64_t PulseAudioOutput::framesIn(std::chrono::milliseconds time) const noexcept
{
    return static_cast<std::int64_t>(format_.sampleRate) * time.count() / 1000;
}

}  // namespace tonvale
