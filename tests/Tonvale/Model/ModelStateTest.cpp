// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Keys/TranspositionInterval.h"
#include "Tonvale/Model/ModelTest.h"

#include <map>

namespace tonvale {
namespace {

using ModelState = test::ModelTest;

TEST_F(ModelState, BeginsWithoutASong)
{
    EXPECT_EQ(test::snapshotOf(*model),
              (test::Snapshot{
                  {"audioURL", "none"},
                  {"fileName", "Waiting for audio"},
                  {"fileDetail", "MP3, WAV, M4A, AIFF, and other browser-readable formats"},
                  {"sourceKey", "bFlatMajor"},
                  {"targetKey", "bFlatMajor"},
                  {"isPreviewing", "false"},
                  {"isExporting", "false"},
                  {"isDetectingSongDetails", "false"},
                  {"songDetailsMessage", ""},
                  {"songDetailLines", ""},
                  {"exportMessage", ""},
                  {"duration", "0"},
                  {"currentTime", "0"},
              }));
    EXPECT_TRUE(model->songDetailLines().isEmpty());
    EXPECT_FALSE(hasTimer());
    EXPECT_FALSE(model->hasAudio());
    EXPECT_EQ(model->fileStatus(), "No file selected");
    EXPECT_EQ(model->convertButtonTitle(), "Convert");
    EXPECT_EQ(model->semitones(), 0);
    EXPECT_EQ(model->intervalDescription(), "The selected keys are the same.");
    EXPECT_EQ(model->signedSemitoneText(), "0");
    EXPECT_EQ(model->previewStatus(), "Unavailable");
    EXPECT_EQ(model->previewHint(), "Select an audio file to preview the transposed playback.");
    EXPECT_FALSE(model->canAutoDetectSongDetails());
    EXPECT_EQ(device.startCount, 0);
}

TEST_F(ModelState, OffersTheViewsEveryPropertyByItsName)
{
    for (const char* name : {"hasAudio",
                             "fileName",
                             "fileDetail",
                             "sourceKey",
                             "targetKey",
                             "isPreviewing",
                             "isExporting",
                             "isDetectingSongDetails",
                             "songDetailsMessage",
                             "songDetailLines",
                             "exportMessage",
                             "duration",
                             "currentTime",
                             "fileStatus",
                             "convertButtonTitle",
                             "semitones",
                             "intervalDescription",
                             "signedSemitoneText",
                             "previewStatus",
                             "previewHint",
                             "canAutoDetectSongDetails",
                             "allKeys"}) {
        EXPECT_TRUE(model->property(name).isValid()) << name;
    }
    EXPECT_EQ(model->property("sourceKey").toString(), "bFlatMajor");
}

TEST_F(ModelState, ListsEveryKey)
{
    const QVariantList keys = model->allKeys();
    ASSERT_EQ(keys.size(), 24);
    EXPECT_EQ(keys.at(3).toMap(), (QVariantMap{{"id", "eFlatMajor"}, {"name", "D# / Eb major"}}));
    EXPECT_EQ(keys.last().toMap().value("id"), "bMinor");
}

TEST_F(ModelState, TakesKeysFromTheViewsByTheirIdentity)
{
    EXPECT_TRUE(model->setProperty("sourceKey", "aMinor"));
    EXPECT_TRUE(model->setProperty("targetKey", "cMajor"));
    EXPECT_EQ(model->sourceKey(), MusicKey::aMinor);
    EXPECT_EQ(model->targetKey(), MusicKey::cMajor);
    test::Announcements announcements(*model);
    model->setProperty("sourceKey", "hMajor");
    model->setProperty("targetKey", "");
    EXPECT_EQ(announcements.take(), List{});
}

TEST_F(ModelState, ComputesTheIntervalFromTheKeys)
{
    model->setSourceKey(MusicKey::cMajor);
    model->setTargetKey(MusicKey::fSharpMajor);
    EXPECT_EQ(model->semitones(), 6);
    EXPECT_EQ(model->intervalDescription(), "Up 6 semitones.");
    EXPECT_EQ(model->signedSemitoneText(), "+6");
    model->setSourceKey(MusicKey::fSharpMajor);
    model->setTargetKey(MusicKey::cMinor);
    EXPECT_EQ(model->semitones(), -6);
    EXPECT_EQ(model->intervalDescription(), "Down 6 semitones.");
    EXPECT_EQ(model->signedSemitoneText(), "-6");
    model->setSourceKey(MusicKey::bMajor);
    EXPECT_EQ(model->intervalDescription(), "Up 1 semitone.");
    model->setTargetKey(MusicKey::bMinor);
    EXPECT_EQ(model->intervalDescription(), "The selected keys are the same.");
    EXPECT_EQ(model->signedSemitoneText(), "0");
}

TEST_F(ModelState, HasTheIntervalOfEveryPairOfKeys)
{
    std::map<int, int> counts;
    for (const MusicKey source : MusicKey::allCases()) {
        model->setSourceKey(source);
        for (const MusicKey target : MusicKey::allCases()) {
            model->setTargetKey(target);
            ++counts[model->semitones()];
        }
    }
    std::map<int, int> expected{{-6, 24}, {6, 24}};
    for (int semitones = -5; semitones <= 5; ++semitones) {
        expected[semitones] = 48;
    }
    EXPECT_EQ(counts, expected);
}

TEST_F(ModelState, AnnouncesAKeyEvenWhenItIsTheSame)
{
    test::Announcements announcements(*model);
    model->setSourceKey(MusicKey::aMinor);
    model->setTargetKey(MusicKey::cMajor);
    model->setSourceKey(MusicKey::aMinor);
    model->setTargetKey(MusicKey::cMajor);
    EXPECT_EQ(announcements.take(),
              (List{"sourceKey = aMinor", "targetKey = cMajor", "same", "same"}));
    EXPECT_EQ(pitch(), 0) << "nothing plays that could be retuned";
}

TEST_F(ModelState, RetunesWhatPlaysAfterTheKeyIsTold)
{
    loadSong();
    model->playPreview();
    clock.advance(5);
    test::Announcements announcements(*model);
    announcements.setProbe([this] { return " at " + std::to_string(int(pitch())); });
    model->setTargetKey(MusicKey::cSharpMajor);
    model->setSourceKey(MusicKey::cMajor);
    EXPECT_EQ(announcements.take(),
              (List{"targetKey = cSharpMajor at 0", "sourceKey = cMajor at 300"}));
    EXPECT_EQ(pitch(), 100);
    EXPECT_EQ(engineStart(), 0) << "restarted";
    EXPECT_EQ(engine().currentTime(), 5);
    EXPECT_EQ(device.startCount, 1);
    expectPlaying(true);
}

TEST_F(ModelState, NamesTheNewKeyOnTheConvertButton)
{
    loadSong();
    EXPECT_EQ(model->convertButtonTitle(), "Convert to Bb");
    model->setTargetKey(MusicKey::eFlatMajor);
    EXPECT_EQ(model->convertButtonTitle(), "Convert to Eb");
    model->setTargetKey(MusicKey::eFlatMinor);
    EXPECT_EQ(model->convertButtonTitle(), "Convert to Eb");
    Internals::fill(*model);
    EXPECT_EQ(model->convertButtonTitle(), "Rendering...");
}

}  // namespace
}  // namespace tonvale
