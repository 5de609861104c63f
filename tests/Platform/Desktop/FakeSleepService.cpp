// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "FakeSleepService.h"

#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusObjectPath>
#include <QDBusReply>

#include <algorithm>

namespace tonvale::test {

namespace {

/// A connection of its own for each, as they have in processes of their own.
QDBusConnection newConnection()
{
    static int count = 0;
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus,
                                         QStringLiteral("tonvale-test-sleep-%1").arg(++count));
}

QString serviceName(FakeSleepService::Kind kind)
{
    return kind == FakeSleepService::powerManager
               ? QStringLiteral("org.freedesktop.PowerManagement")
               : QStringLiteral("org.freedesktop.portal.Desktop");
}

std::string described(const QVariant& argument)
{
    if (argument.canConvert<QDBusArgument>()) {
        const auto options = qdbus_cast<QVariantMap>(argument);
        return "{" + options.firstKey().toStdString() + ": "
               + options.first().toString().toStdString() + "}";
    }
    return "\"" + argument.toString().toStdString() + "\"";
}

}  // namespace

FakeSleepService::FakeSleepService(Kind kind, Manner manner)
    : kind_(kind)
    , manner_(manner)
    , bus_(newConnection())
{
    EXPECT_TRUE(bus_.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath));
    EXPECT_TRUE(bus_.interface()
                    ->registerService(serviceName(kind),
                                      QDBusConnectionInterface::ReplaceExistingService,
                                      QDBusConnectionInterface::AllowReplacement)
                    .isValid());
}

FakeSleepService::~FakeSleepService()
{
    QDBusConnection::disconnectFromBus(bus_.name());
}

bool FakeSleepService::handleMessage(const QDBusMessage& message,
                                     const QDBusConnection& /*connection*/)
{
    std::string call = message.path().section(u'/', -1).toStdString() + " "
                       + message.interface().section(u'.', -1).toStdString() + "."
                       + message.member().toStdString();
    for (const QVariant& argument : message.arguments()) {
        call += " " + described(argument);
    }
    calls_.push_back(call);
    if (message.member() != QLatin1String("Inhibit")) {
        --held_;
        bus_.send(message.createReply());
    } else if (manner_ == grants) {
        grant(message);
    } else if (manner_ == refuses) {
        bus_.send(message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("No.")));
    } else {
        unanswered_.push_back(message);
    }
    return true;
}

void FakeSleepService::grantAtLast()
{
    for (const QDBusMessage& question : unanswered_) {
        grant(question);
    }
    unanswered_.clear();
}

void FakeSleepService::grant(const QDBusMessage& question)
{
    mostHeld_ = std::max(mostHeld_, ++held_);
    ++number_;
    const QVariant answer =
        kind_ == powerManager
            ? QVariant(static_cast<uint>(number_))
            : QVariant::fromValue(QDBusObjectPath(QStringLiteral("/request/r%1").arg(number_)));
    bus_.send(question.createReply(answer));
}

}  // namespace tonvale::test
