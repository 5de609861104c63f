// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/HelperProcess.h"

#include "Platform/Foundation/FileDescriptor.h"
#include "Support/NamedPipe.h"
#include "Support/ProcessState.h"
#include "Support/ShellHelper.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <future>

namespace tonvale {
namespace {

using test::eventually;
using test::isInSystemCall;
using test::NamedPipe;
using test::shell;
using namespace std::chrono_literals;

constexpr std::size_t pipeCapacity = 65536;  // of a Linux pipe nobody has resized

/// A helper that runs while the test goes on. Declare it before the pipes that the helper waits on,
/// so that they go first and the helper comes to its end when a test fails.
class BackgroundRun {
public:
    void start(const HelperProcess& helper)
    {
        outcome_ = std::async(std::launch::async, [this, helper] {
            thread_ = ::gettid();
            return helper.run();
        });
    }
    [[nodiscard]] pid_t thread() const { return thread_; }
    [[nodiscard]] bool hasEnded() const
    {
        return outcome_.wait_for(0s) == std::future_status::ready;
    }
    [[nodiscard]] bool endsSoon() const
    {
        return outcome_.wait_for(30s) == std::future_status::ready;
    }
    [[nodiscard]] HelperOutcome outcome() { return outcome_.get(); }

private:
    std::atomic<pid_t> thread_ = 0;
    std::future<HelperOutcome> outcome_;
};

class HelperProcessWaiting : public ::testing::Test {
protected:
    test::TemporaryFolder folder;
    BackgroundRun run;
    BackgroundRun otherRun;
    NamedPipe report{folder.path() / "report"};
    NamedPipe release{folder.path() / "release"};
    NamedPipe otherRelease{folder.path() / "other-release"};
};

/// The bytes that wait in the pipe that a process has as its standard output.
int bytesWaitingAt(pid_t process)
{
    const std::string path = "/proc/" + std::to_string(process) + "/fd/1";
    const FileDescriptor pipe(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    int count = -1;
    return ::ioctl(pipe.get(), FIONREAD, &count) == 0 ? count : -1;
}

TEST_F(HelperProcessWaiting, LetsAHelperWaitThatPrintsMoreThanAPipeHolds)
{
    run.start(shell(R"(echo $$ > "$1"; exec head -c 65537 /dev/zero)", {report.path()}));
    const pid_t helper = std::stoi(report.receive());
    ASSERT_TRUE(eventually([&] {
        return isInSystemCall(helper, SYS_write) && isInSystemCall(run.thread(), SYS_wait4)
               && bytesWaitingAt(helper) == static_cast<int>(pipeCapacity);
    })) << "somebody reads while the helper runs";
    EXPECT_FALSE(run.hasEnded());
    ASSERT_EQ(::kill(helper, SIGKILL), 0);  // nobody but a test does this
    const HelperOutcome outcome = run.outcome();
    EXPECT_EQ(outcome.terminationStatus, SIGKILL);
    EXPECT_EQ(outcome.standardOutput.size(), pipeCapacity);
}

std::atomic<int> caughtSignals = 0;

TEST_F(HelperProcessWaiting, WaitsAsLongAsTheHelperRunsWhateverSignalsCome)
{
    struct sigaction action = {};
    struct sigaction previous = {};
    action.sa_handler = [](int) { ++caughtSignals; };  // no SA_RESTART: system calls break off
    ASSERT_EQ(::sigaction(SIGUSR1, &action, &previous), 0);
    run.start(
        shell(R"(echo started > "$1"; read line < "$2"; exit 7)", {report.path(), release.path()}));
    EXPECT_EQ(report.receive(), "started");
    const auto isWaiting = [&] { return isInSystemCall(run.thread(), SYS_wait4); };
    for (int round = 1; round <= 3; ++round) {
        ASSERT_TRUE(eventually(isWaiting));
        ASSERT_EQ(::tgkill(::getpid(), run.thread(), SIGUSR1), 0);
        ASSERT_TRUE(eventually([&] { return caughtSignals == round; }));
    }
    ASSERT_TRUE(eventually(isWaiting));
    EXPECT_FALSE(run.hasEnded());
    release.send("go");
    EXPECT_EQ(run.outcome().terminationStatus, 7);
    ASSERT_EQ(::sigaction(SIGUSR1, &previous, nullptr), 0);
}

TEST_F(HelperProcessWaiting, WaitsForTheHelperFirstAndThenReadsToTheEnd)
{
    run.start(shell(R"({ read line < "$2"; echo late; echo late >&2; } &
                       echo early; echo $$ > "$1"; exit 5)",
                    {report.path(), release.path()}));
    const pid_t helper = std::stoi(report.receive());
    ASSERT_TRUE(eventually([&] { return test::isReaped(helper); }));
    ASSERT_TRUE(eventually([&] { return isInSystemCall(run.thread(), SYS_read); }));
    EXPECT_FALSE(run.hasEnded());  // the helper's own child has the pipes still open
    release.send("go");
    const HelperOutcome outcome = run.outcome();
    EXPECT_EQ(outcome.terminationStatus, 5);
    EXPECT_EQ(outcome.standardOutput, "early\nlate\n");
    EXPECT_EQ(outcome.standardError, "late\n");
}

TEST_F(HelperProcessWaiting, RunsTwoHelpersThatDoNotWaitForEachOther)
{
    const std::string script = R"(echo started > "$1"; read line < "$2"; echo "$line")";
    run.start(shell(script, {report.path(), release.path()}));
    EXPECT_EQ(report.receive(), "started");
    otherRun.start(shell(script, {report.path(), otherRelease.path()}));
    EXPECT_EQ(report.receive(), "started");
    release.send("first");
    ASSERT_TRUE(run.endsSoon()) << "the second helper keeps the first one's pipes open";
    EXPECT_FALSE(otherRun.hasEnded());
    EXPECT_EQ(run.outcome().standardOutput, "first\n");
    otherRelease.send("second");
    EXPECT_EQ(otherRun.outcome().standardOutput, "second\n");
}

TEST_F(HelperProcessWaiting, HoldsTwoReadEndsThatNoOtherProgramInherits)
{
    const auto before = test::openDescriptors();
    run.start(shell(R"(echo started > "$1"; read line < "$2")", {report.path(), release.path()}));
    EXPECT_EQ(report.receive(), "started");
    ASSERT_TRUE(eventually([&] { return isInSystemCall(run.thread(), SYS_wait4); }));
    auto added = test::openDescriptors();
    std::erase_if(added, [&](const auto& item) { return before.contains(item.first); });
    EXPECT_EQ(added.size(), 2U);
    for (const auto& [descriptor, file] : added) {
        EXPECT_TRUE(file.starts_with("pipe:")) << file;
        EXPECT_EQ(::fcntl(descriptor, F_GETFD), FD_CLOEXEC);
        EXPECT_EQ(::fcntl(descriptor, F_GETFL) & O_ACCMODE, O_RDONLY);
    }
    release.send("go");
    EXPECT_EQ(run.outcome().terminationStatus, 0);
}

}  // namespace
}  // namespace tonvale
