// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QPainterPath>
#include <QString>

namespace tonvale {

/// A symbol drawn on a grid of 24 by 24, y downwards: areas to fill and lines to draw with round
/// ends. Where areas and lines of a symbol overlap, they are one shape.
struct Symbol {
    static constexpr qreal grid = 24;

    QPainterPath areas;
    QPainterPath lines;
    QPainterPath fineLines;  ///< for figures, which would fill up with full lines
    qreal lineWidth = 1.8;
    qreal fineLineWidth = 1.5;
};

/// "square.and.arrow.down", "music.note", "waveform", "play.fill", "stop.fill", "gobackward.15",
/// "goforward.15", and for the controls "checkmark" and "chevron.up.chevron.down"; any other name
/// is an empty symbol.
/// @thread ANY
[[nodiscard]] Symbol symbolNamed(const QString& name);

}  // namespace tonvale
