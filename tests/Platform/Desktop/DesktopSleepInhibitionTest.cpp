// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/DesktopSleepInhibition.h"

#include "FakeSleepService.h"
#include "Support/MainLoop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

#include <memory>

namespace tonvale {
namespace {

using test::FakeSleepService;
using test::spinUntil;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string managerAsked =
    "Inhibit Inhibit.Inhibit \"Tonvale\" \"A song is played or saved\"";
const std::string portalAsked =
    "desktop Inhibit.Inhibit \"\" \"4\" {reason: A song is played or saved}";

class DesktopSleep : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!QDBusConnection::sessionBus().isConnected()) {
            GTEST_SKIP() << "there is no dbus-daemon to run a message bus with";
        }
        QCoreApplication::setApplicationName(QStringLiteral("Tonvale"));
        sleep = std::make_unique<DesktopSleepInhibition>(QDBusConnection::sessionBus());
    }
    void TearDown() override { QCoreApplication::setApplicationName({}); }

    [[nodiscard]] static bool becomes(const FakeSleepService& service, int held)
    {
        return spinUntil([&] { return service.held() == held; });
    }
    /// Waits until everything that was sent is delivered, and answered, and the answer's
    /// consequence too: messages overtake neither each other nor a ping.
    static void settle()
    {
        for (int turn = 0; turn < 3; ++turn) {
            ping(QStringLiteral("org.freedesktop.PowerManagement"));
            ping(QStringLiteral("org.freedesktop.portal.Desktop"));
            test::runQueuedCalls();
        }
    }
    static void ping(const QString& service)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(
            service, QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.Peer"),
            QStringLiteral("Ping"));
        message.setAutoStartService(false);
        const QDBusPendingCallWatcher answer(QDBusConnection::sessionBus().asyncCall(message));
        ASSERT_TRUE(spinUntil([&] { return answer.isFinished(); }));
    }

    std::unique_ptr<DesktopSleepInhibition> sleep;
};

TEST_F(DesktopSleep, IsKeptAwayByThePowerManager)
{
    const FakeSleepService manager(FakeSleepService::powerManager);
    const FakeSleepService portal(FakeSleepService::portal);
    sleep->setWanted(true);
    EXPECT_TRUE(becomes(manager, 1));
    sleep->setWanted(false);
    EXPECT_TRUE(becomes(manager, 0));
    EXPECT_THAT(manager.calls(), ElementsAre(managerAsked, "Inhibit Inhibit.UnInhibit \"1\""));
    EXPECT_THAT(portal.calls(), IsEmpty());
}

TEST_F(DesktopSleep, IsKeptAwayByThePortalWhereThereIsNoPowerManager)
{
    const FakeSleepService portal(FakeSleepService::portal);
    sleep->setWanted(true);
    EXPECT_TRUE(becomes(portal, 1));
    sleep->setWanted(false);
    EXPECT_TRUE(becomes(portal, 0));
    EXPECT_THAT(portal.calls(), ElementsAre(portalAsked, "r1 Request.Close"));
}

TEST_F(DesktopSleep, IsKeptAwayByThePortalWhereThePowerManagerRefuses)
{
    const FakeSleepService manager(FakeSleepService::powerManager, FakeSleepService::refuses);
    const FakeSleepService portal(FakeSleepService::portal);
    sleep->setWanted(true);
    EXPECT_TRUE(becomes(portal, 1));
    EXPECT_THAT(manager.calls(), ElementsAre(managerAsked));
}

TEST_F(DesktopSleep, IsNobodysConcernUntilSomethingIsWanted)
{
    const FakeSleepService manager(FakeSleepService::powerManager);
    sleep->setWanted(false);
    settle();
    EXPECT_THAT(manager.calls(), IsEmpty());
}

TEST_F(DesktopSleep, IsInhibitedOnceHoweverOftenThatIsSaid)
{
    const FakeSleepService manager(FakeSleepService::powerManager);
    sleep->setWanted(true);
    sleep->setWanted(true);
    ASSERT_TRUE(becomes(manager, 1));
    sleep->setWanted(true);
    settle();
    EXPECT_THAT(manager.calls(), ElementsAre(managerAsked));
}

TEST_F(DesktopSleep, ComesAgainWhenTheInhibitionIsDestroyed)
{
    const FakeSleepService manager(FakeSleepService::powerManager);
    sleep->setWanted(true);
    ASSERT_TRUE(becomes(manager, 1));
    sleep.reset();
    EXPECT_TRUE(becomes(manager, 0));
}

TEST_F(DesktopSleep, ComesAgainAlsoWhenTheInhibitionIsDestroyedBeforeTheAnswer)
{
    FakeSleepService manager(FakeSleepService::powerManager, FakeSleepService::hesitates);
    sleep->setWanted(true);
    ASSERT_TRUE(spinUntil([&] { return manager.calls().size() == 1; }));
    sleep.reset();
    manager.grantAtLast();
    EXPECT_EQ(manager.held(), 1);
    EXPECT_TRUE(becomes(manager, 0));
}

TEST_F(DesktopSleep, IsInhibitedAnewAtEachTime)
{
    const FakeSleepService manager(FakeSleepService::powerManager);
    for (int time = 0; time < 3; ++time) {
        sleep->setWanted(true);
        ASSERT_TRUE(becomes(manager, 1));
        sleep->setWanted(false);
        ASSERT_TRUE(becomes(manager, 0));
    }
    EXPECT_EQ(manager.mostHeld(), 1);
    EXPECT_EQ(manager.calls().back(), "Inhibit Inhibit.UnInhibit \"3\"");
}

