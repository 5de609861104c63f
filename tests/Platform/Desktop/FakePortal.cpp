// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "FakePortal.h"

#include <gtest/gtest.h>

namespace tonvale::test {

namespace {

const QString busName = QStringLiteral("tonvale-test-portal");
const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

}  // namespace

FakePortal::FakePortal(Preference preference)
    : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, busName))
    , preference_(preference)
{
    EXPECT_TRUE(bus_.registerObject(path, this,
                                    QDBusConnection::ExportScriptableSlots
                                        | QDBusConnection::ExportScriptableSignals));
    EXPECT_TRUE(bus_.registerService(service));
}

FakePortal::~FakePortal()
{
    bus_.unregisterService(service);
    QDBusConnection::disconnectFromBus(busName);
}

QDBusVariant FakePortal::Read(const QString& group, const QString& key)
{
    EXPECT_EQ(group, appearance);
    EXPECT_EQ(key, colorScheme);
    wasAsked_ = true;
    // Read, unlike the change's signal, wraps the value twice.
    return QDBusVariant(QVariant::fromValue(QDBusVariant(static_cast<uint>(preference_))));
}

void FakePortal::change(Preference preference)
{
    preference_ = preference;
    emit SettingChanged(appearance, colorScheme, QDBusVariant(static_cast<uint>(preference)));
}

void FakePortal::changeOtherSettings(Preference preference)
{
    const QDBusVariant value(static_cast<uint>(preference));
    emit SettingChanged(appearance, QStringLiteral("contrast"), value);
    emit SettingChanged(QStringLiteral("org.gnome.desktop.interface"), colorScheme, value);
}

}  // namespace tonvale::test
