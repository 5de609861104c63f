// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/ProcessSetup.h"

#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QSettings>

#include <malloc.h>

#include <cstdlib>
#include <filesystem>

namespace tonvale {
namespace {

TEST(ProcessSetup, LeavesNoPlaceForSettingsOfTheToolkit)
{
    const test::TemporaryFolder home;
    qputenv("HOME", home.path().c_str());
    qputenv("XDG_CONFIG_HOME", home.path().c_str());
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
TEST(ProcessSetup, HasEveryLargeBlockGivenBackWhenItIsFreed)
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
#endif

}  // namespace
}  // namespace tonvale
