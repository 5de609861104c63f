// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>

#include <string>
#include <vector>

namespace tonvale::test {

/// What keeps a desktop awake, on the session bus: its power manager or its portal. A second one
/// takes the first one's place.
class FakeSleepService : public QDBusVirtualObject {
public:
    enum Kind { powerManager, portal };
    enum Manner { grants, refuses, hesitates };

    explicit FakeSleepService(Kind kind, Manner manner = grants);
    ~FakeSleepService() override;

    /// Grants what it was asked for while it hesitated.
    void grantAtLast();

    /// All it was asked for, as object, interface and member with the arguments, of each name the
    /// end: "Inhibit Inhibit.UnInhibit "1"".
    [[nodiscard]] const std::vector<std::string>& calls() const noexcept { return calls_; }
    /// How many inhibitions there are, and were at most.
    [[nodiscard]] int held() const noexcept { return held_; }
    [[nodiscard]] int mostHeld() const noexcept { return mostHeld_; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

private:
    void grant(const QDBusMessage& question);

    Kind kind_;
    Manner manner_;
    QDBusConnection bus_;
    std::vector<std::string> calls_;
    std::vector<QDBusMessage> unanswered_;
    int held_ = 0;
    int mostHeld_ = 0;
    int number_ = 0;  ///< of the last inhibition
};

}  // namespace tonvale::test
