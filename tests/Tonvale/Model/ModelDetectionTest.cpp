// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/FakeKeyDetection.h"
#include "Support/NamedPipe.h"
#include "Support/PrivateMounts.h"
#include "Support/ProcessState.h"
#include "Tonvale/EssentiaKeyDetector.h"
#include "Tonvale/Model/ModelTest.h"

namespace tonvale {
namespace {

using Internals = AudioTransposeModelInternals;

constexpr const char* aMinor = R"({"key": "A", "scale": "minor", "keyConfidence": 0.82})";
constexpr const char* aMinorLines = "Key  : A minor - Confidence 82%|Tempo  : Unavailable";

class ModelDetection : public test::ModelTest {
protected:
    /// Detects and waits until that has ended.
    void detect()
    {
        model->autoDetectSongDetails();
        ASSERT_TRUE(test::spinUntil([this] { return !model->isDetectingSongDetails(); }));
    }
    std::string lines() { return model->songDetailLines().join(u'|').toStdString(); }

    test::FakeKeyDetection detection;
};

TEST_F(ModelDetection, DoesNothingWithoutASong)
{
    test::Announcements announcements(*model);
    EXPECT_FALSE(model->canAutoDetectSongDetails());
    model->autoDetectSongDetails();
    EXPECT_EQ(announcements.take(), List{});
}

TEST_F(ModelDetection, GoesOnInThisOrder)
{
    loadSong();
    detection.setAnswer(aMinor);
    model->setTargetKey(MusicKey::dMajor);
    test::Announcements announcements(*model);
    model->autoDetectSongDetails();
    EXPECT_EQ(announcements.take(),
              (List{"isDetectingSongDetails = true",
                    "songDetailsMessage = Detecting song details...", "same"}));
    EXPECT_FALSE(model->canAutoDetectSongDetails());
    ASSERT_TRUE(test::spinUntil([this] { return !model->isDetectingSongDetails(); }));
    EXPECT_EQ(announcements.take(), (List{"sourceKey = aMinor", "songDetailsMessage = ",
                                          std::string("songDetailLines = ") + aMinorLines,
                                          "isDetectingSongDetails = false"}));
    EXPECT_TRUE(model->canAutoDetectSongDetails());
    EXPECT_EQ(model->targetKey(), MusicKey::dMajor);
}

TEST_F(ModelDetection, ForgetsTheLastLinesAtItsStart)
{
    loadSong();
    detection.setAnswer(aMinor);
    detect();
    EXPECT_EQ(lines(), aMinorLines);
    model->autoDetectSongDetails();
    EXPECT_TRUE(model->songDetailLines().isEmpty());
    ASSERT_TRUE(test::spinUntil([this] { return !model->isDetectingSongDetails(); }));
    EXPECT_EQ(lines(), aMinorLines);
}

TEST_F(ModelDetection, RunsOnceWhenCalledTwice)
{
    loadSong();
    test::NamedPipe report(detection.folder() / "report");
    detection.setScript("import os\nopen(os.path.dirname(__file__) + '/../../../report', 'w')"
                        ".write('started\\n')\nprint('"
                        + std::string(aMinor) + "')\n");
    model->autoDetectSongDetails();
    test::Announcements announcements(*model);
    model->autoDetectSongDetails();
    EXPECT_EQ(announcements.take(), List{});
    EXPECT_EQ(report.receive(), "started");
    ASSERT_TRUE(test::spinUntil([this] { return !model->isDetectingSongDetails(); }));
    EXPECT_EQ(announcements.take().size(), 4U);
    report.send("the end");
    EXPECT_EQ(report.receive(), "the end") << "another helper was started";
}

TEST_F(ModelDetection, IsPossibleWhilePreviewingAndExporting)
{
    loadSong();
    detection.setAnswer(aMinor);
    model->playPreview();
    Internals::setExporting(*model);
    EXPECT_TRUE(model->canAutoDetectSongDetails());
    detect();
    EXPECT_EQ(lines(), aMinorLines);
}

TEST_F(ModelDetection, SaysInThisOrderWhatFailed)
{
    loadSong();
    detection.setAnswer(R"({"error": "No sound."})", "", 1);
    model->setSourceKey(MusicKey::gMajor);
    model->autoDetectSongDetails();
    test::Announcements announcements(*model);
    ASSERT_TRUE(test::spinUntil([this] { return !model->isDetectingSongDetails(); }));
    EXPECT_EQ(announcements.take(),
              (List{"songDetailsMessage = No sound.", "isDetectingSongDetails = false"}));
    EXPECT_EQ(model->sourceKey(), MusicKey::gMajor);
    EXPECT_TRUE(model->songDetailLines().isEmpty());
}

TEST_F(ModelDetection, ShowsTheTextOfEveryFailure)
{
    loadSong();
    const auto messageOf = [this](const char* output, const char* error, int status) {
        detection.setAnswer(output, error, status);
        detect();
        return model->songDetailsMessage().toStdString();
    };
    EXPECT_EQ(messageOf("{", "", 0), "unterminated object");
    EXPECT_EQ(messageOf("[]", "", 0), "The key detector returned an unreadable result.");
    EXPECT_EQ(messageOf("", "", 3), "Key detection failed.");
    EXPECT_EQ(messageOf("", "It broke.", 3), "It broke.");
    EXPECT_EQ(messageOf(R"({"key": "H", "scale": "minor", "keyConfidence": 1})", "", 0),
              "Detected H minor, but it could not be mapped to the app's key list.");
    EXPECT_EQ(model->sourceKey(), MusicKey::bFlatMajor);
}

TEST_F(ModelDetection, SaysThatItsResourcesAreMissing)
{
    const auto song = makeSong("song.wav", 1);
    std::filesystem::remove_all(detection.root());
    const auto native = EssentiaKeyDetector::detail::sourceFile() / "../../..";
    // Hidden for the threads that this one starts, so the model lives here.
    const bool isAllowed = test::runWithPrivateMounts([&] {
        test::mountOver((native / "Resources").lexically_normal(), folder.path());
        AudioTransposeModel other;
        other.load(song);
        other.setSourceKey(MusicKey::gMajor);
        other.autoDetectSongDetails();
        ASSERT_TRUE(test::spinUntil([&] { return !other.isDetectingSongDetails(); }));
        EXPECT_EQ(other.songDetailsMessage(),
                  "Key detection resources are missing from the app bundle.");
        EXPECT_EQ(other.sourceKey(), MusicKey::gMajor);
        EXPECT_TRUE(other.songDetailLines().isEmpty());
    });
    if (!isAllowed) {
        GTEST_SKIP() << "hiding the resources of the source tree takes root";
    }
}

TEST_F(ModelDetection, RetunesWhatPlays)
{
    loadSong();
    detection.setAnswer(aMinor);
    model->playPreview();
    clock.advance(5);
    EXPECT_EQ(pitch(), 0);
    detect();
    EXPECT_EQ(pitch(), 100) << "from A to Bb";
    EXPECT_EQ(engineStart(), 0);
    EXPECT_EQ(engine().currentTime(), 5);
    expectPlaying(true);
}

TEST_F(ModelDetection, SetsTheKeyOfASongThatWasLoadedMeanwhile)
{
    loadSong();
    detection.setAnswer(aMinor);
    model->autoDetectSongDetails();
    model->load(makeSong("other.wav", 1));
    EXPECT_TRUE(model->isDetectingSongDetails());
    EXPECT_EQ(model->songDetailsMessage(), "");
    ASSERT_TRUE(test::spinUntil([this] { return !model->isDetectingSongDetails(); }));
    EXPECT_EQ(model->fileName(), "other.wav");
    EXPECT_EQ(model->sourceKey(), MusicKey::aMinor);
    EXPECT_EQ(lines(), aMinorLines);
}

TEST_F(ModelDetection, SaysItsOutcomeAfterAClear)
{
    loadSong();
    detection.setAnswer(aMinor);
    model->autoDetectSongDetails();
    model->clear();
    EXPECT_FALSE(model->isDetectingSongDetails());
    ASSERT_TRUE(test::spinUntil([this] { return !model->songDetailLines().isEmpty(); }));
    EXPECT_EQ(lines(), aMinorLines);
    EXPECT_EQ(model->sourceKey(), MusicKey::aMinor);
    EXPECT_FALSE(model->hasAudio());
}

TEST_F(ModelDetection, RunsBesideAnotherAfterAClear)
{
    test::NamedPipe first(in("C.wav.go"));
    test::NamedPipe second(in("D.wav.go"));
    detection.setScript(R"(
import os, sys
open(sys.argv[1] + ".go").readline()
print('{"key": "%s", "scale": "major", "keyConfidence": 1}' % os.path.basename(sys.argv[1])[0])
)");
    model->load(makeSong("C.wav", 1));
    model->autoDetectSongDetails();
    model->clear();
    model->load(makeSong("D.wav", 1));
    model->autoDetectSongDetails();
    test::Announcements announcements(*model);
    first.send("go");
    ASSERT_TRUE(test::spinUntil([this] { return !model->isDetectingSongDetails(); }));
    EXPECT_EQ(model->sourceKey(), MusicKey::cMajor) << "the first ends for both";
    second.send("go");
    ASSERT_TRUE(test::spinUntil([this] { return model->sourceKey() == MusicKey::dMajor; }));
    EXPECT_EQ(
        announcements.take(),
        (List{"sourceKey = cMajor", "songDetailsMessage = ",
              "songDetailLines = Key  : C major - Confidence 100%|Tempo  : Unavailable",
              "isDetectingSongDetails = false", "sourceKey = dMajor", "same",
              "songDetailLines = Key  : D major - Confidence 100%|Tempo  : Unavailable", "same"}));
}

TEST_F(ModelDetection, DoesNoHarmWhenTheModelGoesMeanwhile)
{
    const std::size_t threads = test::threadCount();
    test::NamedPipe go(in("song.wav.go"));
    detection.setScript("import sys\nopen(sys.argv[1] + '.go').readline()\nprint('"
                        + std::string(aMinor) + "')\n");
    loadSong();
    model->autoDetectSongDetails();
    model.reset();
    go.send("go");
    ASSERT_TRUE(test::spinUntil([&] { return test::threadCount() == threads; }));
    test::runQueuedCalls();
}

}  // namespace
}  // namespace tonvale
