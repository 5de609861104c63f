// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QIcon>
#include <QString>

#include <functional>

namespace tonvale {

/// What the About panel shows. A line of credits has its own look.
struct AboutPanelOptions {
    QIcon applicationIcon;
    QString applicationName;
    QString applicationVersion;
    QString credits;
};

/// The one About panel of the application.
/// @thread CONTROL
namespace StandardAboutPanel {

/// Shows the panel, or raises it where it is shown already.
void orderFront(const AboutPanelOptions& options);

/// The application sets what shows the panel at its start, tests set theirs.
void replacePresenter(std::function<void(const AboutPanelOptions&)> presenter);

}  // namespace StandardAboutPanel

}  // namespace tonvale
