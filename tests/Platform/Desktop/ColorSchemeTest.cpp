// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/ColorScheme.h"

#include "FakePortal.h"
#include "Platform/Desktop/SchemePalette.h"
#include "Support/MainLoop.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDBusConnection>
#include <QSignalSpy>

namespace tonvale {
namespace {

using test::FakePortal;

/// Gives the toolkit a palette that is dark or light, and its own back at the end.
class ToolkitPalette {
public:
    explicit ToolkitPalette(bool isDark) { QApplication::setPalette(paletteFor(isDark)); }
    ~ToolkitPalette() { QApplication::setPalette(original_); }
    ToolkitPalette(const ToolkitPalette&) = delete;
    ToolkitPalette& operator=(const ToolkitPalette&) = delete;

private:
    QPalette original_ = QApplication::palette();
};

class ColorSchemeOnABus : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!QDBusConnection::sessionBus().isConnected()) {
            GTEST_SKIP() << "there is no dbus-daemon to run a message bus with";
        }
    }
};

TEST(ColorScheme, IsThatOfThePaletteWhereThereIsNoPortal)
{
    {
        const ToolkitPalette palette(true);
        EXPECT_TRUE(ColorScheme().isDark());
    }
    const ToolkitPalette palette(false);
    EXPECT_FALSE(ColorScheme().isDark());
}

TEST(ColorScheme, FollowsThePaletteWhereThereIsNoPortal)
{
    const ToolkitPalette light(false);
    const ColorScheme scheme;
    QSignalSpy changes(&scheme, &ColorScheme::isDarkChanged);
    {
        const ToolkitPalette dark(true);
        EXPECT_TRUE(test::spinUntil([&] { return scheme.isDark(); }));
    }
    EXPECT_TRUE(test::spinUntil([&] { return !scheme.isDark(); }));
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(ColorSchemeOnABus, IsWhatThePortalPrefersWhateverThePalette)
{
    const ToolkitPalette palette(true);
    const FakePortal portal(FakePortal::light);
    const ColorScheme scheme;
    EXPECT_TRUE(test::spinUntil([&] { return !scheme.isDark(); }));
}

TEST_F(ColorSchemeOnABus, IsThatOfThePaletteUntilThePortalAnswers)
{
    const ToolkitPalette palette(false);
    const FakePortal portal(FakePortal::dark);
    const ColorScheme scheme;
    EXPECT_FALSE(scheme.isDark()) << "it waited for the portal";
    EXPECT_FALSE(portal.wasAsked());
    EXPECT_TRUE(test::spinUntil([&] { return portal.wasAsked() && scheme.isDark(); }));
}

TEST_F(ColorSchemeOnABus, FollowsThePortal)
{
    const ToolkitPalette palette(false);
    FakePortal portal(FakePortal::light);
    const ColorScheme scheme;
    QSignalSpy changes(&scheme, &ColorScheme::isDarkChanged);
    EXPECT_TRUE(test::spinUntil([&] { return portal.wasAsked(); }));
    portal.change(FakePortal::dark);
    EXPECT_TRUE(test::spinUntil([&] { return scheme.isDark(); }));
    portal.change(FakePortal::light);
    EXPECT_TRUE(test::spinUntil([&] { return !scheme.isDark(); }));
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(ColorSchemeOnABus, IsThatOfThePaletteWhereThePortalHasNoPreference)
{
    const ToolkitPalette palette(true);
    FakePortal portal(FakePortal::light);
    const ColorScheme scheme;
    EXPECT_TRUE(test::spinUntil([&] { return !scheme.isDark(); }));
    portal.change(FakePortal::none);
    EXPECT_TRUE(test::spinUntil([&] { return scheme.isDark(); }));
}

TEST_F(ColorSchemeOnABus, DoesNotCareForOtherSettings)
{
    const ToolkitPalette palette(false);
    FakePortal portal(FakePortal::dark);
    const ColorScheme scheme;
    ASSERT_TRUE(test::spinUntil([&] { return scheme.isDark(); }));
    QSignalSpy changes(&scheme, &ColorScheme::isDarkChanged);
    portal.changeOtherSettings(FakePortal::light);
    const ColorScheme later;  // is answered behind all that the portal has told of
    EXPECT_TRUE(test::spinUntil([&] { return later.isDark(); }));
    EXPECT_EQ(changes.count(), 0);
}

}  // namespace
}  // namespace tonvale
