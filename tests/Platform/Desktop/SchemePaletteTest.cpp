// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/SchemePalette.h"

#include <gtest/gtest.h>

#include <QGuiApplication>

#include <cstdlib>

namespace tonvale {
namespace {

/// A palette of our own, dark or light as the parameter says; the toolkit's is the other.
class SchemePalette : public ::testing::TestWithParam<bool> {
protected:
    SchemePalette()
    {
        QGuiApplication::setPalette(QPalette(GetParam() ? Qt::white : Qt::black));
        palette = paletteFor(GetParam());
    }
    ~SchemePalette() override { QGuiApplication::setPalette(original_); }

    QPalette palette;

private:
    QPalette original_ = QGuiApplication::palette();
};

INSTANTIATE_TEST_SUITE_P(DarkAndLight, SchemePalette, ::testing::Bool(),
                         [](const auto& wanted) { return wanted.param ? "Dark" : "Light"; });

TEST_P(SchemePalette, IsTheToolkitsWhereThatIsAsWantedAndElseAnother)
{
    const QPalette toolkits = QGuiApplication::palette();
    EXPECT_EQ(isDark(toolkits), !GetParam());
    EXPECT_EQ(paletteFor(!GetParam()), toolkits);
    EXPECT_EQ(isDark(palette), GetParam());
}

TEST_P(SchemePalette, ButtonsStandOutFromTheWindowAndListsToo)
{
    const QColor window = palette.color(QPalette::Window);
    EXPECT_NE(palette.color(QPalette::Button), window);
    EXPECT_NE(palette.color(QPalette::Base), window);
    EXPECT_EQ(palette.color(QPalette::AlternateBase), window);
    EXPECT_GT(palette.color(QPalette::Button).lightness(), window.lightness())
        << "in both schemes a button is the lighter one";
}

TEST_P(SchemePalette, EveryTextIsReadOnItsGround)
{
    const auto contrast = [this](QPalette::ColorRole text, QPalette::ColorRole ground) {
        return std::abs(palette.color(text).lightness() - palette.color(ground).lightness());
    };
    EXPECT_GT(contrast(QPalette::WindowText, QPalette::Window), 150);
    EXPECT_GT(contrast(QPalette::Text, QPalette::Base), 150);
    EXPECT_GT(contrast(QPalette::ButtonText, QPalette::Button), 150);
    EXPECT_GT(contrast(QPalette::HighlightedText, QPalette::Highlight), 80);
    EXPECT_EQ(palette.color(QPalette::Link), palette.color(QPalette::Highlight));
}

TEST_P(SchemePalette, WhatIsDisabledOrAHintIsFainter)
{
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        EXPECT_EQ(palette.color(QPalette::Disabled, role), QColor(128, 128, 128)) << role;
        EXPECT_NE(palette.color(QPalette::Active, role), QColor(128, 128, 128)) << role;
    }
    const QColor hint = palette.color(QPalette::PlaceholderText);
    EXPECT_NEAR(hint.alphaF(), 0.6, 0.01);
    EXPECT_EQ(hint.rgb(), palette.color(QPalette::Text).rgb());
}

}  // namespace
}  // namespace tonvale
