// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QQuickWindow>

namespace tonvale {

/// Sends a window the events of a keyboard that a test case cannot make.
class KeySimulator : public QObject {
    Q_OBJECT

public:
    /// Presses a key, keeps it until it has repeated that often, and lets it go.
    Q_INVOKABLE void hold(QQuickWindow* window, int key, int repeats);
};

}  // namespace tonvale
