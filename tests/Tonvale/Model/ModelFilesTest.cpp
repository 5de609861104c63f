// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Model/ModelTest.h"

#include <fstream>

namespace tonvale {
namespace {

using ModelFiles = test::ModelTest;
using Internals = AudioTransposeModelInternals;

TEST_F(ModelFiles, ShowsALoadedSongInThisOrder)
{
    const auto song = makeSong("Live.Take.aiff", 10);
    Internals::fill(*model);
    test::Announcements announcements(*model);
    model->load(song);
    EXPECT_EQ(
        announcements.take(),
        (List{"same",  // the preview is stopped
              "audioURL = Live.Take.aiff", "fileName = Live.Take.aiff",
              "fileDetail = AIFF audio file", "sourceKey = bFlatMajor", "targetKey = bFlatMajor",
              "duration = 10", "currentTime = 0",
              "songDetailsMessage = ", "songDetailLines = ", "exportMessage = ", "fileLoaded"}));
    EXPECT_EQ(model->audioURL(), song);
    EXPECT_TRUE(model->isExporting());
    EXPECT_TRUE(model->isDetectingSongDetails());
    EXPECT_EQ(model->fileStatus(), "File loaded");
}

TEST_F(ModelFiles, OffersThePreviewOfALoadedSong)
{
    loadSong();
    EXPECT_TRUE(model->hasAudio());
    EXPECT_EQ(model->convertButtonTitle(), "Convert to Bb");
    EXPECT_EQ(model->previewStatus(), "Ready");
    EXPECT_EQ(model->previewHint(),
              "Drag the timeline or use the skip buttons to jump through the song.");
    EXPECT_TRUE(model->canAutoDetectSongDetails());
    expectPlaying(false);
}

TEST_F(ModelFiles, ShowsAFailureInThisOrderAndKeepsKeysAndExportMessage)
{
    const auto song = makeBrokenSong("song.wav");
    Internals::fill(*model);
    test::Announcements announcements(*model);
    model->load(song);
    List list = announcements.take();
    ASSERT_EQ(list.size(), 8U);
    EXPECT_TRUE(list[3].starts_with("fileDetail = ")) << list[3];
    EXPECT_NE(model->fileDetail(), "");
    list.erase(list.begin() + 3);
    EXPECT_EQ(list,
              (List{"same", "audioURL = none", "fileName = Could not load audio", "duration = 0",
                    "currentTime = 0", "songDetailsMessage = ", "songDetailLines = "}));
    EXPECT_EQ(model->sourceKey(), MusicKey::cMajor);
    EXPECT_EQ(model->targetKey(), MusicKey::dMinor);
    EXPECT_EQ(model->exportMessage(), "old export");
    EXPECT_EQ(model->fileStatus(), "No file selected");
}

TEST_F(ModelFiles, SaysInTheSystemsWordsWhyASongDoesNotOpen)
{
    model->load(in("missing.MP3"));  // its type cannot be told, its name is a song's
    EXPECT_EQ(model->fileName(), "Could not load audio");
    EXPECT_EQ(model->fileDetail(), "No such file or directory");
    EXPECT_EQ(model->fileStatus(), "No file selected");
    EXPECT_EQ(model->convertButtonTitle(), "Convert");
    EXPECT_FALSE(model->canAutoDetectSongDetails());
    model->playPreview();
    expectPlaying(false);
}

TEST_F(ModelFiles, StopsThePreviewBeforeASongThatDoesNotOpen)
{
    loadSong();
    model->playPreview();
    clock.advance(3);
    test::Announcements announcements(*model);
    announcements.setProbe(transportProbe());
    model->load(in("missing.mp3"));
    const List list = announcements.take();
    ASSERT_GE(list.size(), 2U);
    EXPECT_EQ(list[0], "isPreviewing = false [engine rests, timer]");
    EXPECT_EQ(list[1], "audioURL = none [engine rests, no timer]");
    expectPlaying(false);
    EXPECT_EQ(engine().duration(), 60) << "the engine was told to forget its song";
}

TEST_F(ModelFiles, LeavesEverythingAsItIsForWhatIsNoAudio)
{
    loadSong();
    model->playPreview();
    std::ofstream(in("text.mp3")) << "Only words.\n";
    std::filesystem::create_directory(in("folder.wav"));
    test::Announcements announcements(*model);
    for (const char* name : {"text.mp3", "folder.wav", "missing.txt", "missing", ".mp3"}) {
        model->load(in(name));
    }
    EXPECT_EQ(announcements.take(), List{});
    expectPlaying(true);
}

TEST_F(ModelFiles, KnowsAudioByItsContentAndElseByItsExtension)
{
    const auto song = makeSong("song.wav", 1);
    std::filesystem::copy(song, in("song"));
    std::filesystem::copy(song, in("song.txt"));
    EXPECT_TRUE(Internals::isAudioFile(song));
    EXPECT_TRUE(Internals::isAudioFile(in("song")));
    EXPECT_TRUE(Internals::isAudioFile(in("song.txt")));
    for (const char* name :
         {"a.mp3", "a.m4a", "a.wav", "a.aif", "a.aiff", "a.caf", "a.MP3", "a.b.Wav", ".a.aIfF"}) {
        EXPECT_TRUE(Internals::isAudioFile(in(name))) << name;
    }
    for (const char* name : {"a.flac", "a.ogg", "a", "a.", ".mp3", "mp3", "a.mp3 ", "a.mp33"}) {
        EXPECT_FALSE(Internals::isAudioFile(in(name))) << name;
    }
    EXPECT_TRUE(Internals::isAudioFile(makeSong("song.caf", 1))) << "no type in the database";
    std::ofstream(in("text.wav")) << "Only words.\n";
    EXPECT_FALSE(Internals::isAudioFile(in("text.wav")));
}

TEST_F(ModelFiles, DetailsTheExtensionInCapitals)
{
    const auto song = makeSong("song.wav", 1);
    const auto detail = [&](const char* name) {
        std::filesystem::copy(song, in(name));
        model->load(in(name));
        EXPECT_EQ(model->fileName(), QString::fromUtf8(name));
        return model->fileDetail().toStdString();
    };
    EXPECT_EQ(detail("take2.m4a"), "M4A audio file");
    EXPECT_EQ(detail("no extension"), "Audio file");
    EXPECT_EQ(detail(".mp3"), "Audio file");
    EXPECT_EQ(detail("a.b.Wave"), "WAVE audio file");
    EXPECT_EQ(detail("Key of F#.wav"), "WAV audio file");
    EXPECT_EQ(detail("100%25?.\xc3\xa9t"), "\xc3\x89T audio file");
}

TEST_F(ModelFiles, ReplacesASongByAnotherAndStartsOver)
{
    loadSong();
    model->setSourceKey(MusicKey::cMajor);
    model->setTargetKey(MusicKey::aMinor);
    model->setTimelinePreview(20);
    Internals::setExportMessage(*model, "Saved +1 semitone");
    model->load(makeSong("other.wav", 5));
    EXPECT_EQ(model->sourceKey(), MusicKey::bFlatMajor);
    EXPECT_EQ(model->targetKey(), MusicKey::bFlatMajor);
    EXPECT_EQ(model->exportMessage(), "");
    EXPECT_EQ(model->currentTime(), 0);
    EXPECT_EQ(model->duration(), 5);
    EXPECT_EQ(model->fileName(), "other.wav");
}

TEST_F(ModelFiles, HasTheDurationOfTheSongInSeconds)
{
    loadSong(10);
    EXPECT_EQ(model->duration(), 10.0);
}

TEST_F(ModelFiles, ClearsInThisOrderAndKeepsTheKeys)
{
    loadSong();
    model->playPreview();
    Internals::fill(*model);
    test::Announcements announcements(*model);
    announcements.setProbe(transportProbe());
    model->clear();
    List list = announcements.take();
    EXPECT_EQ(list.front(), "isPreviewing = false [engine rests, timer]");
    const std::string after = " [engine rests, no timer]";
    EXPECT_EQ(
        List(list.begin() + 1, list.end()),
        (List{"audioURL = none" + after, "fileName = Waiting for audio" + after,
              "fileDetail = MP3, WAV, M4A, AIFF, and other browser-readable formats" + after,
              "duration = 0" + after, "currentTime = 0" + after, "songDetailsMessage = " + after,
              "songDetailLines = " + after, "exportMessage = " + after,
              "isExporting = false" + after, "isDetectingSongDetails = false" + after}));
    EXPECT_EQ(model->sourceKey(), MusicKey::cMajor);
    EXPECT_EQ(model->targetKey(), MusicKey::dMinor);
    EXPECT_EQ(engine().duration(), 60) << "the engine was told to forget its song";
}

TEST_F(ModelFiles, AnnouncesAClearOfNothingAllTheSame)
{
    test::Announcements announcements(*model);
    model->clear();
    EXPECT_EQ(announcements.take(), List(11, "same"));
}

TEST_F(ModelFiles, LoadsWhatThePanelGives)
{
    panelAnswer = makeSong("Key of F#.wav", 1);
    model->chooseFile();
    EXPECT_EQ(openPanelCount, 1);
    EXPECT_EQ(model->fileName(), "Key of F#.wav");
}

TEST_F(ModelFiles, LeavesEverythingAsItIsWhenThePanelIsCancelled)
{
    loadSong();
    model->playPreview();
    test::Announcements announcements(*model);
    model->chooseFile();
    EXPECT_EQ(openPanelCount, 1);
    EXPECT_EQ(announcements.take(), List{});
    expectPlaying(true);
}

}  // namespace
}  // namespace tonvale
