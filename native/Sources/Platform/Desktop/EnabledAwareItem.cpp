// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/EnabledAwareItem.h"

#include <QAccessible>
#include <QQuickItem>
#include <QQuickWindow>

#include <private/qaccessiblequickitem_p.h>
#include <private/qquickitem_p.h>

namespace tonvale {

namespace {

class EnabledAwareItem : public QAccessibleQuickItem {
public:
    using QAccessibleQuickItem::QAccessibleQuickItem;

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleQuickItem::state();
        const auto* item = qobject_cast<QQuickItem*>(object());
        if (item != nullptr && !item->isEnabled()) {
            state.disabled = true;
            state.focusable = false;
        }
        return state;
    }

    /// Qt calls each title of a menu bar a menu bar of its own.
    [[nodiscard]] QAccessible::Role role() const override
    {
        return object()->inherits("QQuickMenuBarItem") ? QAccessible::MenuItem
                                                       : QAccessibleQuickItem::role();
    }
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object)
{
    if (className != QLatin1String("QQuickItem")) {
        return nullptr;
    }
    auto* item = qobject_cast<QQuickItem*>(object);
    const bool isAccessible = item != nullptr && QQuickItemPrivate::get(item)->isAccessible;
    return isAccessible ? new EnabledAwareItem(item) : nullptr;
}

}  // namespace

void installEnabledAwareAccessibility()
{
    // The latest factory is asked first. Qt Quick installs its own with its first window.
    {
        const QQuickWindow first;
    }
    QAccessible::installFactory(makeInterface);
}

}  // namespace tonvale
