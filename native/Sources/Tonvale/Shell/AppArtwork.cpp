// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/AppArtwork.h"

#include "Tonvale/Shell/DefaultIcon.h"
#include "Tonvale/Shell/ImageFile.h"
#include "Tonvale/TonvaleApp.h"

#include <QGuiApplication>

namespace tonvale::AppArtwork {

namespace {

constexpr const char* fileName = "Tonvale.icns";

QIcon resourceIcon(const Bundle& bundle)
{
    const auto resources = bundle.resourceURL();
    return resources ? imageFile(*resources / fileName) : QIcon();
}

QIcon sourceTreeIcon(const std::filesystem::path& sourceFile)
{
    // Without the file name, the module's folder and "Sources".
    const auto root = sourceFile.parent_path().parent_path().parent_path();
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
    return detail::icon(Bundle::main(), TonvaleApp::sourceFile());
}

QIcon detail::icon(const Bundle& bundle, const std::filesystem::path& sourceFile)
{
    if (const QIcon found = resourceIcon(bundle); !found.isNull()) {
        return found;
    }
    const QIcon found = sourceTreeIcon(sourceFile);
    return found.isNull() ? currentIcon() : found;
}

}  // namespace tonvale::AppArtwork
