// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/EnabledAwareItem.h"
#include "Platform/Desktop/ProcessSetup.h"
#include "Support/SessionBus.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

namespace {

/// Whatever Qt complains of fails the test that is running, but for what its windowless platform
/// says of itself.
void failOnWarnings(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
{
    const bool isExpected = type == QtDebugMsg || type == QtInfoMsg
                            || message.contains(QLatin1String("does not support"));
    if (!isExpected) {
        ADD_FAILURE() << message.toStdString();
    }
}

}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    const tonvale::test::SessionBus bus;
    tonvale::prepareProcess();
    const QApplication application(argc, argv);
    qInstallMessageHandler(failOnWarnings);
    tonvale::installEnabledAwareAccessibility();
    // As if a screen reader were there; only the platform can say so.
    QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(true);
    ::testing::InitGoogleTest(&argc, argv);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    return RUN_ALL_TESTS();
}
