// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/AppArtwork.h"

#include "Platform/Foundation/Bundle.h"
#include "Tonvale/Shell/DefaultIcon.h"
#include "Tonvale/Shell/ImageFile.h"
#include "Tonvale/TonvaleApp.h"

#include <QGuiApplication>

namespace tonvale::AppArtwork {

namespace {

constexpr const char* fileName = "Tonvale.icns";

QIcon resourceIcon()
{
    const auto resources = Bundle::main().resourceURL();
    return resources ? imageFile(*resources / fileName) : QIcon();
}

QIcon sourceTreeIcon()
{
    // Without the file name, the module's folder and "Sources".
    const auto root = TonvaleApp::sourceFile().parent_path().parent_path().parent_path();
    return imageFile(root / "Resources" / fileName);
}

QIcon currentIcon()
{
    const QIcon icon = QGuiApplication::windowIcon();
    return icon.isNull() ? defaultIcon() : icon;
}

}  // namespace

QIcon icon()
{
    for (const auto source : {resourceIcon, sourceTreeIcon}) {
        if (const QIcon icon = source(); !icon.isNull()) {
            return icon;
        }
    }
    return currentIcon();
}

}  // namespace tonvale::AppArtwork
