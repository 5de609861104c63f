// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Output/AudioOutput.h"
#include "Support/CountingOutput.h"
#include "Support/ProcessState.h"
#include "Support/PulseServer.h"
#include "Support/Songs.h"
#include "Support/TemporaryFolder.h"
#include "Tonvale/Audio/AudioPreviewEngine.h"
#include "Tonvale/Audio/AudioPreviewEngineInternals.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>

namespace tonvale::test {

/// A preview on a sound server of its own.
class PreviewSound : public ::testing::Test {
protected:
    PreviewSound()
    {
        AudioOutput::replaceFactory([this] { return std::make_unique<CountingOutput>(taken); });
    }
    ~PreviewSound() override { AudioOutput::replaceFactory({}); }

    void SetUp() override
    {
        if (!server.start()) {
            GTEST_SKIP() << "PulseAudio does not start here";
        }
    }

    /// A tone on every channel.
    void load(double frequency, double seconds, double rate = 44100, std::size_t channelCount = 2)
    {
        writeSong(folder.path() / "song.wav", rate,
                  tones(std::vector<double>(channelCount, frequency), rate,
                        static_cast<std::size_t>(seconds * rate)));
        preview.load(folder.path() / "song.wav");
    }

    /// Waits until the device has taken so many frames more. @return false when it does not
    [[nodiscard]] bool takes(std::uint64_t frames) { return hasTaken(taken.all + frames); }

    /// Waits until the device has taken so many frames altogether. @return false when it does not
    [[nodiscard]] bool hasTaken(std::uint64_t frames)
    {
        return eventually([this, frames] { return taken.all >= frames; });
    }

    /// Waits until the device has taken what there was and rests. @return false when it does not
    [[nodiscard]] static bool isPaused()
    {
        return eventually([] {
            return PulseServer::control({"list", "sink-inputs"}).find("Corked: yes")
                   != std::string::npos;
        });
    }

    [[nodiscard]] bool isRunning()
    {
        return AudioPreviewEngineInternals::engine(preview).isRunning();
    }
    [[nodiscard]] std::uint64_t underruns()
    {
        return AudioPreviewEngineInternals::engine(preview).underrunCount();
    }

    PulseServer server{48000, false};
    TemporaryFolder folder;
    TakenFrames taken;
    AudioPreviewEngine preview;
};

}  // namespace tonvale::test
