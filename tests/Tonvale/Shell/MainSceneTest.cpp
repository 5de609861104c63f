// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/MainScene.h"

#include "Platform/Desktop/FilePanels.h"
#include "Support/MainLoop.h"
#include "Tonvale/Model/AudioTransposeModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <string>
#include <vector>

namespace tonvale {
namespace {

using ::testing::ElementsAre;

/// A panel that is counted and answers nothing.
class CountedPanel : public OpenPanel {
public:
    explicit CountedPanel(int& count) : count_(count) {}
    std::optional<std::filesystem::path> runModal() override
    {
        ++count_;
        return std::nullopt;
    }

private:
    int& count_;
};

/// Everything that assistive technology finds below `top`, itself included.
void visit(QAccessibleInterface* top, const std::function<void(QAccessibleInterface&)>& look)
{
    if (top == nullptr) {
        return;
    }
    look(*top);
    for (int index = 0; index < top->childCount(); ++index) {
        visit(top->child(index), look);
    }
}

std::vector<std::string> namesOf(QWindow& window, QAccessible::Role role)
{
    std::vector<std::string> names;
    visit(QAccessible::queryAccessibleInterface(&window), [&](QAccessibleInterface& found) {
        if (found.role() == role && !found.state().invisible) {
            names.push_back(found.text(QAccessible::Name).toStdString());
        }
    });
    return names;
}

QAccessibleInterface* find(QWindow& window, QAccessible::Role role, const QString& name)
{
    QAccessibleInterface* result = nullptr;
    visit(QAccessible::queryAccessibleInterface(&window), [&](QAccessibleInterface& found) {
        if (found.role() == role && found.text(QAccessible::Name) == name) {
            result = &found;
        }
    });
    return result;
}

class MainWindow : public ::testing::Test {
protected:
    void SetUp() override
    {
        OpenPanel::replaceFactory([this] { return std::make_unique<CountedPanel>(openPanels_); });
        window().requestActivate();
        ASSERT_TRUE(
            test::spinUntil([this] { return QGuiApplication::focusWindow() == &window(); }));
    }
    void TearDown() override { OpenPanel::replaceFactory(nullptr); }

    [[nodiscard]] QQuickWindow& window() const { return scene_.window(); }

    /// The window with this title.
    [[nodiscard]] static QWindow* windowTitled(const QString& title)
    {
        for (QWindow* window : QGuiApplication::topLevelWindows()) {
            if (window->title() == title) {
                return window;
            }
        }
        return nullptr;
    }

    static void press(QWindow& window, Qt::Key key, Qt::KeyboardModifiers modifiers)
    {
        QTest::keyClick(&window, key, modifiers);
    }

    /// Opens a menu by its letter and waits for one of its commands.
    void openMenu(Qt::Key letter, const QString& command) const
    {
        press(window(), letter, Qt::AltModifier);
        ASSERT_TRUE(test::spinUntil(
            [&] { return find(window(), QAccessible::MenuItem, command) != nullptr; }));
    }

