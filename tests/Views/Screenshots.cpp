// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/ArtworkProvider.h"
#include "Tonvale/Views/Views.h"
#include "Views/DragSimulator.h"

#include <QDir>
#include <QGuiApplication>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>

#include <cstdio>

namespace {

using tonvale::DragSimulator;

constexpr QPointF dropPoint(200, 250);
constexpr QPoint sliderPoint(567, 476);
constexpr QPoint pickerPoint(500, 181);

/// What the mouse and the keys do in some of the states. @return what undoes it
void enterState(QQuickView& view, DragSimulator& drag, const QString& name)
{
    if (name == "hovering") {
        drag.enterWithUrls(&view, dropPoint, {QUrl("file:///song.mp3")});
    } else if (name == "dragging") {
        QTest::mousePress(&view, Qt::LeftButton, {}, sliderPoint);
        QTest::mouseMove(&view, sliderPoint + QPoint(30, 0));
    } else if (name == "list") {
        QTest::mouseClick(&view, Qt::LeftButton, {}, pickerPoint);
    } else if (name == "focus") {
        QTest::keyClick(&view, Qt::Key_Tab);
        QTest::keyClick(&view, Qt::Key_Tab);
    }
}

void leaveState(QQuickView& view, DragSimulator& drag, const QString& name)
{
    if (name == "hovering") {
        drag.leave(&view);
    } else if (name == "dragging") {
        QTest::mouseRelease(&view, Qt::LeftButton, {}, sliderPoint + QPoint(30, 0));
    } else if (name == "list") {
        QTest::keyClick(&view, Qt::Key_Escape);
    } else if (name == "focus") {
        view.activeFocusItem()->setFocus(false);
    }
    QTest::mouseMove(&view, QPoint(1, 1));
}

bool shoot(QQuickView& view, const QString& file)
{
    QTest::qWait(150);  // the list opens, the tool tip does not
    return view.grabWindow().save(file);
}

}  // namespace

/// view-screenshots FOLDER PREFIX: every state of the window, light and dark, small and large, as
/// PNG files.
int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    if (argc != 3) {
        std::fputs("Usage: view-screenshots FOLDER PREFIX\n", stderr);
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    QQuickView view;
    tonvale::addViews(*view.engine());
    view.engine()->addImageProvider(QStringLiteral("artwork"), new tonvale::ArtworkProvider);
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.setSource(QUrl::fromLocalFile(TONVALE_GALLERY));
    if (view.rootObject() == nullptr) {
        return 1;
    }
    DragSimulator drag;
    view.show();
    for (const QSize size : {QSize(840, 680), QSize(1600, 1200)}) {
        view.resize(size);
        for (const bool isDark : {false, true}) {
            view.rootObject()->setProperty("isDark", isDark);
            for (const QVariant& entry : view.rootObject()->property("names").toList()) {
                const QString name = entry.toString();
                QMetaObject::invokeMethod(view.rootObject(), "show", Q_ARG(QString, name));
                enterState(view, drag, name);
                const QString file = QStringLiteral("%1-%2-%3-%4.png")
                                         .arg(QString::fromLocal8Bit(argv[2]))
                                         .arg(size.width())
                                         .arg(isDark ? "dark" : "light", name);
                if (!shoot(view, folder.filePath(file))) {
                    return 1;
                }
                leaveState(view, drag, name);
            }
        }
    }
    return 0;
}
