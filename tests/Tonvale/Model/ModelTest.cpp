// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Model/ModelTest.h"

#include "Support/Songs.h"

#include <cmath>
#include <fstream>

namespace tonvale {

void AudioTransposeModelInternals::fill(Model& model)
{
    model.audioURL_ = "/other/old.mp3";
    model.fileName_ = "old name";
    model.fileDetail_ = "old detail";
    model.sourceKey_ = MusicKey::cMajor;
    model.targetKey_ = MusicKey::dMinor;
    model.isExporting_ = true;
    model.isDetectingSongDetails_ = true;
    model.songDetailsMessage_ = "old message";
    model.songDetailLines_ = QStringList{"old line"};
    model.exportMessage_ = "old export";
    model.duration_ = 99;
    model.currentTime_ = 33;
}

namespace test {

namespace {

template <class Panel>
class FakePanel final : public Panel {
public:
    using Run = std::function<std::optional<std::filesystem::path>(const Panel& panel)>;

    explicit FakePanel(Run run) : run_(std::move(run)) {}
    std::optional<std::filesystem::path> runModal() override { return run_(*this); }

private:
    Run run_;
};

}  // namespace

ModelTest::ModelTest()
{
    OpenPanel::replaceFactory([this] {
        return std::make_unique<FakePanel<OpenPanel>>([this](const OpenPanel&) {
            ++openPanelCount;
            whilePanelIsOpen();
            return panelAnswer;
        });
    });
    SavePanel::replaceFactory([this] {
        return std::make_unique<FakePanel<SavePanel>>([this](const SavePanel& panel) {
            ++savePanelCount;
            panelTitle = panel.title;
            proposedName = panel.nameFieldStringValue;
            proposedFolder = panel.directoryURL;
            whilePanelIsOpen();
            return panelAnswer;
        });
    });
}

ModelTest::~ModelTest()
{
    OpenPanel::replaceFactory({});
    SavePanel::replaceFactory({});
}

std::filesystem::path ModelTest::makeSong(const std::string& name, double seconds) const
{
    constexpr double rate = 8000;
    const auto frames = static_cast<std::size_t>(std::lround(seconds * rate));
    writeSong(in(name), rate, tones({220}, rate, frames));
    return in(name);
}

std::filesystem::path ModelTest::makeBrokenSong(const std::string& name) const
{
    std::ofstream(in(name), std::ios::binary) << std::string("RIFF\4\0\0\0WAVE", 12);
    return in(name);
}

void ModelTest::expectPlaying(bool isPlaying)
{
    EXPECT_EQ(model->isPreviewing(), isPlaying);
    EXPECT_EQ(hasTimer(), isPlaying);
    EXPECT_EQ(engineIsPlaying(), isPlaying);
}

std::function<std::string()> ModelTest::transportProbe()
{
    return [this] {
        return std::string(engineIsPlaying() ? " [engine plays" : " [engine rests")
               + (hasTimer() ? ", timer]" : ", no timer]");
    };
}

}  // namespace test

}  // namespace tonvale
