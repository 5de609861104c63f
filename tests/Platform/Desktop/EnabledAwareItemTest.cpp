// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/EnabledAwareItem.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QAccessibleObject>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>

#include <memory>

namespace tonvale {
namespace {

class EnabledAware : public ::testing::Test {
protected:
    /// A control and a plain item inside a parent, in states that `parentState` makes.
    void create(const QByteArray& parentState)
    {
        QQmlComponent component(&engine_);
        component.setData("import QtQuick\nimport QtQuick.Controls.Basic\n"
                          "Item { "
                              + parentState
                              + "; Button { objectName: 'button'; text: 'Press' }"
                                "  Item { objectName: 'plain' }"
                                "  Item { objectName: 'area'; Accessible.role: Accessible.Pane } }",
                          QUrl());
        root_.reset(component.create());
        ASSERT_NE(root_, nullptr) << component.errorString().toStdString();
    }

    [[nodiscard]] QAccessibleInterface* accessible(const QString& name) const
    {
        return QAccessible::queryAccessibleInterface(root_->findChild<QQuickItem*>(name));
    }

    QQmlEngine engine_;
    std::unique_ptr<QObject> root_;
};

TEST_F(EnabledAware, SaysThatAControlIsDisabledByItsParent)
{
    create("enabled: false");
    const auto* button = accessible(QStringLiteral("button"));
    ASSERT_NE(button, nullptr);
    EXPECT_TRUE(button->state().disabled);
    EXPECT_FALSE(button->state().focusable);
    EXPECT_EQ(button->role(), QAccessible::Button);
    EXPECT_EQ(button->text(QAccessible::Name), QLatin1String("Press"));
}

TEST_F(EnabledAware, LeavesWhatIsEnabledAsItIs)
{
    create("enabled: true");
    const auto* button = accessible(QStringLiteral("button"));
    ASSERT_NE(button, nullptr);
    EXPECT_FALSE(button->state().disabled);
    EXPECT_TRUE(button->state().focusable);
}

TEST_F(EnabledAware, SpeaksForPlainItemsWithARoleToo)
{
    create("enabled: false");
    const auto* area = accessible(QStringLiteral("area"));
    ASSERT_NE(area, nullptr);
    EXPECT_TRUE(area->state().disabled);
    EXPECT_EQ(area->role(), QAccessible::Pane);
}

class OtherButton final : public QAccessibleObject {
public:
    using QAccessibleObject::QAccessibleObject;
    [[nodiscard]] QAccessibleInterface* parent() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override
    {
        return -1;
    }
    [[nodiscard]] QString text(QAccessible::Text /*text*/) const override { return {}; }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::Button; }
    [[nodiscard]] QAccessible::State state() const override { return {}; }
};

/// Speaks for buttons of every kind.
QAccessibleInterface* makeOtherInterface(const QString& className, QObject* object)
{
    return className == QLatin1String("QQuickAbstractButton") ? new OtherButton(object) : nullptr;
}

TEST_F(EnabledAware, LeavesClassesToTheirOwnFactories)
{
    QAccessible::installFactory(makeOtherInterface);
    create("enabled: false");
    const auto* button = accessible(QStringLiteral("button"));
    QAccessible::removeFactory(makeOtherInterface);
    EXPECT_NE(dynamic_cast<const OtherButton*>(button), nullptr);
}

TEST_F(EnabledAware, LeavesOutWhatIsNoAccessible)
{
    create("enabled: false");
    EXPECT_EQ(accessible(QStringLiteral("plain")), nullptr);
}

}  // namespace
}  // namespace tonvale
