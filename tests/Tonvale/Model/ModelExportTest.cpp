// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/ProcessState.h"
#include "Support/Songs.h"
#include "Tonvale/Model/ModelTest.h"

#include <cmath>

namespace tonvale {
namespace {

using Internals = AudioTransposeModelInternals;

class ModelExport : public test::ModelTest {
protected:
    ModelExport() { panelAnswer = in("saved.wav"); }

    void setInterval(MusicKey source, MusicKey target)
    {
        model->setSourceKey(source);
        model->setTargetKey(target);
    }
    /// Waits until `message` is said.
    bool isSaid(const QString& message)
    {
        return test::spinUntil([&] { return model->exportMessage() == message; });
    }
    /// Saves; returns what was said at the start and at the end.
    std::pair<std::string, std::string> save()
    {
        model->chooseExportLocationAndRender();
        const std::string started = model->exportMessage().toStdString();
        EXPECT_TRUE(test::spinUntil([this] { return !model->isExporting(); }));
        return {started, model->exportMessage().toStdString()};
    }
};

TEST_F(ModelExport, DoesNothingWithoutASong)
{
    test::Announcements announcements(*model);
    model->chooseExportLocationAndRender();
    EXPECT_EQ(savePanelCount, 0);
    EXPECT_EQ(announcements.take(), List{});
}

TEST_F(ModelExport, ProposesANameBesideTheSong)
{
    panelAnswer.reset();
    model->load(makeSong("take.final.aiff", 1));
    model->setTargetKey(MusicKey::aMinor);
    model->chooseExportLocationAndRender();
    EXPECT_EQ(panelTitle, "Save Transposed Song");
    EXPECT_EQ(proposedName, "take.final - Key of A.wav");
    EXPECT_EQ(proposedFolder, folder.path());
    model->load(makeSong("Night Song.wav", 1));
    model->setTargetKey(MusicKey::fSharpMinor);
    model->chooseExportLocationAndRender();
    EXPECT_EQ(proposedName, "Night Song - Key of F#.wav");
}

TEST_F(ModelExport, ChangesNothingWhenThePanelIsCancelled)
{
    panelAnswer.reset();
    loadSong();
    model->playPreview();
    test::Announcements announcements(*model);
    model->chooseExportLocationAndRender();
    EXPECT_EQ(savePanelCount, 1);
    EXPECT_EQ(announcements.take(), List{});
    expectPlaying(true);
}

TEST_F(ModelExport, GoesOnInThisOrder)
{
    loadSong(1);
    setInterval(MusicKey::cMajor, MusicKey::eFlatMajor);
    model->playPreview();
    test::Announcements announcements(*model);
    announcements.setProbe(transportProbe());
    whilePanelIsOpen = [&] { EXPECT_EQ(announcements.take(), List{}); };
    model->chooseExportLocationAndRender();
    const std::string after = " [engine rests, no timer]";
    EXPECT_EQ(announcements.take(),
              (List{"isPreviewing = false [engine rests, timer]", "isExporting = true" + after,
                    "exportMessage = Rendering +3 semitones" + after}));
    EXPECT_EQ(model->convertButtonTitle(), "Rendering...");
    EXPECT_EQ(model->previewStatus(), "Rendering +3 semitones");
    ASSERT_TRUE(isSaid("Saved +3 semitones"));
    EXPECT_EQ(announcements.take(),
              (List{"isExporting = false" + after, "exportMessage = Saved +3 semitones" + after}));
    EXPECT_EQ(model->convertButtonTitle(), "Convert to Eb");
    EXPECT_EQ(model->previewStatus(), "Saved +3 semitones");
}

TEST_F(ModelExport, SavesTheSongInTheNewKey)
{
    const auto song = makeSong("song.wav", 2);
    model->load(song);
    setInterval(MusicKey::cMajor, MusicKey::eFlatMajor);
    static_cast<void>(save());
    const test::Song saved = test::readSong(in("saved.wav"));
    ASSERT_EQ(saved.channels[0].size(), 16000U);
    const double expected = 220 * std::exp2(3.0 / 12);
    EXPECT_NEAR(test::centsBetween(expected, test::frequencyOf(saved.channels[0], 8000)), 0, 1);
}

TEST_F(ModelExport, SaysOneSemitoneInTheSingular)
{
    loadSong(0.1);
    using Texts = std::pair<std::string, std::string>;
    setInterval(MusicKey::cMajor, MusicKey::cSharpMajor);
    EXPECT_EQ(save(), Texts("Rendering +1 semitone", "Saved +1 semitone"));
    setInterval(MusicKey::cMajor, MusicKey::bMinor);
    EXPECT_EQ(save(), Texts("Rendering -1 semitone", "Saved -1 semitone"));
    setInterval(MusicKey::cMajor, MusicKey::gMajor);
    EXPECT_EQ(save(), Texts("Rendering -5 semitones", "Saved -5 semitones"));
    setInterval(MusicKey::cMajor, MusicKey::cMajor);
    std::filesystem::remove(in("saved.wav"));
    EXPECT_EQ(save(), Texts("Rendering 0 semitones", "Saved 0 semitones"));
    EXPECT_TRUE(std::filesystem::exists(in("saved.wav")));
}

TEST_F(ModelExport, ReadsTheKeysBeforeThePanelOpens)
{
    model->load(makeSong("song.wav", 2));
    setInterval(MusicKey::cMajor, MusicKey::dMajor);
    const auto other = makeSong("other.wav", 1);
    whilePanelIsOpen = [&] {
        setInterval(MusicKey::gMajor, MusicKey::cMajor);
        model->load(other);
    };
    model->chooseExportLocationAndRender();
    EXPECT_EQ(proposedName, "song - Key of D.wav");
    EXPECT_EQ(model->exportMessage(), "Rendering +2 semitones");
    model->setTargetKey(MusicKey::aMajor);
    ASSERT_TRUE(isSaid("Saved +2 semitones"));
    EXPECT_EQ(test::readSong(in("saved.wav")).channels[0].size(), 16000U) << "not the first song";
}

TEST_F(ModelExport, RefusesASecondWhileOneRuns)
{
    loadSong(1);
    model->chooseExportLocationAndRender();
    test::Announcements announcements(*model);
    model->chooseExportLocationAndRender();
    EXPECT_EQ(savePanelCount, 1);
    EXPECT_EQ(announcements.take(), List{});
    ASSERT_TRUE(isSaid("Saved 0 semitones"));
}

TEST_F(ModelExport, LetsEveryOtherCommandBeUsedMeanwhile)
{
    loadSong(1);
    model->chooseExportLocationAndRender();
    model->playPreview();
    expectPlaying(true);
    EXPECT_TRUE(model->canAutoDetectSongDetails());
    model->load(makeSong("other.wav", 5));
    EXPECT_TRUE(model->isExporting());
    EXPECT_EQ(model->exportMessage(), "");
    model->playPreview();
    ASSERT_TRUE(isSaid("Saved 0 semitones"));
    EXPECT_FALSE(model->isExporting());
    EXPECT_EQ(model->fileName(), "other.wav");
    expectPlaying(true);
}

TEST_F(ModelExport, SaysInThisOrderWhatFailed)
{
    loadSong(1);
    panelAnswer = in("no such folder") / "saved.wav";
    model->chooseExportLocationAndRender();
    test::Announcements announcements(*model);
    ASSERT_TRUE(isSaid("Export failed"));
    EXPECT_EQ(announcements.take(),
              (List{"isExporting = false", "exportMessage = Export failed",
                    "fileName = Export failed", "fileDetail = No such file or directory"}));
    EXPECT_EQ(model->fileStatus(), "File loaded");
    EXPECT_EQ(model->previewStatus(), "Export failed");
    panelAnswer = in("saved.wav");
    EXPECT_EQ(save().second, "Saved 0 semitones");
    EXPECT_EQ(model->fileName(), "Export failed") << "the song's name came back";
}

TEST_F(ModelExport, FailsForAnEmptySong)
{
    loadSong(0);
    EXPECT_EQ(save().second, "Export failed");
    EXPECT_EQ(model->fileDetail(), "The export produced no audio frames.");
}

TEST_F(ModelExport, SavesASongOfOneFrame)
{
    loadSong(1.0 / 8000);
    EXPECT_EQ(save().second, "Saved 0 semitones");
    EXPECT_EQ(test::readSong(in("saved.wav")).channels[0].size(), 1U);
}

TEST_F(ModelExport, SavesOntoTheSongItself)
{
    const auto song = makeSong("song.wav", 1);
    model->load(song);
    panelAnswer = song;
    setInterval(MusicKey::cMajor, MusicKey::dMajor);
    EXPECT_EQ(save().second, "Saved +2 semitones");
    EXPECT_EQ(test::readSong(song).channels[0].size(), 8000U);
}

TEST_F(ModelExport, SaysItsOutcomeAfterAClear)
{
    loadSong(1);
    setInterval(MusicKey::cMajor, MusicKey::dMajor);
    model->chooseExportLocationAndRender();
    model->clear();
    EXPECT_FALSE(model->isExporting());
    EXPECT_EQ(model->exportMessage(), "");
    EXPECT_EQ(model->convertButtonTitle(), "Convert");
    ASSERT_TRUE(isSaid("Saved +2 semitones"));
    EXPECT_EQ(model->previewStatus(), "Saved +2 semitones");
    EXPECT_FALSE(model->hasAudio());
}

TEST_F(ModelExport, RunsBesideAnotherAfterAClear)
{
    loadSong(1);
    setInterval(MusicKey::cMajor, MusicKey::dMajor);
    model->chooseExportLocationAndRender();
    model->clear();
    model->load(makeSong("other.wav", 1));
    setInterval(MusicKey::cMajor, MusicKey::eMajor);
    panelAnswer = in("other saved.wav");
    model->chooseExportLocationAndRender();
    EXPECT_EQ(savePanelCount, 2);
    test::Announcements announcements(*model);
    List list;
    ASSERT_TRUE(test::spinUntil([&] {
        for (const std::string& entry : announcements.take()) {
            list.push_back(entry);
        }
        return list.size() >= 4;
    }));
    const std::string first = "exportMessage = Saved +2 semitones";
    const std::string second = "exportMessage = Saved +4 semitones";
    EXPECT_TRUE((list == List{"isExporting = false", first, "same", second}
                 || list == List{"isExporting = false", second, "same", first}))
        << ::testing::PrintToString(list);
    EXPECT_TRUE(std::filesystem::exists(in("saved.wav")));
    EXPECT_TRUE(std::filesystem::exists(in("other saved.wav")));
}

TEST_F(ModelExport, DoesNoHarmWhenTheModelGoesMeanwhile)
{
    const std::size_t threads = test::threadCount();
    loadSong(20);
    model->chooseExportLocationAndRender();
    model.reset();
    ASSERT_TRUE(test::spinUntil([&] { return test::threadCount() == threads; }));
    test::runQueuedCalls();
    EXPECT_EQ(test::readSong(in("saved.wav")).channels[0].size(), 160000U);
}

}  // namespace
}  // namespace tonvale
