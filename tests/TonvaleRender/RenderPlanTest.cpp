// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/RenderPlan.h"

#include "Support/TemporaryFolder.h"
#include "TonvaleRender/UsageError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace tonvale {
namespace {

using ::testing::ElementsAre;

RenderRequest requestFor(std::vector<std::filesystem::path> songs)
{
    RenderRequest request;
    request.inputs = std::move(songs);
    return request;
}

RenderRequest inKey(std::vector<std::filesystem::path> songs, MusicKey source, MusicKey target)
{
    RenderRequest request = requestFor(std::move(songs));
    request.sourceKey = source;
    request.targetKeys = {target};
    return request;
}

std::vector<std::string> outputsOf(const RenderPlan& plan)
{
    std::vector<std::string> outputs;
    for (const PlannedSong& song : plan.songs) {
        for (const PlannedRender& render : song.renders) {
            outputs.push_back(render.output);
        }
    }
    return outputs;
}

std::string refusalOf(const RenderRequest& request)
{
    try {
        (void)planRenders(request);
    } catch (const UsageError& error) {
        return error.errorDescription();
    }
    return "(accepted)";
}

TEST(RenderPlan, NamesTheOutputAfterTheNewKey)
{
    RenderRequest request =
        inKey({"/music/Night Song.mp3"}, MusicKey::cMajor, MusicKey::eFlatMajor);
    EXPECT_THAT(outputsOf(planRenders(request)), ElementsAre("/music/Night Song - Key of Eb.wav"));
    request.targetKeys = {MusicKey::fSharpMinor};
    EXPECT_THAT(outputsOf(planRenders(request)), ElementsAre("/music/Night Song - Key of F#.wav"));
}

TEST(RenderPlan, NamesTheOutputAfterTheShiftWhereNoKeyWasGiven)
{
    RenderRequest request = requestFor({"Song.mp3"});
    const auto nameFor = [&](bool countsSemitones, int cents) {
        request.countsSemitones = countsSemitones;
        request.cents = cents;
        return outputsOf(planRenders(request)).front();
    };
    EXPECT_EQ(nameFor(true, 300), "Song (+3 semitones).wav");
    EXPECT_EQ(nameFor(true, -100), "Song (-1 semitone).wav");
    EXPECT_EQ(nameFor(true, 0), "Song (0 semitones).wav");
    EXPECT_EQ(nameFor(false, -150), "Song (-150 cents).wav");
    EXPECT_EQ(planRenders(request).songs.front().renders.front().cents, -150);
}

TEST(RenderPlan, TakesOnlyTheLastExtensionOffTheSong)
{
    for (const auto& [song, name] : std::vector<std::pair<std::string, std::string>>{
             {"a.b.mp3", "a.b"},
             {"noextension", "noextension"},
             {"to be continued...", "to be continued..."},
             {"dir.d/.mp3", "dir.d/.mp3"}}) {
        const RenderRequest byKeys = inKey({song}, MusicKey::dMajor, MusicKey::cMajor);
        EXPECT_THAT(outputsOf(planRenders(byKeys)), ElementsAre(name + " - Key of C.wav"));
        EXPECT_THAT(outputsOf(planRenders(requestFor({song}))),
                    ElementsAre(name + " (0 cents).wav"));
    }
}

TEST(RenderPlan, TakesTheShortestWayBetweenTwoKeys)
{
    const RenderPlan plan = planRenders(inKey({"a"}, MusicKey::cMajor, MusicKey::aMinor));
    EXPECT_EQ(plan.songs.front().renders.front().cents, -300);
}

TEST(RenderPlan, SavesOneResultWhereAskedTo)
{
    RenderRequest request = requestFor({"Song.mp3"});
    request.output = "elsewhere/out.aiff";
    EXPECT_THAT(outputsOf(planRenders(request)), ElementsAre("elsewhere/out.aiff"));
    EXPECT_FALSE(planRenders(request).folder);
}

TEST(RenderPlan, SavesIntoAFolderUnderTheUsualNames)
{
    const test::TemporaryFolder folder;
    RenderRequest request = inKey({"x/a.mp3", "y/b.mp3"}, MusicKey::cMajor, MusicKey::dMajor);
    request.output = folder.path();
    EXPECT_THAT(outputsOf(planRenders(request)), ElementsAre(folder.path() / "a - Key of D.wav",
                                                             folder.path() / "b - Key of D.wav"));
    EXPECT_EQ(planRenders(request).folder, folder.path());
    request.inputs = {"x/a.mp3"};
    request.output = "still to come/";
    EXPECT_THAT(outputsOf(planRenders(request)), ElementsAre("still to come/a - Key of D.wav"));
}

TEST(RenderPlan, GivesEachKeyAFileOfItsOwn)
{
    RenderRequest request = requestFor({"x/a.mp3", "b.mp3"});
    request.sourceKey = MusicKey::eMajor;
    request.targetKeys = {MusicKey::eFlatMajor, MusicKey::eMajor, MusicKey::fMajor};
    const RenderPlan plan = planRenders(request);
    EXPECT_EQ(plan.renderCount(), 6U);
    EXPECT_THAT(outputsOf(plan),
                ElementsAre("x/a - Key of Eb.wav", "x/a - Key of E.wav", "x/a - Key of F.wav",
                            "b - Key of Eb.wav", "b - Key of E.wav", "b - Key of F.wav"));
    EXPECT_EQ(plan.songs[1].renders[0].cents, -100);
    EXPECT_EQ(plan.songs[1].renders[1].cents, 0);
    EXPECT_EQ(plan.songs[1].renders[2].cents, 100);
}

TEST(RenderPlan, RefusesOneFileForSeveralResults)
{
    RenderRequest request = inKey({"a", "b"}, MusicKey::cMajor, MusicKey::dMajor);
    request.output = "out.wav";
    const std::string sentence =
        "Several results need a folder: end \"out.wav\" with a slash, or name a folder that is "
        "there.";
    EXPECT_EQ(refusalOf(request), sentence);
    request.inputs = {"a"};
    EXPECT_EQ(refusalOf(request), "(accepted)");
    request.targetKeys = {MusicKey::cMajor, MusicKey::dMajor};
    EXPECT_EQ(refusalOf(request), sentence);
}

TEST(RenderPlan, RefusesTwoSongsThatWouldBeSavedUnderOneName)
{
    RenderRequest request = inKey({"x/a.mp3", "y/a.flac"}, MusicKey::cMajor, MusicKey::dMajor);
    EXPECT_EQ(refusalOf(request), "(accepted)");
    request.output = "out/";
    EXPECT_EQ(refusalOf(request),
              "\"x/a.mp3\" and \"y/a.flac\" would both be saved as \"out/a - Key of D.wav\".");
    request.output.reset();
    request.inputs = {"a.mp3", "a.flac"};
    EXPECT_NE(refusalOf(request).find("would both be saved as"), std::string::npos);
}

TEST(RenderPlan, KnowsAFolderUnderEveryName)
{
    const test::TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "real");
    std::filesystem::create_directory_symlink("real", folder.path() / "link");
    for (const std::string other : {"link/a.mp3", "real/../real/a.mp3", "./real/./a.mp3"}) {
        const RenderRequest request = inKey({folder.path() / "real/a.mp3", folder.path() / other},
                                            MusicKey::cMajor, MusicKey::dMajor);
        EXPECT_NE(refusalOf(request).find("would both be saved as"), std::string::npos) << other;
    }
    const RenderRequest relative = inKey({"a.mp3", "./a.ogg"}, MusicKey::cMajor, MusicKey::dMajor);
    EXPECT_NE(refusalOf(relative).find("would both be saved as"), std::string::npos);
}

}  // namespace
}  // namespace tonvale
