// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDBusVariant>
#include <QObject>
#include <QVariant>

#include <optional>

class QDBusMessage;

namespace tonvale {

/// Whether the desktop wants dark or light windows, followed while the program runs.
///
/// Asks the desktop's settings portal, without waiting for it; until it answers, and where it has
/// no preference or does not exist, the lightness of the toolkit's palette tells.
/// @thread CONTROL
class ColorScheme : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isDark READ isDark NOTIFY isDarkChanged)

public:
    explicit ColorScheme(QObject* parent = nullptr);

    [[nodiscard]] bool isDark() const noexcept { return isDark_; }

signals:
    void isDarkChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void askPortal();
    void takeAnswer(const QDBusMessage& answer);
    void setPreference(const QVariant& value);
    void update();

    std::optional<bool> prefersDark_;  ///< what the portal says; none: no preference known
    bool isDark_ = false;
};

}  // namespace tonvale
