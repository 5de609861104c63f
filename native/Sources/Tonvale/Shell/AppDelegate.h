// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

namespace tonvale {

/// Answers what the application does at turns of its life.
/// @thread CONTROL
class AppDelegate : public QObject {
public:
    /// Always: closing the last window quits the application.
    [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed() const noexcept;
};

}  // namespace tonvale
