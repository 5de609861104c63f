// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Desktop/SleepInhibition.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>

#include <cstddef>
#include <optional>

namespace tonvale {

/// Asks the desktop not to sleep: its power manager, or where it has none on the bus, as in GNOME
/// and in every sandbox, its portal.
///
/// There is never more than one question or one inhibition. Nothing is waited for: an answer that
/// comes when sleep may come again is given back, and a service that never answers is asked once.
/// When the process ends the bus tells the service, which forgets what it was asked for.
/// @thread CONTROL
class DesktopSleepInhibition final : public QObject, public SleepInhibition {
public:
    /// @param bus  the session's; without a connection nothing ever happens
    explicit DesktopSleepInhibition(const QDBusConnection& bus);
    ~DesktopSleepInhibition() override;

    void setWanted(bool isWanted) override;

private:
    void askUnlessAsked();
    void ask(std::size_t service);
    void takeAnswer(std::size_t service, const QDBusMessage& answer);
    void giveBack();
    void followOwner(const QString& oldOwner, const QString& newOwner);

    QDBusConnection bus_;
    QDBusServiceWatcher owners_;
    bool isWanted_ = false;
    bool isAsking_ = false;
    std::optional<QDBusMessage> release_;  ///< what ends the inhibition, while there is one
};

/// Makes SleepInhibition the desktop's.
/// @thread CONTROL
void useDesktopSleepInhibition();

}  // namespace tonvale
