// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Support/Program.h"
#include "Support/Songs.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
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

    /// Three hours of silence that take no room on the disk: whoever renders it is still at it when
    /// a signal comes.
    void makeEndlessSong(const std::string& name) const
    {
        makeSong(name, 0);
        std::fstream header(in(name), std::ios::in | std::ios::out | std::ios::binary);
        header.seekp(40);
        constexpr std::uint32_t dataBytes = 3U * 3600 * 44100 * 4;
        for (int byte = 0; byte < 4; ++byte) {
            header.put(static_cast<char>(dataBytes >> (8 * byte)));
        }
        header.close();
        std::filesystem::resize_file(in(name), 44 + std::uintmax_t{dataBytes});
    }

    void makeDemoTune(const std::string& name) const
    {
        const std::string maker = TONVALE_SOURCES "/scripts/make-demo-tune";
        ASSERT_EQ(test::runProgram({maker, in(name).string()}).exitStatus, 0);
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

    /// Blocks until files of these names have appeared in the folder; a minute without a new file
    /// is a failure.
    static void waitForFiles(const std::filesystem::path& folder, std::set<std::string> names,
                             const std::function<void()>& start)
    {
        const FileDescriptor watch(::inotify_init1(IN_CLOEXEC));
        ASSERT_GE(::inotify_add_watch(watch.get(), folder.c_str(), IN_CREATE), 0);
        start();
        alignas(inotify_event) std::array<char, 4096> events{};
        pollfd news{watch.get(), POLLIN, 0};
        while (!names.empty()) {
            ASSERT_EQ(::poll(&news, 1, 60'000), 1) << "waited for " << *names.begin() << " in vain";
            const ssize_t count = ::read(watch.get(), events.data(), events.size());
            ASSERT_GT(count, 0);
            for (std::size_t place = 0; place < static_cast<std::size_t>(count);) {
                const auto* event = reinterpret_cast<const inotify_event*>(&events[place]);
                names.erase(event->name);
                place += sizeof(inotify_event) + event->len;
            }
        }
    }

    static bool hasTerminals()
    {
        const FileDescriptor terminal(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
        return terminal.isOpen() && ::unlockpt(terminal.get()) == 0
               && std::filesystem::exists(::ptsname(terminal.get()));
    }

    /// script(1) gives the program a terminal and copies what it draws.
    /// @param arguments  separated by blanks
    [[nodiscard]] ProgramResult renderOnTerminal(const std::string& arguments) const
    {
        return test::runProgram({"script", "--quiet", "--return", "--command",
                                 std::string(TONVALE_RENDER) + " " + arguments, "/dev/null"},
                                {folder.path(), [] {}});
    }

    test::TemporaryFolder folder;
};

}  // namespace tonvale
