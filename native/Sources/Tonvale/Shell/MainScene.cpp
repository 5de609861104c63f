// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/MainScene.h"

#include "Platform/Desktop/DesktopSleepInhibition.h"
#include "Platform/Desktop/FileDialogs.h"
#include "Platform/Desktop/FilePanels.h"
#include "Platform/Desktop/StandardAboutPanel.h"
#include "Platform/Foundation/Precondition.h"
#include "Tonvale/Model/AudioTransposeModel.h"
#include "Tonvale/Shell/AboutPanel.h"
#include "Tonvale/Shell/ArtworkProvider.h"
#include "Tonvale/Shell/Wakefulness.h"
#include "Tonvale/Views/Views.h"

#include <QQuickWindow>

/// Made by the build; naming it keeps the linker from leaving the types of this module out.
void qml_register_types_Tonvale_Shell();

namespace tonvale {

MainScene::MainScene(AudioTransposeModel* model)
{
    precondition(model != nullptr);
    [[maybe_unused]] const volatile auto types = &qml_register_types_Tonvale_Shell;
    connect(&scheme_, &ColorScheme::isDarkChanged, this, &MainScene::isDarkChanged);
    engine_.addImageProvider(QStringLiteral("artwork"), new ArtworkProvider);
    addViews(engine_);
    engine_.setInitialProperties({{QStringLiteral("model"), QVariant::fromValue<QObject*>(model)},
                                  {QStringLiteral("scene"), QVariant::fromValue<QObject*>(this)}});
    engine_.load(QUrl(QStringLiteral("qrc:/qt/qml/Tonvale/Shell/Main.qml")));
    precondition(!engine_.rootObjects().isEmpty());
    window_ = qobject_cast<QQuickWindow*>(engine_.rootObjects().constFirst());
    precondition(window_ != nullptr);
    useFileDialogs(*window_, scheme_);
    StandardAboutPanel::replacePresenter(
        [this](const AboutPanelOptions& options) { presentAbout(options); });
    useDesktopSleepInhibition();
    wakefulness_ = std::make_unique<Wakefulness>(*model);
}

/// What stood on the window goes with it.
MainScene::~MainScene()
{
    OpenPanel::replaceFactory(nullptr);
    SavePanel::replaceFactory(nullptr);
    StandardAboutPanel::replacePresenter(nullptr);
}

void MainScene::showAboutPanel()
{
    AboutPanel::show();
}

void MainScene::presentAbout(const AboutPanelOptions& options)
{
    QMetaObject::invokeMethod(
        window_, "presentAbout", Q_ARG(QVariant, QVariant::fromValue(options.applicationIcon)),
        Q_ARG(QString, options.applicationName), Q_ARG(QString, options.applicationVersion),
        Q_ARG(QString, options.credits));
}

}  // namespace tonvale
