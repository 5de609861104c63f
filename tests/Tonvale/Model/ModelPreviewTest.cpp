// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Model/ModelTest.h"

#include <cmath>
#include <limits>

namespace tonvale {
namespace {

using Internals = AudioTransposeModelInternals;
constexpr double infinity = std::numeric_limits<double>::infinity();
const double notANumber = std::nan("");

class ModelPreview : public test::ModelTest {
protected:
    /// Plays a song of a minute from `position` on.
    void playFrom(double position)
    {
        loadSong();
        model->setTimelinePreview(position);
        model->playPreview();
    }

    void fireTimer() { Internals::timer(*model)->fire(); }
};

TEST_F(ModelPreview, DoesNothingWithoutASong)
{
    test::Announcements announcements(*model);
    model->playPreview();
    model->skipPreview(15);
    model->timelineEditingChanged(false);
    EXPECT_EQ(announcements.take(), List{});
    expectPlaying(false);
    EXPECT_EQ(device.startCount, 0);
}

TEST_F(ModelPreview, StartsAtThePositionInTheNewKey)
{
    loadSong();
    model->setSourceKey(MusicKey::cMajor);
    model->setTargetKey(MusicKey::aMajor);
    model->setTimelinePreview(12.5);
    test::Announcements announcements(*model);
    announcements.setProbe(transportProbe());
    model->playPreview();
    EXPECT_EQ(announcements.take(), (List{"isPreviewing = true [engine plays, no timer]"}));
    expectPlaying(true);
    EXPECT_EQ(engineStart(), 12.5);
    EXPECT_EQ(pitch(), -300);
    EXPECT_EQ(model->previewStatus(), "Playing");
}

TEST_F(ModelPreview, StartsAnewWhilePlaying)
{
    playFrom(10);
    clock.advance(2);
    model->setTimelinePreview(30);
    model->playPreview();
    EXPECT_EQ(engineStart(), 30);
    expectPlaying(true);
    EXPECT_EQ(device.startCount, 1);
}

TEST_F(ModelPreview, SaysInThisOrderThatThereIsNoDeviceAndLeavesTheEngineAlone)
{
    playFrom(5);
    clock.advance(1);
    loseDevice();
    test::Announcements announcements(*model);
    announcements.setProbe(transportProbe());
    model->playPreview();
    EXPECT_EQ(announcements.take(), (List{"fileName = Preview failed [engine plays, timer]",
                                          "fileDetail = Connection refused [engine plays, timer]",
                                          "isPreviewing = false [engine plays, timer]"}));
    EXPECT_FALSE(hasTimer());
    EXPECT_TRUE(engineIsPlaying()) << "the engine was told to stop";
    EXPECT_EQ(model->fileStatus(), "File loaded");
    EXPECT_EQ(model->convertButtonTitle(), "Convert to Bb");
}

TEST_F(ModelPreview, KeepsTheFailureUntilTheNextSongOrClear)
{
    loadSong();
    device.refusesToStart = true;
    model->playPreview();
    expectPlaying(false);
    device.refusesToStart = false;
    model->playPreview();
    expectPlaying(true);
    model->stopPreview();
    EXPECT_EQ(model->fileName(), "Preview failed");
    EXPECT_EQ(model->fileDetail(), "Connection refused");
    loadSong();
    EXPECT_EQ(model->fileName(), "song.wav");
    EXPECT_EQ(model->fileDetail(), "WAV audio file");
}

TEST_F(ModelPreview, StopsInThisOrderAndKeepsThePositionOfTheLastTick)
{
    playFrom(10);
    clock.advance(1);
    tick();
    clock.advance(0.15);
    test::Announcements announcements(*model);
    announcements.setProbe(transportProbe());
    model->stopPreview();
    EXPECT_EQ(announcements.take(), (List{"isPreviewing = false [engine rests, timer]"}));
    expectPlaying(false);
    EXPECT_EQ(model->currentTime(), 11);
    EXPECT_NEAR(engine().currentTime(), 11.15, 1e-9);
    model->playPreview();
    EXPECT_EQ(engineStart(), 11);
}

TEST_F(ModelPreview, MayBeStoppedWhenNothingPlays)
{
    test::Announcements announcements(*model);
    model->stopPreview();
    loadSong();
    model->stopPreview();
    model->stopPreview();
    EXPECT_EQ(announcements.take().back(), "same");
    expectPlaying(false);
}

TEST_F(ModelPreview, RestartsInThisOrder)
{
    playFrom(10);
    model->setTargetKey(MusicKey::cMajor);
    test::Announcements announcements(*model);
    announcements.setProbe(transportProbe());
    Internals::restartPreview(*model, 40);
    EXPECT_EQ(announcements.take(), (List{"same [engine plays, timer]"}));
    EXPECT_EQ(engineStart(), 40);
    EXPECT_EQ(pitch(), 200);
    expectPlaying(true);
    model->stopPreview();
    Internals::restartPreview(*model, 20);
    EXPECT_EQ(announcements.take().back(), "isPreviewing = true [engine plays, no timer]");
    expectPlaying(true);
}

TEST_F(ModelPreview, StopsBeforeItSaysThatItCannotRestart)
{
    playFrom(10);
    loseDevice();
    test::Announcements announcements(*model);
    announcements.setProbe(transportProbe());
    model->skipPreview(15);
    EXPECT_EQ(announcements.take(),
              (List{"currentTime = 25 [engine plays, timer]",
                    "isPreviewing = false [engine rests, timer]",
                    "fileName = Preview failed [engine rests, no timer]",
                    "fileDetail = Connection refused [engine rests, no timer]"}));
    expectPlaying(false);
    EXPECT_TRUE(model->hasAudio());
}

TEST_F(ModelPreview, SkipsWithinTheSong)
{
    loadSong();
    test::Announcements announcements(*model);
    model->setTimelinePreview(10);
    model->skipPreview(-15);
    model->skipPreview(20.5);
    model->skipPreview(1e9);
    model->skipPreview(15);
    model->skipPreview(-infinity);
    model->skipPreview(infinity);
    EXPECT_EQ(announcements.take(),
              (List{"currentTime = 10", "currentTime = 0", "currentTime = 20.5", "currentTime = 60",
                    "same", "currentTime = 0", "currentTime = 60"}));
    expectPlaying(false);
    EXPECT_EQ(device.startCount, 0);
}

TEST_F(ModelPreview, PlaysOnFromWhereItSkippedTo)
{
    playFrom(10);
    const auto before = device.startCount;
    model->skipPreview(15);
    EXPECT_EQ(engineStart(), 25);
    clock.advance(1);
    EXPECT_EQ(engine().currentTime(), 26);
    expectPlaying(true);
    EXPECT_EQ(device.startCount, before);
}

TEST_F(ModelPreview, BeginsAnewWhenItSkipsPastTheEnd)
{
    playFrom(57);
    model->skipPreview(15);
    EXPECT_EQ(model->currentTime(), 60);
    expectPlaying(true);
    EXPECT_EQ(engineStart(), 0);
    clock.advance(0.25);
    tick();
    EXPECT_EQ(model->currentTime(), 0.25);
    expectPlaying(true);
}

TEST_F(ModelPreview, MovesThePositionAloneFromTheTimeline)
{
    playFrom(10);
    test::Announcements announcements(*model);
    model->setTimelinePreview(30);
    model->setTimelinePreview(1e9);
    model->setTimelinePreview(-5);
    model->setTimelinePreview(infinity);
    model->setTimelinePreview(-infinity);
    EXPECT_EQ(announcements.take(), (List{"currentTime = 30", "currentTime = 60", "currentTime = 0",
                                          "currentTime = 60", "currentTime = 0"}));
    EXPECT_EQ(engineStart(), 10);
    expectPlaying(true);
}

TEST_F(ModelPreview, LetsATimeThatIsNoNumberThrough)
{
    loadSong();
    model->setTimelinePreview(notANumber);
    EXPECT_TRUE(std::isnan(model->currentTime()));
    model->setTimelinePreview(10);
    model->skipPreview(notANumber);
    EXPECT_TRUE(std::isnan(model->currentTime()));
    EXPECT_EQ(model->formatTime(model->currentTime()), "0:00");
}

TEST_F(ModelPreview, MovesThePositionFromTheTimelineWithoutASong)
{
    test::Announcements announcements(*model);
    model->setTimelinePreview(5);
    EXPECT_EQ(announcements.take(), List{"same"});
}

TEST_F(ModelPreview, DoesNotLookAtTheSongForATimelinePosition)
{
    Internals::setDuration(*model, 60);
    model->setTimelinePreview(5);
    EXPECT_EQ(model->currentTime(), 5);
}

TEST_F(ModelPreview, TreatsADurationBelowZeroAsZero)
{
    loadSong();
    Internals::setDuration(*model, -3);
    Internals::setCurrentTime(*model, 7);
    model->setTimelinePreview(5);
    EXPECT_EQ(model->currentTime(), 0);
    Internals::setCurrentTime(*model, 7);
    model->skipPreview(1);
    EXPECT_EQ(model->currentTime(), 0);
}

TEST_F(ModelPreview, PlaysOnWhileTheTimelineIsDraggedAndRestartsAtTheEndOfTheDrag)
{
    playFrom(10);
    test::Announcements announcements(*model);
    model->timelineEditingChanged(true);
    EXPECT_EQ(announcements.take(), List{});
    model->setTimelinePreview(40);
    clock.advance(1);
    tick();
    EXPECT_EQ(model->currentTime(), 11) << "the tick writes while the hand does";
    model->setTimelinePreview(45);
    EXPECT_EQ(engineStart(), 10);
    model->timelineEditingChanged(false);
    EXPECT_EQ(engineStart(), 45);
    EXPECT_EQ(model->currentTime(), 45);
    expectPlaying(true);
}

TEST_F(ModelPreview, DoesNotStartAtTheEndOfADragWhileStopped)
{
    loadSong();
    model->setTimelinePreview(45);
    test::Announcements announcements(*model);
    model->timelineEditingChanged(true);
    model->timelineEditingChanged(false);
    EXPECT_EQ(announcements.take(), List{});
    expectPlaying(false);
}

TEST_F(ModelPreview, FollowsTheEngineWithEachTick)
{
    playFrom(10);
    test::Announcements announcements(*model);
    clock.advance(0.5);
    tick();
    tick();
    clock.advance(-20);
    tick();
    EXPECT_EQ(announcements.take(), (List{"currentTime = 10.5", "same", "currentTime = 0"}));
}

TEST_F(ModelPreview, EndsWithTheSong)
{
    playFrom(59);
    clock.advance(1.1);
    test::Announcements announcements(*model);
    announcements.setProbe(transportProbe());
    tick();
    EXPECT_EQ(announcements.take(), (List{"currentTime = 60 [engine plays, timer]",
                                          "isPreviewing = false [engine rests, timer]",
                                          "same [engine rests, no timer]"}));
    expectPlaying(false);
    model->playPreview();
    EXPECT_EQ(engineStart(), 0);
    EXPECT_EQ(model->currentTime(), 60);
    clock.advance(0.25);
    tick();
    EXPECT_EQ(model->currentTime(), 0.25);
    expectPlaying(true);
}

TEST_F(ModelPreview, PlaysASongOfLessThanASecondToItsEnd)
{
    loadSong(0.5);
    model->setTimelinePreview(0.75);
    EXPECT_EQ(model->currentTime(), 0.5);
    model->setTimelinePreview(0.25);
    EXPECT_EQ(model->currentTime(), 0.25);
    model->playPreview();
    clock.advance(0.125);
    tick();
    EXPECT_EQ(model->currentTime(), 0.375);
    expectPlaying(true);
    clock.advance(0.125);
    tick();
    EXPECT_EQ(model->currentTime(), 0.5);
    expectPlaying(false);
}

TEST_F(ModelPreview, NeverEndsASongWithoutDuration)
{
    loadSong(0);
    ASSERT_TRUE(model->hasAudio());
    EXPECT_EQ(model->duration(), 0);
    model->setTimelinePreview(5);
    model->skipPreview(15);
    EXPECT_EQ(model->currentTime(), 0);
    model->playPreview();
    clock.advance(100);
    tick();
    EXPECT_EQ(model->currentTime(), 0);
    expectPlaying(true);
    model->stopPreview();
    expectPlaying(false);
}

TEST_F(ModelPreview, IgnoresATickThatWasQueuedBeforeItStopped)
{
    playFrom(10);
    clock.advance(1);
    fireTimer();
    model->stopPreview();
    test::Announcements announcements(*model);
    test::runQueuedCalls();
    EXPECT_EQ(announcements.take(), List{});
    EXPECT_EQ(model->currentTime(), 10);
}

TEST_F(ModelPreview, DoesNotKeepAModelForAQueuedTick)
{
    playFrom(10);
    fireTimer();
    model.reset();
    test::runQueuedCalls();
}

TEST_F(ModelPreview, TicksInTurnWithEverythingElse)
{
    playFrom(10);
    clock.advance(1);
    fireTimer();
    EXPECT_EQ(model->currentTime(), 10) << "not from within the timer";
    test::runQueuedCalls();
    EXPECT_EQ(model->currentTime(), 11);
}

TEST_F(ModelPreview, TicksByItselfWhileItPlays)
{
    playFrom(10);
    clock.advance(1);
    ASSERT_TRUE(test::spinUntil([this] { return model->currentTime() == 11; }));
    clock.advance(1);
    ASSERT_TRUE(test::spinUntil([this] { return model->currentTime() == 12; }));
}

TEST_F(ModelPreview, SaysWhatMattersMost)
{
    EXPECT_EQ(model->previewStatus(), "Unavailable");
    Internals::setExportMessage(*model, "Export failed");
    EXPECT_EQ(model->previewStatus(), "Export failed");
    loadSong();
    EXPECT_EQ(model->previewStatus(), "Ready");
    Internals::setExportMessage(*model, "Saved +1 semitone");
    EXPECT_EQ(model->previewStatus(), "Saved +1 semitone");
    model->playPreview();
    EXPECT_EQ(model->previewStatus(), "Playing");
}

TEST_F(ModelPreview, WritesTimesInMinutesAndSeconds)
{
    const auto text = [this](double seconds) { return model->formatTime(seconds).toStdString(); };
    EXPECT_EQ(text(0.4), "0:00");
    EXPECT_EQ(text(0.5), "0:01");
    EXPECT_EQ(text(2.5), "0:03");
    EXPECT_EQ(text(9.49), "0:09");
    EXPECT_EQ(text(59.4), "0:59");
    EXPECT_EQ(text(59.5), "1:00");
    EXPECT_EQ(text(61), "1:01");
    EXPECT_EQ(text(3725), "62:05");
    EXPECT_EQ(text(360000), "6000:00");
    EXPECT_EQ(text(0x1p62), "76861433640456465:04");
    for (const double none : {0.0, -0.0, -3.0, -0.5, infinity, -infinity, notANumber}) {
        EXPECT_EQ(text(none), "0:00") << none;
    }
    EXPECT_DEATH(static_cast<void>(text(1e30)), "");
}

}  // namespace
}  // namespace tonvale
