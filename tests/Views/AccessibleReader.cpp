// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Views/AccessibleReader.h"

#include <QAccessible>
#include <QMetaEnum>

#include <functional>

namespace tonvale {

namespace {

QString roleName(QAccessible::Role role)
{
    return QString::fromLatin1(QMetaEnum::fromType<QAccessible::Role>().valueToKey(role));
}

QVariantMap described(QAccessibleInterface& interface)
{
    QVariantMap entry{{"role", roleName(interface.role())},
                      {"name", interface.text(QAccessible::Name)},
                      {"description", interface.text(QAccessible::Description)}};
    if (QAccessibleValueInterface* value = interface.valueInterface()) {
        entry["value"] = value->currentValue();
        entry["minimum"] = value->minimumValue();
        entry["maximum"] = value->maximumValue();
    }
    return entry;
}

/// Calls `visit` for everything visible until it returns true. @return whether it did
bool walk(QAccessibleInterface* interface, const std::function<bool(QAccessibleInterface&)>& visit)
{
    if (interface == nullptr || interface->state().invisible) {
        return false;
    }
    if (visit(*interface)) {
        return true;
    }
    for (int i = 0; i < interface->childCount(); ++i) {
        if (walk(interface->child(i), visit)) {
            return true;
        }
    }
    return false;
}

bool withThing(QQuickWindow* window, const QString& role, const QString& name,
               const std::function<void(QAccessibleInterface&)>& use)
{
    return walk(QAccessible::queryAccessibleInterface(window), [&](QAccessibleInterface& thing) {
        if (roleName(thing.role()) != role || thing.text(QAccessible::Name) != name) {
            return false;
        }
        use(thing);
        return true;
    });
}

}  // namespace

QVariantList AccessibleReader::entries(QQuickWindow* window) const
{
    QVariantList list;
    walk(QAccessible::queryAccessibleInterface(window), [&list](QAccessibleInterface& thing) {
        if (thing.role() != QAccessible::Client && thing.role() != QAccessible::Window) {
            list.append(described(thing));
        }
        return false;
    });
    return list;
}

bool AccessibleReader::act(QQuickWindow* window, const QString& role, const QString& name,
                           const QString& action) const
{
    bool hasAction = false;
    withThing(window, role, name, [&](QAccessibleInterface& thing) {
        QAccessibleActionInterface* actions = thing.actionInterface();
        hasAction = actions != nullptr && actions->actionNames().contains(action);
        if (hasAction) {
            actions->doAction(action);
        }
    });
    return hasAction;
}

bool AccessibleReader::setValue(QQuickWindow* window, const QString& role, const QString& name,
                                double value) const
{
    return withThing(window, role, name, [value](QAccessibleInterface& thing) {
        thing.valueInterface()->setCurrentValue(value);
    });
}

}  // namespace tonvale
