// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/FakeAudioDevice.h"

#include "Platform/Foundation/PlatformError.h"

#include <chrono>
#include <span>

namespace tonvale::test {

namespace {

class FakeAudioOutput final : public AudioOutput {
public:
    explicit FakeAudioOutput(FakeAudioDevice& device) : device_(device) {}
    ~FakeAudioOutput() override
    {
        device_.isRunning = false;
        device_.source = nullptr;
    }
    FakeAudioOutput(const FakeAudioOutput&) = delete;
    FakeAudioOutput& operator=(const FakeAudioOutput&) = delete;

    void start(AudioOutputSource& source) override
    {
        if (device_.refusesToStart) {
            throw PlatformError("Connection refused");
        }
        ++device_.startCount;
        device_.isRunning = true;
        device_.source = &source;
    }
    [[nodiscard]] bool isRunning() const noexcept override { return device_.isRunning; }
    [[nodiscard]] AudioFormat format() const noexcept override { return device_.format; }
    void discardQueued() noexcept override
    {
        ++device_.discardCount;
        device_.finishReads();
    }
    void framesReady() noexcept override { device_.framesReady(); }
    [[nodiscard]] std::uint64_t underrunCount() const noexcept override
    {
        return device_.underrunCount;
    }
    void setTitle(std::string_view title) override { device_.title = title; }

private:
    FakeAudioDevice& device_;
};

}  // namespace

FakeAudioDevice::FakeAudioDevice()
{
    AudioOutput::replaceFactory([this] { return std::make_unique<FakeAudioOutput>(*this); });
}

FakeAudioDevice::~FakeAudioDevice()
{
    AudioOutput::replaceFactory({});
}

std::vector<float> FakeAudioDevice::pull(std::uint32_t frames)
{
    const std::scoped_lock lock(reading_);
    std::vector<float> samples(std::size_t{frames} * format.channelCount);
    const std::size_t count = source != nullptr ? source->read(samples) : 0;
    samples.resize(count * format.channelCount);
    return samples;
}

std::vector<float> FakeAudioDevice::pullAll(std::uint32_t frames)
{
    std::vector<float> samples;
    std::uint64_t seen = readyCount();
    for (;;) {
        const auto missing =
            frames - static_cast<std::uint32_t>(samples.size() / format.channelCount);
        const std::vector<float> more = pull(missing);
        samples.insert(samples.end(), more.begin(), more.end());
        if (more.size() == std::size_t{missing} * format.channelCount) {
            return samples;
        }
        std::unique_lock lock(mutex_);
        if (!ready_.wait_for(lock, std::chrono::seconds(30), [&] { return readyCount_ != seen; })) {
            return samples;
        }
        seen = readyCount_;
    }
}

void FakeAudioDevice::finishReads()
{
    const std::scoped_lock lock(reading_);
}

void FakeAudioDevice::framesReady()
{
    const std::scoped_lock lock(mutex_);
    ++readyCount_;
    ready_.notify_all();
}

std::uint64_t FakeAudioDevice::readyCount()
{
    const std::scoped_lock lock(mutex_);
    return readyCount_;
}

}  // namespace tonvale::test
