// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/Recorder.h"

#include "Support/PulseServer.h"

#include <pulse/error.h>
#include <pulse/simple.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace tonvale::test {

namespace {

constexpr std::size_t channelCount = 2;
constexpr std::chrono::seconds patience(20);
constexpr std::chrono::milliseconds deviceBlock(10);

pa_simple* listen(std::uint32_t sampleRate)
{
    const pa_sample_spec format{PA_SAMPLE_FLOAT32NE, sampleRate, channelCount};
    pa_buffer_attr lengths{};
    lengths.maxlength = static_cast<std::uint32_t>(-1);
    // Half of it is the device's share, the same as our output asks for: the blocks it plays are as
    // long before that is opened as they are then.
    lengths.fragsize = sampleRate / 50 * channelCount * sizeof(float);
    const std::string source = std::string(PulseServer::deviceName) + ".monitor";
    int error = 0;
    pa_simple* const stream = pa_simple_new(nullptr, "recorder", PA_STREAM_RECORD, source.c_str(),
                                            "recorder", &format, nullptr, &lengths, &error);
    if (stream == nullptr) {
        throw std::runtime_error(pa_strerror(error));
    }
    return stream;
}

}  // namespace

Recorder::Recorder(std::uint32_t sampleRate)
    : sampleRate_(sampleRate)
    , silence_(std::make_unique<RunningProgram>(
          std::vector<std::string>{"pacat", "--playback", "--raw", "--latency-msec=200",
                                   std::string("--device=") + PulseServer::deviceName,
                                   "--format=float32le", "--rate=" + std::to_string(sampleRate),
                                   "/dev/zero"},
          ProgramOptions{}))
    , stream_(listen(sampleRate), &pa_simple_free)
    , thread_([this] { record(); })
{
    if (!waitForFrames(sampleRate / 5)) {
        isEnding_ = true;
        thread_.join();
        throw std::runtime_error("the device delivers nothing");
    }
}

Recorder::~Recorder()
{
    isEnding_ = true;
    thread_.join();
}

void Recorder::record()
{
    std::vector<float> part(sampleRate_ / 200 * channelCount);
    while (!isEnding_
           && pa_simple_read(stream_.get(), part.data(), part.size() * sizeof(float), nullptr)
                  == 0) {
        const Clock::time_point now = Clock::now();
        const std::lock_guard lock(mutex_);
        samples_.insert(samples_.end(), part.begin(), part.end());
        const std::chrono::duration<double> length(
            static_cast<double>(samples_.size() / channelCount) / sampleRate_);
        beginnings_.push_back(now - std::chrono::round<Clock::duration>(length));
        arrival_.notify_all();
    }
}

std::vector<float> Recorder::channel(std::size_t index) const
{
    const std::lock_guard lock(mutex_);
    std::vector<float> samples(samples_.size() / channelCount);
    for (std::size_t frame = 0; frame < samples.size(); ++frame) {
        samples[frame] = samples_[frame * channelCount + index];
    }
    return samples;
}

std::size_t Recorder::frameCount() const
{
    const std::lock_guard lock(mutex_);
    return samples_.size() / channelCount;
}

bool Recorder::waitForFrames(std::size_t count)
{
    return waitForSound([count](const std::vector<float>& samples) {
        return samples.size() >= count * channelCount;
    });
}

bool Recorder::waitForSeconds(double seconds)
{
    return waitForFrames(frameCount() + static_cast<std::size_t>(seconds * sampleRate_));
}

bool Recorder::waitForSound(const std::function<bool(const std::vector<float>&)>& isFound)
{
    std::unique_lock lock(mutex_);
    return arrival_.wait_for(lock, patience, [this, &isFound] { return isFound(samples_); });
}

bool Recorder::waitForSilence()
{
    const std::size_t length = sampleRate_ / 20 * channelCount;
    return waitForSound([length](const std::vector<float>& samples) {
        return samples.size() > length
               && std::all_of(samples.end() - static_cast<std::ptrdiff_t>(length), samples.end(),
                              [](float sample) { return sample == 0.0F; });
    });
}

double Recorder::frameAt(Clock::time_point moment) const
{
    const std::lock_guard lock(mutex_);
    // A block of the device arrives when it begins to play: its last frame, the earliest of all to
    // arrive, is heard a block later. Frames can be delayed, so the earliest of many counts.
    const auto newest = static_cast<std::ptrdiff_t>(std::min<std::size_t>(beginnings_.size(), 200));
    const auto earliest = *std::min_element(beginnings_.end() - newest, beginnings_.end());
    const std::chrono::duration<double> time = moment - earliest - deviceBlock;
    return time.count() * sampleRate_;
}

}  // namespace tonvale::test
