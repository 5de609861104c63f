// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Desktop/FilePanels.h"
#include "Platform/Foundation/Timer.h"
#include "Support/FakeAudioDevice.h"
#include "Support/FakeClock.h"
#include "Support/MainLoop.h"
#include "Support/TemporaryFolder.h"
#include "Tonvale/Audio/AudioPreviewEngineInternals.h"
#include "Tonvale/Model/Announcements.h"
#include "Tonvale/Model/AudioTransposeModel.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tonvale {

/// What the tests see of the model beside its operations.
struct AudioTransposeModelInternals {
    using Model = AudioTransposeModel;

    static AudioPreviewEngine& engine(Model& model) { return model.previewEngine_; }
    /// Null while there is none.
    static const Timer* timer(const Model& model) { return model.playbackTimer_.get(); }
    static bool isAudioFile(const std::filesystem::path& url) { return Model::isAudioFile(url); }
    static void restartPreview(Model& model, double at) { model.restartPreview(at); }
    static void tick(Model& model) { model.updatePosition(); }
    /// Gives every property a value that no command would give it, silently.
    static void fill(Model& model);
    static void setDuration(Model& model, double seconds) { model.duration_ = seconds; }
    static void setCurrentTime(Model& model, double seconds) { model.currentTime_ = seconds; }
    static void setExporting(Model& model) { model.isExporting_ = true; }
    static void setExportMessage(Model& model, const QString& text) { model.exportMessage_ = text; }
};

namespace test {

/// A model with fakes under it: device, clock and panels. Songs are real files.
class ModelTest : public ::testing::Test {
protected:
    using Internals = AudioTransposeModelInternals;
    using List = Announcements::List;

    ModelTest();
    ~ModelTest() override;

    [[nodiscard]] std::filesystem::path in(const std::string& name) const
    {
        return folder.path() / name;
    }
    /// A quiet mono song at 8 kHz.
    std::filesystem::path makeSong(const std::string& name, double seconds = 60) const;
    /// A file that counts as audio and does not open.
    std::filesystem::path makeBrokenSong(const std::string& name) const;
    void loadSong(double seconds = 60) { model->load(makeSong("song.wav", seconds)); }

    /// In cents, as the time-pitch unit has it.
    [[nodiscard]] float pitch() { return AudioPreviewEngineInternals::pitch(engine()); }
    [[nodiscard]] AudioPreviewEngine& engine() { return Internals::engine(*model); }
    [[nodiscard]] bool engineIsPlaying()
    {
        return AudioPreviewEngineInternals::isPlaying(engine());
    }
    /// Where the engine last started, or stands.
    [[nodiscard]] double engineStart()
    {
        return AudioPreviewEngineInternals::playbackStartTime(engine());
    }
    [[nodiscard]] bool hasTimer() { return Internals::timer(*model) != nullptr; }
    void tick() { Internals::tick(*model); }
    /// Both say the same of a preview: flag, timer and engine.
    void expectPlaying(bool isPlaying);
    /// The next preview finds no device.
    void loseDevice()
    {
        device.isRunning = false;
        device.refusesToStart = true;
    }
    /// What an entry has behind it under this probe: " [engine plays, timer]".
    std::function<std::string()> transportProbe();

    TemporaryFolder folder;
    FakeAudioDevice device;
    FakeClock clock;

    // The panels' doings: how often they were shown, what they were given, what they answer.
    int openPanelCount = 0;
    int savePanelCount = 0;
    std::string panelTitle;
    std::string proposedName;
    std::filesystem::path proposedFolder;
    std::optional<std::filesystem::path> panelAnswer;
    std::function<void()> whilePanelIsOpen = [] {};

    std::unique_ptr<AudioTransposeModel> model = std::make_unique<AudioTransposeModel>();
};

}  // namespace test

}  // namespace tonvale
