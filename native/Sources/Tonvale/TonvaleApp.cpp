// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/TonvaleApp.h"

#include "Platform/Desktop/EnabledAwareItem.h"
#include "Platform/Desktop/LeaveProcess.h"
#include "Platform/Desktop/ProcessSetup.h"
#include "Tonvale/Shell/DefaultIcon.h"
#include "Tonvale/Shell/MainScene.h"

#include <QApplication>

namespace tonvale {

namespace {

/// What the toolkit and the desktop know us by. There is no organisation, for there are no
/// settings.
void introduce(QApplication& application)
{
    application.setApplicationName(QStringLiteral("Tonvale"));
    application.setDesktopFileName(QStringLiteral(TONVALE_ID));
    application.setWindowIcon(defaultIcon());
}

int runApplication()
{
    TonvaleApp app;
    const std::unique_ptr<MainScene> scene = app.body();
    return QApplication::exec();
}

}  // namespace

void TonvaleApp::main(int& argumentCount, char** arguments)
{
    prepareProcess();
    QApplication application(argumentCount, arguments);
    introduce(application);
    installEnabledAwareAccessibility();
    leaveProcess(runApplication());
}

std::filesystem::path TonvaleApp::sourceFile()
{
    return TONVALE_APP_SOURCE;
}

TonvaleApp::TonvaleApp()
{
    QApplication::setQuitOnLastWindowClosed(
        appDelegate_.applicationShouldTerminateAfterLastWindowClosed());
}

std::unique_ptr<MainScene> TonvaleApp::body()
{
    return std::make_unique<MainScene>(&model_);
}

}  // namespace tonvale
