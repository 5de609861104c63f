// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/ColorScheme.h"

#include "Platform/Desktop/SchemePalette.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QEvent>
#include <QGuiApplication>

namespace tonvale {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

bool isPaletteDark()
{
    return isDark(QGuiApplication::palette());
}

/// A signal wraps the value once, the answer to a question twice.
QVariant unwrapped(QVariant value)
{
    while (value.canConvert<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    return value;
}

}  // namespace

ColorScheme::ColorScheme(QObject* parent) : QObject(parent), isDark_(isPaletteDark())
{
    qGuiApp->installEventFilter(this);
    askPortal();
}

bool ColorScheme::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ApplicationPaletteChange) {
        update();
    }
    return QObject::eventFilter(watched, event);
}

void ColorScheme::askPortal()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    // Until the first message is sent, the library does not know its own type, and refuses the
    // slot.
    qDBusRegisterMetaType<QDBusVariant>();
    bus.connect(service, path, interface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    QDBusMessage question =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Read"));
    question << appearance << colorScheme;
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher* answered) {
                takeAnswer(answered->reply());
                answered->deleteLater();
            });
}

void ColorScheme::takeAnswer(const QDBusMessage& answer)
{
    if (answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty()) {
        setPreference(answer.arguments().constFirst());
    }
}

void ColorScheme::settingChanged(const QString& group, const QString& key,
                                 const QDBusVariant& value)
{
    if (group == appearance && key == colorScheme) {
        setPreference(value.variant());
    }
}

void ColorScheme::setPreference(const QVariant& value)
{
    enum Preference : uint { none = 0, dark = 1, light = 2 };  // the portal's numbers
    const uint preference = unwrapped(value).toUInt();
    prefersDark_ = preference == dark    ? std::optional(true)
                   : preference == light ? std::optional(false)
                                         : std::nullopt;
    update();
}

void ColorScheme::update()
{
    const bool isDark = prefersDark_.value_or(isPaletteDark());
    if (isDark != isDark_) {
        isDark_ = isDark;
        emit isDarkChanged();
    }
}

}  // namespace tonvale
