// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Views/Views.h"

#include <QQmlEngine>
#include <QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(Tonvale_ViewsPlugin)

namespace tonvale {

void addViews(QQmlEngine& engine)
{
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
}

}  // namespace tonvale
