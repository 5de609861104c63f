// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/DesktopSleepInhibition.h"

#include <QCoreApplication>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QPointer>
#include <QVariantMap>

#include <array>
#include <limits>
#include <memory>

namespace tonvale {

namespace {

/// Whom to ask, in this order. The portals of desktops with a power manager refuse to keep it
/// awake.
const std::array services{QStringLiteral("org.freedesktop.PowerManagement"),
                          QStringLiteral("org.freedesktop.portal.Desktop")};
constexpr std::size_t powerManager = 0;

/// So the bus counts for ever: whoever answers late has to be answered, too.
constexpr int noTimeLimit = std::numeric_limits<int>::max();

/// Shown where the desktop tells what keeps it awake.
QString reason()
{
    return QStringLiteral("A song is played or saved");
}

QDBusMessage powerManagerQuestion()
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        services[powerManager], QStringLiteral("/org/freedesktop/PowerManagement/Inhibit"),
        QStringLiteral("org.freedesktop.PowerManagement.Inhibit"), QStringLiteral("Inhibit"));
    question << QCoreApplication::applicationName() << reason();
    return question;
}

QDBusMessage portalQuestion()
{
    constexpr uint suspend = 4;  // the portal's number; the screen may go dark
    const QString noWindow;
    QDBusMessage question = QDBusMessage::createMethodCall(
        services.back(), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Inhibit"), QStringLiteral("Inhibit"));
    question << noWindow << suspend << QVariantMap{{QStringLiteral("reason"), reason()}};
    return question;
}

/// What ends the inhibition that an answer grants, said to who has granted it and not to a
/// successor; none when it grants nothing.
std::optional<QDBusMessage> releaseOf(const QDBusMessage& answer)
{
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) {
        return std::nullopt;
    }
    const QVariant granted = answer.arguments().constFirst();
    if (granted.userType() == QMetaType::UInt) {
        QDBusMessage release = QDBusMessage::createMethodCall(
            answer.service(), QStringLiteral("/org/freedesktop/PowerManagement/Inhibit"),
            QStringLiteral("org.freedesktop.PowerManagement.Inhibit"), QStringLiteral("UnInhibit"));
        return release << granted;
    }
    if (granted.canConvert<QDBusObjectPath>()) {
        return QDBusMessage::createMethodCall(
            answer.service(), granted.value<QDBusObjectPath>().path(),
            QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Close"));
    }
    return std::nullopt;
}

}  // namespace

DesktopSleepInhibition::DesktopSleepInhibition(const QDBusConnection& bus) : bus_(bus)
{
    if (!bus_.isConnected()) {
        return;
    }
    owners_.setConnection(bus_);
    owners_.setWatchedServices(QStringList(services.begin(), services.end()));
    connect(&owners_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& /*service*/, const QString& oldOwner, const QString& newOwner) {
                followOwner(oldOwner, newOwner);
            });
}

DesktopSleepInhibition::~DesktopSleepInhibition()
{
    giveBack();
}

void DesktopSleepInhibition::setWanted(bool isWanted)
{
    if (isWanted == isWanted_) {
        return;
    }
    isWanted_ = isWanted;
    if (!isWanted) {
        giveBack();
    } else {
        askUnlessAsked();
    }
}

void DesktopSleepInhibition::askUnlessAsked()
{
    if (!isAsking_ && !release_) {
        ask(powerManager);
    }
}

/// An answer always comes: where the service goes, the bus answers in its place.
void DesktopSleepInhibition::ask(std::size_t service)
{
    if (!bus_.isConnected()) {
        return;
    }
    isAsking_ = true;
    const auto question = service == powerManager ? powerManagerQuestion() : portalQuestion();
    // It outlives us: what is granted after our time has to be given back, too.
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question, noTimeLimit));
    connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
            [self = QPointer(this), bus = bus_, service](QDBusPendingCallWatcher* answered) {
                if (self) {
                    self->takeAnswer(service, answered->reply());
                } else if (const auto release = releaseOf(answered->reply())) {
                    bus.send(*release);
                }
                answered->deleteLater();
            });
}

void DesktopSleepInhibition::takeAnswer(std::size_t service, const QDBusMessage& answer)
{
    isAsking_ = false;
    release_ = releaseOf(answer);
    if (!isWanted_) {
        giveBack();
    } else if (!release_ && service + 1 < services.size()) {
        ask(service + 1);
    }
}

/// While the question is open there is nothing to give back yet; its answer will be.
void DesktopSleepInhibition::giveBack()
{
    if (release_) {
        bus_.send(*release_);
        release_.reset();
    }
}

/// Whoever no longer owns the name has forgotten the inhibition, or is of no use as its keeper; who
/// owns it now may know none yet.
void DesktopSleepInhibition::followOwner(const QString& oldOwner, const QString& newOwner)
{
    if (release_ && release_->service() == oldOwner) {
        giveBack();
    }
    if (isWanted_ && !newOwner.isEmpty()) {
        askUnlessAsked();
    }
}

void useDesktopSleepInhibition()
{
    SleepInhibition::replaceFactory(
        [] { return std::make_unique<DesktopSleepInhibition>(QDBusConnection::sessionBus()); });
}

}  // namespace tonvale
