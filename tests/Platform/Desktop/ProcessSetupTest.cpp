// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/ProcessSetup.h"

#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <QtGlobal>

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace tonvale {
namespace {

/// A variable of the environment that has another value for a while.
class Variable {
public:
    Variable(const char* name, const QByteArray& value) : name_(name), before_(qgetenv(name))
    {
        qputenv(name, value);
    }
    ~Variable()
    {
        if (before_.isNull()) {
            qunsetenv(name_);
        } else {
            qputenv(name_, before_);
        }
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
    QByteArray before_;  // null where it was not set
};

QStringList messages;

void keepMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& message)
{
    messages.append(message);
}

/// The tests after these have the toolkit's messages again: a warning is a failure there.
class ProcessSetup : public ::testing::Test {
protected:
    ProcessSetup() : handler_(qInstallMessageHandler(keepMessage)) { messages.clear(); }
    ~ProcessSetup() override { qInstallMessageHandler(handler_); }

private:
    QtMessageHandler handler_;
};

TEST_F(ProcessSetup, LetsTheToolkitPrintNothing)
{
    prepareProcess();
    ::testing::internal::CaptureStderr();
    qWarning("a complaint");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(messages.isEmpty());
}

TEST_F(ProcessSetup, LetsTheToolkitPrintWhereThatIsAskedFor)
{
    const Variable logging("QT_FORCE_STDERR_LOGGING", "1");
    prepareProcess();
    qWarning("a complaint");
    EXPECT_EQ(messages, QStringList{QStringLiteral("a complaint")});
}

TEST_F(ProcessSetup, LeavesNoPlaceForSettingsOfTheToolkit)
{
    const test::TemporaryFolder home;
    const Variable homeVariable("HOME", home.path().c_str());
    const Variable configuration("XDG_CONFIG_HOME", home.path().c_str());
    prepareProcess();
    {
        // As the toolkit's file dialog does when it closes.
        QSettings settings(QSettings::UserScope, QStringLiteral("QtProject"));
        EXPECT_TRUE(settings.allKeys().isEmpty());
        settings.setValue(QStringLiteral("FileDialog/lastVisited"), QStringLiteral("file:///tmp"));
        settings.sync();
    }
    EXPECT_TRUE(QSettings(QSettings::UserScope, QStringLiteral("QtProject")).allKeys().isEmpty());
    EXPECT_TRUE(std::filesystem::is_empty(home.path()));
}

// The sanitizers bring their own allocator.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(ProcessSetup, HasEveryLargeBlockGivenBackWhenItIsFreed)
{
    prepareProcess();
    // From this one the C library would learn to keep what is smaller.
    void* volatile larger = std::malloc(16 << 20);
    std::free(larger);
    const std::size_t blocks = ::mallinfo2().hblks;
    void* volatile large = std::malloc(12 << 20);  // more than lies free
    EXPECT_EQ(::mallinfo2().hblks, blocks + 1);    // mapped for itself
    std::free(large);
    EXPECT_EQ(::mallinfo2().hblks, blocks);
}

/// How many heaps the C library keeps.
std::size_t heapCount()
{
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* const stream = ::open_memstream(&text, &size);
    ::malloc_info(0, stream);
    std::fclose(stream);
    const std::string report(text, size);
    std::free(text);
    std::size_t count = 0;
    for (std::size_t at = 0; (at = report.find("<heap ", at)) != std::string::npos; ++at) {
        ++count;
    }
    return count;
}

TEST_F(ProcessSetup, HasThreadsShareTwoHeaps)
{
    const std::size_t before = heapCount();
    prepareProcess();
    constexpr int threadCount = 8;
    std::latch allAllocate(threadCount);
    std::vector<std::jthread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&allAllocate] {
            const std::vector<char> block(5000);
            allAllocate.arrive_and_wait();  // one that ended would leave its heap to the next
        });
    }
    threads.clear();
    EXPECT_EQ(heapCount(), std::max<std::size_t>(before, 2));
}
#endif

}  // namespace
}  // namespace tonvale
