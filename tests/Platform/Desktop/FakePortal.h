// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>
#include <QString>

namespace tonvale::test {

/// The desktop's settings portal on the session bus, with one setting: the colour scheme.
class FakePortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    enum Preference : uint { none = 0, dark = 1, light = 2 };

    explicit FakePortal(Preference preference);
    ~FakePortal() override;

    /// Changes the setting and tells all who listen.
    void change(Preference preference);
    /// Tells of changes of other settings: one of the same group, one of the same key.
    /// @param preference  their value, for who took them for the colour scheme
    void changeOtherSettings(Preference preference);
    /// Whether somebody has read the setting.
    [[nodiscard]] bool wasAsked() const noexcept { return wasAsked_; }

public slots:
    Q_SCRIPTABLE QDBusVariant Read(const QString& group, const QString& key);

signals:
    Q_SCRIPTABLE void SettingChanged(const QString& group, const QString& key,
                                     const QDBusVariant& value);

private:
    QDBusConnection bus_;
    Preference preference_;
    bool wasAsked_ = false;
};

}  // namespace tonvale::test
