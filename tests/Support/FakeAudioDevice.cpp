// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/FakeAudioDevice.h"

#include "Platform/Foundation/PlatformError.h"

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
    void discardQueued() noexcept override { ++device_.discardCount; }
    void framesReady() noexcept override {}
    [[nodiscard]] std::uint64_t underrunCount() const noexcept override { return 0; }
    void setTitle(std::string_view /*title*/) override {}

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

}  // namespace tonvale::test