    int openPanels_ = 0;
    AudioTransposeModel model_;
    MainScene scene_{&model_};
};

TEST_F(MainWindow, IsTitledAfterTheApplicationAndHasRoomForTheContent)
{
    EXPECT_EQ(window().title(), QLatin1String("Tonvale"));
    EXPECT_EQ(window().minimumSize(), QSize(840, 680 + 26));
    EXPECT_EQ(window().size(), QSize(900, 740 + 26));
    EXPECT_TRUE(window().isVisible());
}

TEST_F(MainWindow, HasTwoMenus)
{
    EXPECT_EQ(namesOf(window(), QAccessible::MenuBar).size(), 1U);
    EXPECT_THAT(namesOf(window(), QAccessible::MenuItem), ElementsAre("Tonvale", "File"));
}

TEST_F(MainWindow, UnderlinesTheLettersThatOpenTheMenus)
{
    std::vector<std::string> titles;
    for (const QQuickItem* const item : window().findChildren<QQuickItem*>()) {
        if (item->inherits("QQuickMenuBarItem")) {
            const auto* const label = item->property("contentItem").value<QQuickItem*>();
            titles.push_back(label->property("text").toString().toStdString());
        }
    }
    EXPECT_THAT(titles, ElementsAre("<u>T</u>onvale", "<u>F</u>ile"));
}

TEST_F(MainWindow, ListsTheCommandsInTheirOrder)
{
    openMenu(Qt::Key_F, QStringLiteral("Stop Preview"));
    EXPECT_THAT(namesOf(window(), QAccessible::MenuItem),
                ElementsAre("Tonvale", "File", "Choose Audio File...", "Stop Preview"));
    press(window(), Qt::Key_Escape, Qt::NoModifier);
}

TEST_F(MainWindow, ChoosesAFileByItsShortcut)
{
    press(window(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_TRUE(test::spinUntil([this] { return openPanels_ == 1; }));
}

TEST_F(MainWindow, StopsThePreviewAlthoughNothingPlays)
{
    QSignalSpy changes(&model_, &AudioTransposeModel::objectDidChange);
    press(window(), Qt::Key_Period, Qt::ControlModifier);
    EXPECT_GT(changes.count(), 0);
    EXPECT_FALSE(model_.isPreviewing());
}

TEST_F(MainWindow, TakesItsShortcutsWithTheControlKeyOnly)
{
    press(window(), Qt::Key_O, Qt::NoModifier);
    press(window(), Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    press(window(), Qt::Key_O, Qt::AltModifier);
    test::runQueuedCalls();
    EXPECT_EQ(openPanels_, 0);
}

TEST_F(MainWindow, ShowsOneAboutPanelThatClosesWithEscape)
{
    scene_.showAboutPanel();
    QWindow* about = windowTitled(QStringLiteral("About Tonvale"));
    ASSERT_NE(about, nullptr);
    EXPECT_TRUE(about->isVisible());
    EXPECT_EQ(about->transientParent(), &window());
    EXPECT_THAT(namesOf(*about, QAccessible::StaticText),
                ElementsAre("Tonvale", "1.0", "Author - The Tonvale Authors"));

    const auto windows = QGuiApplication::topLevelWindows().size();
    scene_.showAboutPanel();
    EXPECT_EQ(QGuiApplication::topLevelWindows().size(), windows);

    ASSERT_TRUE(test::spinUntil([&] { return QGuiApplication::focusWindow() == about; }));
    press(*about, Qt::Key_O, Qt::ControlModifier);
    EXPECT_TRUE(test::spinUntil([this] { return openPanels_ == 1; }));
    press(*about, Qt::Key_Escape, Qt::NoModifier);
    EXPECT_FALSE(about->isVisible());
}

TEST_F(MainWindow, ShowsTheAboutPanelInItsMiddle)
{
    window().setPosition(70, 50);
    scene_.showAboutPanel();
    const QWindow* about = windowTitled(QStringLiteral("About Tonvale"));
    ASSERT_NE(about, nullptr);
    const QPoint apart = about->geometry().center() - window().geometry().center();
    EXPECT_LE(apart.manhattanLength(), 2);
}

TEST_F(MainWindow, GivesTheAboutPanelACloseButtonAndNoOther)
{
    scene_.showAboutPanel();
    const QWindow* about = windowTitled(QStringLiteral("About Tonvale"));
    ASSERT_NE(about, nullptr);
    EXPECT_TRUE(about->flags().testFlag(Qt::WindowCloseButtonHint));
    EXPECT_FALSE(about->flags().testFlag(Qt::WindowMinimizeButtonHint));
    EXPECT_FALSE(about->flags().testFlag(Qt::WindowMaximizeButtonHint));
    EXPECT_TRUE(about->flags().testFlag(Qt::CustomizeWindowHint)) << "the hints are not looked at";
}

TEST_F(MainWindow, TellsScreenReadersWhatIsDisabled)
{
    const auto* play = find(window(), QAccessible::Button, QStringLiteral("Play preview"));
    const auto* clear = find(window(), QAccessible::Button, QStringLiteral("Clear"));
    ASSERT_NE(play, nullptr);
    ASSERT_NE(clear, nullptr);
    EXPECT_TRUE(play->state().disabled);
    EXPECT_FALSE(clear->state().disabled);
}

TEST(MainSceneDeathTest, LeavesNoPanelThatWouldStandBeforeAWindowThatIsGone)
{
    {
        AudioTransposeModel model;
        const MainScene scene(&model);
    }
    EXPECT_EXIT(static_cast<void>(OpenPanel::create()), ::testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(static_cast<void>(SavePanel::create()), ::testing::KilledBySignal(SIGABRT), "");
}

TEST(MainSceneDeathTest, WithoutAModelStopsTheProgram)
{
    EXPECT_EXIT(MainScene(nullptr), ::testing::KilledBySignal(SIGABRT), "");
}

}  // namespace
}  // namespace tonvale
