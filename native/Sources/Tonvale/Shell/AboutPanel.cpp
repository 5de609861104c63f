// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/AboutPanel.h"

#include "Platform/Desktop/StandardAboutPanel.h"
#include "Tonvale/Shell/AppArtwork.h"

namespace tonvale::AboutPanel {

namespace {

constexpr QLatin1String author("The Tonvale Authors");

}  // namespace

void show()
{
    AboutPanelOptions options;
    options.applicationIcon = AppArtwork::icon();
    options.applicationName = QStringLiteral("Tonvale");
    options.applicationVersion = QStringLiteral("1.0");
    options.credits = QStringLiteral("Author - ") + author;
    StandardAboutPanel::orderFront(options);
}

}  // namespace tonvale::AboutPanel
