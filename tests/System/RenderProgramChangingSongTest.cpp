// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "System/RenderProgramFixture.h"

#include <optional>

namespace tonvale {
namespace {

/// The song changes when its render has begun.
class ChangingSong : public RenderProgram {
protected:
    ProgramResult renderWhile(const std::function<void()>& change)
    {
        ProgramOptions options;
        options.folder = folder.path();
        std::optional<test::RunningProgram> program;
        waitForFiles(folder.path(), {"out.wav"}, [&] {
            program.emplace(std::vector<std::string>{TONVALE_RENDER, "song.wav", "--semitones", "3",
                                                     "-o", "out.wav"},
                            options);
        });
        change();
        return program->wait();
    }

    static constexpr std::size_t minute = 60 * 44100;
};

TEST_F(ChangingSong, IsRenderedWholeWhenItIsDeleted)
{
    makeSong("song.wav", minute);
    EXPECT_EQ(renderWhile([this] { std::filesystem::remove(in("song.wav")); }).exitStatus, 0);
    expectTransposed("out.wav", minute);
}

TEST_F(ChangingSong, IsRenderedAsItWasWhenAnotherTakesItsPlace)
{
    makeSong("song.wav", minute);
    makeSong("other.wav", 100);
    const ProgramResult result =
        renderWhile([this] { std::filesystem::rename(in("other.wav"), in("song.wav")); });
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    expectTransposed("out.wav", minute);
}

TEST_F(ChangingSong, IsNotCalledSavedWhenItIsCutOff)
{
    makeEndlessSong("song.wav");
    const ProgramResult result =
        renderWhile([this] { std::filesystem::resize_file(in("song.wav"), 100000); });
    expectOneSentence(result);
    EXPECT_NE(result.standardError.find("Input/output error"), std::string::npos);
}

TEST_F(ChangingSong, KeepsItsLengthWhenItsBytesChangeOrGrow)
{
    makeSong("song.wav", minute);
    const ProgramResult result = renderWhile([this] {
        std::fstream file(in("song.wav"), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(44);  // behind the header
        file << std::string(1000000, '\xA5');
        file.seekp(0, std::ios::end);
        file << std::string(1000000, '\xA5');
    });
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    EXPECT_EQ(test::readSong(in("out.wav")).channels[0].size(), minute);
}

}  // namespace
}  // namespace tonvale
