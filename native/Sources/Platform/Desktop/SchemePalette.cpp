// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/SchemePalette.h"

#include <QColor>
#include <QGuiApplication>

namespace tonvale {

namespace {

QPalette makePalette(const QColor& button, const QColor& window, const QColor& base,
                     const QColor& text, const QColor& accent)
{
    QPalette palette(button, window);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, accent);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, QColor(128, 128, 128));
    }
    QColor placeholder = text;
    placeholder.setAlphaF(0.6F);
    palette.setColor(QPalette::PlaceholderText, placeholder);
    return palette;
}

}  // namespace

QPalette paletteFor(bool dark)
{
    const QPalette palette = QGuiApplication::palette();
    if (isDark(palette) == dark) {
        return palette;
    }
    return dark ? makePalette(QColor(0x3a, 0x3a, 0x3e), QColor(0x2a, 0x2a, 0x2d),
                              QColor(0x1e, 0x1e, 0x20), QColor(0xf2, 0xf2, 0xf4),
                              QColor(0x2f, 0x6f, 0xd6))
                : makePalette(QColor(0xf2, 0xf2, 0xf4), QColor(0xec, 0xec, 0xec), Qt::white,
                              QColor(0x1d, 0x1d, 0x1f), QColor(0x00, 0x62, 0xcc));
}

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness()
           < palette.color(QPalette::WindowText).lightness();
}

}  // namespace tonvale