TEST_F(DesktopSleep, StaysAsItIsWhereEverybodyRefuses)
{
    const FakeSleepService manager(FakeSleepService::powerManager, FakeSleepService::refuses);
    const FakeSleepService portal(FakeSleepService::portal, FakeSleepService::refuses);
    sleep->setWanted(true);
    ASSERT_TRUE(spinUntil([&] { return portal.calls().size() == 1; }));
    settle();
    sleep->setWanted(true);  // the same again, as at every tick of a song
    sleep->setWanted(false);
    settle();
    EXPECT_THAT(manager.calls(), ElementsAre(managerAsked));
    EXPECT_THAT(portal.calls(), ElementsAre(portalAsked));
    sleep->setWanted(true);  // perhaps they grant it now
    EXPECT_TRUE(spinUntil([&] { return portal.calls().size() == 2; }));
}

TEST_F(DesktopSleep, StaysAsItIsWithoutAnyService)
{
    sleep->setWanted(true);
    settle();
    sleep->setWanted(false);
    settle();
}

TEST(DesktopSleepWithoutABus, StaysAsItIs)
{
    DesktopSleepInhibition sleep{QDBusConnection(QStringLiteral("no such bus"))};
    sleep.setWanted(true);
    test::runQueuedCalls();
    sleep.setWanted(false);
}

TEST_F(DesktopSleep, IsNotWaitedForAndItsLateGrantIsGivenBack)
{
    FakeSleepService manager(FakeSleepService::powerManager, FakeSleepService::hesitates);
    sleep->setWanted(true);
    ASSERT_TRUE(spinUntil([&] { return manager.calls().size() == 1; }));
    sleep->setWanted(false);
    settle();
    EXPECT_THAT(manager.calls(), ElementsAre(managerAsked));
    manager.grantAtLast();
    EXPECT_EQ(manager.held(), 1);
    EXPECT_TRUE(becomes(manager, 0));
}

TEST_F(DesktopSleep, IsAskedForOnceWhileTheAnswerIsAwaited)
{
    FakeSleepService manager(FakeSleepService::powerManager, FakeSleepService::hesitates);
    sleep->setWanted(true);
    ASSERT_TRUE(spinUntil([&] { return manager.calls().size() == 1; }));
    sleep->setWanted(false);
    sleep->setWanted(true);
    settle();
    manager.grantAtLast();
    settle();
    EXPECT_THAT(manager.calls(), ElementsAre(managerAsked));
    EXPECT_EQ(manager.held(), 1);
    sleep->setWanted(false);
    EXPECT_TRUE(becomes(manager, 0));
}

TEST_F(DesktopSleep, IsInhibitedAnewWhenTheServiceHasBeenRestarted)
{
    const FakeSleepService portal(FakeSleepService::portal);
    auto manager = std::make_unique<FakeSleepService>(FakeSleepService::powerManager);
    sleep->setWanted(true);
    ASSERT_TRUE(becomes(*manager, 1));
    settle();
    manager = nullptr;
    settle();
    EXPECT_THAT(portal.calls(), IsEmpty()) << "somebody was asked before anybody came";
    manager = std::make_unique<FakeSleepService>(FakeSleepService::powerManager);
    EXPECT_TRUE(becomes(*manager, 1));
    sleep->setWanted(false);
    EXPECT_TRUE(becomes(*manager, 0));
    EXPECT_EQ(manager->mostHeld(), 1);
}

TEST_F(DesktopSleep, IsForgottenWithAServiceThatWentWhileItWasAsked)
{
    auto manager = std::make_unique<FakeSleepService>(FakeSleepService::powerManager,
                                                      FakeSleepService::hesitates);
    sleep->setWanted(true);
    ASSERT_TRUE(spinUntil([&] { return manager->calls().size() == 1; }));
    sleep->setWanted(false);
    manager = nullptr;
    settle();
    manager = std::make_unique<FakeSleepService>(FakeSleepService::powerManager);
    settle();
    EXPECT_THAT(manager->calls(), IsEmpty());
    sleep->setWanted(true);
    EXPECT_TRUE(becomes(*manager, 1));
}

TEST_F(DesktopSleep, IsInhibitedByTheSuccessorOfAServiceThatIsReplaced)
{
    const FakeSleepService old(FakeSleepService::powerManager);
    sleep->setWanted(true);
    ASSERT_TRUE(becomes(old, 1));
    settle();
    const FakeSleepService successor(FakeSleepService::powerManager);
    EXPECT_TRUE(becomes(successor, 1));
    EXPECT_TRUE(becomes(old, 0));
    sleep->setWanted(false);
    EXPECT_TRUE(becomes(successor, 0));
}

TEST_F(DesktopSleep, IsInhibitedByAServiceThatComesLater)
{
    sleep->setWanted(true);
    settle();
    const FakeSleepService portal(FakeSleepService::portal);
    EXPECT_TRUE(becomes(portal, 1));
    const FakeSleepService manager(FakeSleepService::powerManager);
    settle();
    EXPECT_THAT(manager.calls(), IsEmpty()) << "one is enough";
}

}  // namespace
}  // namespace tonvale
