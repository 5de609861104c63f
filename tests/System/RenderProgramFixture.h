// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Support/Program.h"
#include "Support/Songs.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace tonvale {

using test::ProgramOptions;
using test::ProgramResult;

inline constexpr double minorThird = 1.189207115;  // the ratio of three semitones

/// The built renderer, run in a folder of the test's own.
class RenderProgram : public ::testing::Test {
protected:
    [[nodiscard]] std::filesystem::path in(const std::string& name) const
    {
        return folder.path() / name;
    }

    /// Runs the renderer in the test's folder.
    ProgramResult render(std::vector<std::string> arguments, ProgramOptions options = {}) const
    {
        arguments.insert(arguments.begin(), TONVALE_RENDER);
        options.folder = folder.path();
        return test::runProgram(arguments, options);
    }

    /// A second of music, 440 Hz on the left and 660 Hz on the right.
    void makeSong(const std::string& name, std::size_t frames = 44100) const
    {
        test::writeSong(in(name), 44100, test::tones({440, 660}, 44100, frames));
    }

    void convert(const std::vector<std::string>& arguments) const
    {
        std::vector<std::string> words{"ffmpeg", "-nostdin", "-loglevel", "error", "-y"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        ProgramOptions options;
        options.folder = folder.path();
        const ProgramResult result = test::runProgram(words, options);
        ASSERT_EQ(result.exitStatus, 0) << result.standardError;
    }

    void expectTransposed(const std::string& name, std::size_t frames) const
    {
        const test::Song song = test::readSong(in(name));
        ASSERT_EQ(song.channels.size(), 2U);
        EXPECT_EQ(song.channels[0].size(), frames);
        const double rate = song.format.sampleRate;
        const double left = test::frequencyOf(song.channels[0], rate);
        const double right = test::frequencyOf(song.channels[1], rate);
        EXPECT_NEAR(test::centsBetween(440 * minorThird, left), 0, 1);
        EXPECT_NEAR(test::centsBetween(660 * minorThird, right), 0, 1);
    }

    /// Exit status 1, one line on standard error, and no word of anything saved.
    static void expectOneSentence(const ProgramResult& result)
    {
        EXPECT_EQ(result.exitStatus, 1) << result.standardError;
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_TRUE(result.standardError.starts_with("tonvale-render: ")) << result.standardError;
        EXPECT_EQ(std::ranges::count(result.standardError, '\n'), 1) << result.standardError;
        EXPECT_TRUE(result.standardError.ends_with("\n"));
    }

    test::TemporaryFolder folder;
};

}  // namespace tonvale
