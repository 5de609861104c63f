// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

#include <QCoreApplication>

#if defined(__SANITIZE_THREAD__)
// Qt's library is not instrumented, so the checker sees its event queue's memory go from thread to
// thread without its locks. Only what that library itself allocates and frees is left out; our own
// side of every hand-over is still checked.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions()
{
    return "called_from_lib:libQt6Core.so\n";
}
#endif

int main(int argc, char** argv)
{
    qputenv("QT_NO_GLIB", "1");  // one library less that the checkers cannot look into
    const QCoreApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    return RUN_ALL_TESTS();
}
