// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "System/RenderProgramFixture.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <optional>

namespace tonvale {
namespace {

TEST_F(RenderProgram, SaysWhyItCannotWrite)
{
    makeSong("song.wav", 2000);
    for (const std::string output : {"/proc/out.wav", "/sys/out.wav", "missing/out.wav"}) {
        expectOneSentence(render({"song.wav", "--cents", "1", "-o", output}));
    }
}

TEST_F(RenderProgram, NeverCallsAFileSavedThatIsNotWhole)
{
    makeSong("song.wav", 44100);
    // From nothing at all to just under the 176,444 bytes that the whole file takes.
    for (const rlim_t bytes : {0UL, 43UL, 44UL, 100000UL, 176443UL}) {
        ProgramOptions options;
        options.prepare = [bytes] {
            const rlimit limit{bytes, bytes};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        };
        const ProgramResult result =
            render({"song.wav", "--cents", "1", "-o", "out.wav", "--force"}, options);
        expectOneSentence(result);
        EXPECT_NE(result.standardError.find("File too large"), std::string::npos);
    }
}

TEST_F(RenderProgram, ReportsAFullDisk)
{
    makeSong("song.wav", 44100);
    std::filesystem::create_directory(in("disk"));
    constexpr int couldNotMount = 77;
    ProgramOptions options;
    options.prepare = [disk = in("disk").string()] {
        if (::unshare(CLONE_NEWNS) != 0
            || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0
            || ::mount("none", disk.c_str(), "tmpfs", 0, "size=64k") != 0) {
            ::_exit(couldNotMount);
        }
    };
    const ProgramResult result =
        render({"song.wav", "--cents", "1", "-o", "disk/out.wav"}, options);
    if (result.exitStatus == couldNotMount) {
        GTEST_SKIP() << "mounting a small disk needs root";
    }
    expectOneSentence(result);
    EXPECT_NE(result.standardError.find("No space left on device"), std::string::npos);
}

class Interrupted : public RenderProgram, public ::testing::WithParamInterface<int> {
protected:
    /// Starts a render and returns when its output is there.
    void start(std::optional<test::RunningProgram>& program)
    {
        ProgramOptions options;
        options.folder = folder.path();
        waitForFiles(folder.path(), {"out.wav"}, [&] {
            program.emplace(std::vector<std::string>{TONVALE_RENDER, "song.wav", "--semitones", "1",
                                                     "-o", "out.wav"},
                            options);
        });
    }
};

INSTANTIATE_TEST_SUITE_P(RenderProgram, Interrupted, ::testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_P(Interrupted, RemovesItsUnfinishedOutputAndDiesOfTheSignal)
{
    makeEndlessSong("song.wav");
    std::optional<test::RunningProgram> program;
    start(program);
    // Terminals and timeouts often send the signal twice.
    program->sendSignal(GetParam());
    program->sendSignal(GetParam());
    const ProgramResult result = program->wait();
    EXPECT_EQ(result.signalNumber, GetParam());
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_FALSE(std::filesystem::exists(in("out.wav")));
    EXPECT_TRUE(std::filesystem::exists(in("song.wav")));
}

TEST_F(RenderProgram, TellsThatItsOutputWasDeletedMeanwhile)
{
    makeSong("song.wav", 44100 * 60);
    ProgramOptions options;
    options.folder = folder.path();
    std::optional<test::RunningProgram> program;
    waitForFiles(folder.path(), {"out.wav"}, [&] {
        program.emplace(std::vector<std::string>{TONVALE_RENDER, "song.wav", "--semitones", "1",
                                                 "-o", "out.wav"},
                        options);
    });
    std::filesystem::remove(in("out.wav"));
    const ProgramResult result = program->wait();
    expectOneSentence(result);
    EXPECT_NE(result.standardError.find("No such file or directory"), std::string::npos);
}

TEST_F(RenderProgram, TellsThatItCouldNotSpeak)
{
    ProgramOptions options;
    options.prepare = [] { ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO); };
    EXPECT_EQ(render({"--help"}, options).exitStatus, 1);
}

}  // namespace
}  // namespace tonvale
