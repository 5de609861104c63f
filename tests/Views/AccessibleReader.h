// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QQuickWindow>
#include <QVariantList>

class QAccessibleInterface;

namespace tonvale {

/// Reads a window as a screen reader does.
class AccessibleReader : public QObject {
    Q_OBJECT

public:
    /// Everything visible with a role of its own, in order, each as { role, name, description,
    /// value, minimum, maximum }; the last three only where there is a value.
    Q_INVOKABLE [[nodiscard]] QVariantList entries(QQuickWindow* window) const;

    /// Asks for an action, such as "Press" or "Increase", of the thing with this role and name.
    /// @return whether it is there and has the action
    Q_INVOKABLE bool act(QQuickWindow* window, const QString& role, const QString& name,
                         const QString& action) const;

    /// Sets the value of the thing with this role and name. @return whether it is there
    Q_INVOKABLE bool setValue(QQuickWindow* window, const QString& role, const QString& name,
                              double value) const;
};

}  // namespace tonvale
