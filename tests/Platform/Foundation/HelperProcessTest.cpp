// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/HelperProcess.h"

#include "Platform/Foundation/FileDescriptor.h"
#include "Platform/Foundation/PlatformError.h"
#include "Support/ProcessState.h"
#include "Support/ShellHelper.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>

namespace tonvale {
namespace {

using test::shell;

constexpr std::size_t pipeCapacity = 65536;  // of a Linux pipe nobody has resized

std::string launchErrorOf(const std::filesystem::path& executable)
{
    try {
        static_cast<void>(HelperProcess{executable, {}, {}}.run());
    } catch (const PlatformError& error) {
        return error.errorDescription();
    }
    return "no error";
}

class HelperProcessTest : public ::testing::Test {
protected:
    test::TemporaryFolder folder;
};

TEST_F(HelperProcessTest, KeepsTheTwoStreamsApart)
{
    const HelperOutcome outcome = shell("echo answer; echo trouble >&2").run();
    EXPECT_EQ(outcome.terminationStatus, 0);
    EXPECT_EQ(outcome.standardOutput, "answer\n");
    EXPECT_EQ(outcome.standardError, "trouble\n");
}

TEST_F(HelperProcessTest, ReadsEveryByteAsItIs)
{
    const HelperOutcome outcome = shell(R"(printf 'a\000\377\r\n b'; printf '\n' >&2)").run();
    EXPECT_EQ(outcome.standardOutput, std::string("a\0\xff\r\n b", 7));
    EXPECT_EQ(outcome.standardError, "\n");
}

TEST_F(HelperProcessTest, TellsTheExitStatus)
{
    for (const int status : {0, 1, 2, 127, 255}) {
        EXPECT_EQ(shell("exit " + std::to_string(status)).run().terminationStatus, status);
    }
}

TEST_F(HelperProcessTest, TellsTheSignalThatKilledTheHelper)
{
    for (const int signalNumber : {SIGKILL, SIGTERM, SIGABRT}) {
        const std::string script = "ulimit -c 0; kill -" + std::to_string(signalNumber) + " $$";
        EXPECT_EQ(shell(script).run().terminationStatus, signalNumber);
    }
}

TEST_F(HelperProcessTest, HandsOverEachArgumentUnchanged)
{
    const std::vector<std::string> arguments{
        "two words", "",           "line\nbreak",
        "--help",    "-",          "Für Élise \xe2\x80\x93 \xe6\x97\xa5\xe6\x9c\xac",
        "\xff\xfe",  "$HOME `id`", "'\"\\*?#%20"};
    const HelperOutcome outcome = shell(R"(printf '%s|' "$@")", arguments).run();
    std::string expected;
    for (const std::string& argument : arguments) {
        expected += argument + "|";
    }
    EXPECT_EQ(outcome.standardOutput, expected);
}

TEST_F(HelperProcessTest, CallsTheProgramByItsPath)
{
    const HelperProcess helper{"/bin/cat", {"/proc/self/cmdline"}, {}};
    EXPECT_EQ(helper.run().standardOutput, std::string("/bin/cat\0/proc/self/cmdline\0", 28));
}

TEST_F(HelperProcessTest, ReplacesTheWholeEnvironment)
{
    ASSERT_EQ(::setenv("TONVALE_TEST_MARK", "ours", 1), 0);
    HelperProcess helper{"/bin/cat", {"/proc/self/environ"}, {"B=two words", "A="}};
    EXPECT_EQ(helper.run().standardOutput, std::string("B=two words\0A=\0", 15));
    helper.environment.clear();
    EXPECT_EQ(helper.run().standardOutput, "");
    ::unsetenv("TONVALE_TEST_MARK");
}

TEST_F(HelperProcessTest, LeavesInputAndDirectoryAlone)
{
    const HelperOutcome outcome = shell("readlink /proc/$$/fd/0 /proc/$$/cwd").run();
    EXPECT_EQ(outcome.standardOutput, std::filesystem::read_symlink("/proc/self/fd/0").string()
                                          + "\n" + std::filesystem::current_path().string() + "\n");
}

TEST_F(HelperProcessTest, ClosesOurOtherDescriptors)
{
    const FileDescriptor file(::open("/dev/null", O_RDONLY));  // both without close-on-exec
    const FileDescriptor copy(::fcntl(file.get(), F_DUPFD, 70));
    ASSERT_GE(copy.get(), 70);
    const HelperOutcome outcome =
        shell(R"(for fd in /proc/$$/fd/*; do echo "${fd##*/}"; done)").run();
    EXPECT_EQ(outcome.standardOutput, "0\n1\n2\n3\n");  // 3 is the shell's own: this very folder
}

TEST_F(HelperProcessTest, SaysWhyAProgramCannotBeStarted)
{
    const std::filesystem::path text = folder.path() / "text";
    std::ofstream(text) << "no program";
    EXPECT_EQ(launchErrorOf(folder.path() / "missing"), "No such file or directory");
    EXPECT_EQ(launchErrorOf(text), "Permission denied");
    EXPECT_EQ(launchErrorOf(folder.path()), "Permission denied");
    std::filesystem::permissions(text, std::filesystem::perms::owner_all);
    EXPECT_EQ(launchErrorOf(text), "Exec format error");
}

TEST_F(HelperProcessTest, LooksAtNoSearchPath)
{
    EXPECT_EQ(launchErrorOf("sh"), "No such file or directory");
}

TEST_F(HelperProcessTest, LeavesNothingBehind)
{
    const auto before = test::openDescriptors();
    EXPECT_EQ(shell("exit 0").run().terminationStatus, 0);
    EXPECT_EQ(launchErrorOf(folder.path() / "missing"), "No such file or directory");
    EXPECT_EQ(test::openDescriptors(), before);
    errno = 0;
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(HelperProcessTest, FailsWhereNoPipeCanBeMade)
{
    // Once before: the sanitizer needs descriptors of its own at the first error of a type.
    EXPECT_EQ(launchErrorOf("/missing"), "No such file or directory");
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit none{0, limit.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const std::string error = launchErrorOf("/bin/true");
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_EQ(error, "Too many open files");
}

TEST_F(HelperProcessTest, FailsWhereTheSystemKeepsNoExitStatus)
{
    const auto previous = std::signal(SIGCHLD, SIG_IGN);
    const std::string error = launchErrorOf("/bin/true");
    std::signal(SIGCHLD, previous);
    EXPECT_EQ(error, "No child processes");
}

TEST_F(HelperProcessTest, WorksInAProgramWithoutStandardStreams)
{
    const auto runWithoutStreams = [](std::initializer_list<int> closed) {
        for (const int descriptor : closed) {
            ::close(descriptor);
        }
        const HelperOutcome outcome = shell("echo answer; echo trouble >&2; exit 3").run();
        const bool isRight = outcome.terminationStatus == 3 && outcome.standardOutput == "answer\n"
                             && outcome.standardError == "trouble\n";
        std::_Exit(isRight ? 0 : 1);
    };
    EXPECT_EXIT(runWithoutStreams({0, 1, 2}), ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(runWithoutStreams({1, 2}), ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(runWithoutStreams({0, 2}), ::testing::ExitedWithCode(0), "");
}

TEST_F(HelperProcessTest, TakesAllThatTwoPipesHold)
{
    const std::string fill = "head -c " + std::to_string(pipeCapacity) + " /dev/zero";
    const HelperOutcome outcome = shell(fill + "; " + fill + " >&2").run();
    EXPECT_EQ(outcome.terminationStatus, 0);
    EXPECT_EQ(outcome.standardOutput, std::string(pipeCapacity, '\0'));
    EXPECT_EQ(outcome.standardError, std::string(pipeCapacity, '\0'));
}

}  // namespace
}  // namespace tonvale
