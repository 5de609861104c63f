// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Views/Views.h"
#include "Views/AccessibleReader.h"
#include "Views/DragSimulator.h"
#include "Views/KeySimulator.h"
#include "Views/PlainIcon.h"

#include <QDir>
#include <QFileInfo>
#include <QQmlEngine>
#include <QtQuickTest>

#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

namespace {

/// Gives the tests what the application gives the views, and hands for what a test case has none.
class ViewTestSetup : public QObject {
    Q_OBJECT

public slots:
    void applicationAvailable()
    {
        // Somebody listens, as on a desktop with a screen reader; this platform has none.
        QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(true);
    }

    void qmlEngineAvailable(QQmlEngine* engine)
    {
        tonvale::addViews(*engine);
        engine->addImageProvider(QStringLiteral("artwork"), new tonvale::PlainIcon);
        qmlRegisterType<tonvale::AccessibleReader>("Tonvale.ViewTests", 1, 0, "AccessibleReader");
        qmlRegisterType<tonvale::DragSimulator>("Tonvale.ViewTests", 1, 0, "DragSimulator");
        qmlRegisterType<tonvale::KeySimulator>("Tonvale.ViewTests", 1, 0, "KeySimulator");
    }
};

/// Makes the folders of the reports that are asked for with "-o FILE,FORMAT".
void makeReportFolders(const QStringList& arguments)
{
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        if (arguments[i - 1] == QLatin1String("-o")) {
            QDir().mkpath(QFileInfo(arguments[i].section(QLatin1Char(','), 0, 0)).path());
        }
    }
}

}  // namespace

/// Runs tests/Views/tst_*.qml without a display.
int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    makeReportFolders(QStringList(argv, argv + argc));
    ViewTestSetup setup;
    return quick_test_main_with_setup(argc, argv, "view-tests", TONVALE_VIEW_TESTS, &setup);
}

#include "ViewTests.moc"
