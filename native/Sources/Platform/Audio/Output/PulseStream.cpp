// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/PulseStream.h"

#include "Platform/Audio/Output/RealTimeMarks.h"

#include <pulse/pulseaudio.h>

#include <algorithm>

namespace tonvale {

namespace {

constexpr std::uint32_t channelCount = 2;
constexpr std::int64_t frameBytes = channelCount * sizeof(float);

// 80 ms in all, which outlasts a busy machine. The device's share is what nobody can take back
// any more, so it is small: it equals the unit of the server's requests (early requests see to
// that), where half of the whole would be usual.
constexpr std::uint32_t deviceMilliseconds = 10;
constexpr std::uint32_t serverMilliseconds = 70;

// From the reckoning to the arrival of a write, at least; a busy server takes as long as it took
// for its last answer.
constexpr std::chrono::microseconds quickDelivery(4000);

// The library asks for one every second and a half. What seems older dates from before the clock
// was set or the computer slept, and would send frames to a place that is never reached.
constexpr std::chrono::microseconds oldestAccount(2'000'000);

std::chrono::microseconds ageOf(const pa_timing_info& account, const timeval& now)
{
    if (pa_timeval_cmp(&now, &account.timestamp) <= 0) {
        return std::chrono::microseconds(0);
    }
    const pa_usec_t age = pa_timeval_diff(&now, &account.timestamp);
    return std::chrono::microseconds(std::min(age, static_cast<pa_usec_t>(oldestAccount.count())));
}

pa_buffer_attr bufferLengths(std::uint32_t sampleRate)
{
    const auto bytes = [sampleRate](std::uint32_t milliseconds) {
        return static_cast<std::uint32_t>(sampleRate * milliseconds / 1000 * frameBytes);
    };
    pa_buffer_attr lengths{};
    lengths.maxlength = static_cast<std::uint32_t>(-1);  // the server's own limit
    lengths.tlength = bytes(serverMilliseconds);
    lengths.prebuf = 0;  // starts with what it has
    lengths.minreq = bytes(deviceMilliseconds);
    return lengths;
}

}  // namespace

void PulseStream::Disconnect::operator()(pa_stream* stream) const noexcept
{
    pa_stream_set_state_callback(stream, nullptr, nullptr);
    pa_stream_set_write_callback(stream, nullptr, nullptr);
    pa_stream_set_underflow_callback(stream, nullptr, nullptr);
    pa_stream_disconnect(stream);
    pa_stream_unref(stream);
}

PulseStream::PulseStream(const PulseMainLoop& loop, const std::string& title,
                         PulseStreamListener& listener, const Deadline& deadline)
    : connection_(loop, deadline)
    , listener_(listener)
    , sampleRate_(connection_.deviceSampleRate(deadline))
{
    create(title);
    observe();
    open(deadline);
}

void PulseStream::create(const std::string& title)
{
    const pa_sample_spec sampleSpec{PA_SAMPLE_FLOAT32NE, sampleRate_, channelCount};
    pa_channel_map channels{};
    pa_channel_map_init_stereo(&channels);
    pa_proplist* const properties = pa_proplist_new();
    pa_proplist_sets(properties, PA_PROP_MEDIA_ROLE, "music");
    stream_.reset(pa_stream_new_with_proplist(connection_.get(), title.c_str(), &sampleSpec,
                                              &channels, properties));
    pa_proplist_free(properties);
    if (!stream_) {
        connection_.fail();
    }
}

void PulseStream::observe()
{
    pa_stream_set_state_callback(
        stream_.get(),
        [](pa_stream* stream, void* self) {
            auto& it = *static_cast<PulseStream*>(self);
            if (!PA_STREAM_IS_GOOD(pa_stream_get_state(stream))) {
                it.listener_.streamIsLost();
            }
            it.connection_.loop().wake();
        },
        this);
    pa_stream_set_write_callback(
        stream_.get(),
        [](pa_stream*, std::size_t, void* self) {
            static_cast<PulseStream*>(self)->listener_.streamHasRoom();
        },
        this);
    pa_stream_set_underflow_callback(
        stream_.get(),
        [](pa_stream* stream, void* self) {
            const std::int64_t end = pa_stream_get_underflow_index(stream) / frameBytes;
            static_cast<PulseStream*>(self)->listener_.streamRanDry(end);
        },
        this);
}

void PulseStream::open(const Deadline& deadline)
{
    const pa_buffer_attr lengths = bufferLengths(sampleRate_);
    const int flags =
        PA_STREAM_EARLY_REQUESTS | PA_STREAM_AUTO_TIMING_UPDATE | PA_STREAM_START_CORKED;
    pa_stream* const stream = stream_.get();
    if (pa_stream_connect_playback(stream, nullptr, &lengths, static_cast<pa_stream_flags_t>(flags),
                                   nullptr, nullptr)
        != 0) {
        connection_.fail();
    }
    const bool isAnswered = connection_.loop().waitFor(deadline.timeLeft(), [stream] {
        return pa_stream_get_state(stream) != PA_STREAM_CREATING;
    });
    if (!isAnswered || pa_stream_get_state(stream) != PA_STREAM_READY) {
        connection_.fail();
    }
    refreshPlace(deadline);
}

std::int64_t PulseStream::framesIn(std::int64_t microseconds) const noexcept
{
    return microseconds * sampleRate_ / 1'000'000;
}

std::int64_t PulseStream::room() const noexcept
{
    const LibraryCall mark;
    const std::size_t bytes = pa_stream_writable_size(stream_.get());
    return bytes == static_cast<std::size_t>(-1) ? 0
                                                 : static_cast<std::int64_t>(bytes) / frameBytes;
}

std::int64_t PulseStream::firstFreeFrame() const noexcept
{
    const pa_timing_info* account = nullptr;
    timeval now{};
    {
        const LibraryCall mark;
        account = pa_stream_get_timing_info(stream_.get());
        pa_gettimeofday(&now);
    }
    if (account == nullptr) {
        return 0;
    }
    const std::int64_t taken = account->read_index / frameBytes;
    const auto block = static_cast<std::int64_t>(account->configured_sink_usec);
    if (account->playing == 0) {
        // When it goes on, the device may go back to what it has not played of its last block.
        return taken + framesIn(block);
    }
    // The device takes a block whenever it has played the one before.
    const auto held = static_cast<std::int64_t>(account->sink_usec);
    const std::int64_t overdue =
        ageOf(*account, now).count() + std::max(quickDelivery, 2 * roundTrip_).count() - held;
    return taken + (overdue < 0 ? 0 : framesIn(overdue + block));
}

void PulseStream::refreshPlace(const Deadline& deadline)
{
    const auto asked = std::chrono::steady_clock::now();
    const bool isRefreshed = connection_.complete(
        pa_stream_update_timing_info(stream_.get(), nullptr, nullptr), deadline);
    static_cast<void>(isRefreshed);  // the account before it is the next best
    roundTrip_ =
        std::chrono::ceil<std::chrono::microseconds>(std::chrono::steady_clock::now() - asked);
}

void PulseStream::write(std::int64_t frame, std::span<const float> samples) noexcept
{
    // A seek makes the server account for its place anew each time, so only where one is needed.
    const bool follows = frame == end_;
    end_ = frame + static_cast<std::int64_t>(samples.size() / channelCount);
    const LibraryCall mark;
    pa_stream_write(stream_.get(), samples.data(), samples.size_bytes(), nullptr,
                    follows ? 0 : frame * frameBytes,
                    follows ? PA_SEEK_RELATIVE : PA_SEEK_ABSOLUTE);
}

void PulseStream::setPaused(bool isPaused) noexcept
{
    isPaused_ = isPaused;
    const LibraryCall mark;
    pa_operation* const operation =
        pa_stream_cork(stream_.get(), isPaused ? 1 : 0, nullptr, nullptr);
    if (operation != nullptr) {
        pa_operation_unref(operation);
    }
}

void PulseStream::setTitle(const std::string& title)
{
    pa_operation* const operation =
        pa_stream_set_name(stream_.get(), title.c_str(), nullptr, nullptr);
    if (operation != nullptr) {
        pa_operation_unref(operation);
    }
}

}  // namespace tonvale
