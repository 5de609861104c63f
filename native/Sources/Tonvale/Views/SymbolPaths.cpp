// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Views/SymbolPaths.h"

#include <QLineF>
#include <QPolygonF>
#include <QTransform>

#include <initializer_list>

namespace tonvale {

namespace {

void addLine(QPainterPath& path, std::initializer_list<QPointF> points)
{
    path.addPolygon(QPolygonF(QList<QPointF>(points)));
}

Symbol squareAndArrowDown()
{
    Symbol symbol;
    QPainterPath& path = symbol.lines;
    path.moveTo(8.6, 8.8);
    path.lineTo(7.2, 8.8);
    path.arcTo(4.8, 8.8, 4.8, 4.8, 90, 90);
    path.lineTo(4.8, 18.6);
    path.arcTo(4.8, 16.4, 4.8, 4.8, 180, 90);
    path.lineTo(16.8, 21.2);
    path.arcTo(14.4, 16.4, 4.8, 4.8, 270, 90);
    path.lineTo(19.2, 11.2);
    path.arcTo(14.4, 8.8, 4.8, 4.8, 0, 90);
    path.lineTo(15.4, 8.8);
    addLine(path, {{12, 2.4}, {12, 15.4}});
    addLine(path, {{8.5, 12}, {12, 15.5}, {15.5, 12}});
    return symbol;
}

Symbol musicNote()
{
    Symbol symbol;
    QPainterPath head;
    head.addEllipse(QPointF(0, 0), 3.5, 2.7);
    symbol.areas = QTransform().translate(9, 18.6).rotate(-18).map(head);
    addLine(symbol.lines, {{11.6, 17.8}, {11.6, 4}});
    QPainterPath& flag = symbol.lines;
    flag.moveTo(11.6, 4);
    flag.cubicTo(12, 7.6, 17.4, 7.4, 17, 12.6);
    return symbol;
}

Symbol waveform()
{
    Symbol symbol;
    constexpr qreal heights[] = {4, 9, 16, 7, 12, 5};
    qreal x = 3;
    for (const qreal height : heights) {
        addLine(symbol.lines, {{x, 12 - height / 2}, {x, 12 + height / 2}});
        x += 3.6;
    }
    return symbol;
}

Symbol playFill()
{
    Symbol symbol;
    QPainterPath triangle;
    triangle.addPolygon(QPolygonF({{7.2, 5.2}, {18.8, 12}, {7.2, 18.8}}));
    triangle.closeSubpath();
    symbol.areas = triangle;
    symbol.lines = triangle;  // its round joins take the points off
    return symbol;
}

Symbol stopFill()
{
    Symbol symbol;
    symbol.areas.addRoundedRect(5, 5, 14, 14, 2.4, 2.4);
    return symbol;
}

/// The figures of "15", about 7 high inside the arrow. Their straight lines lie in the middle of
/// pixels where the grid is 20 pixels wide, as on the buttons.
QPainterPath fifteen()
{
    QPainterPath path;
    addLine(path, {{7.8, 11.4}, {9, 10.2}, {9, 16.2}});
    path.moveTo(15.6, 10.2);
    path.lineTo(12.6, 10.2);
    path.lineTo(12.4, 12.9);
    path.cubicTo(13.9, 11.9, 15.9, 12.6, 15.9, 14.4);
    path.cubicTo(15.9, 16.6, 13.3, 16.9, 12.1, 15.5);
    return path;
}

/// An arrow around the figures, from the top to the left; mirrored for the other way.
Symbol goBackward15()
{
    Symbol symbol;
    constexpr qreal radius = 9.3;
    const QRectF circle(12 - radius, 13.3 - radius, 2 * radius, 2 * radius);
    symbol.lines.arcMoveTo(circle, 90);
    symbol.lines.arcTo(circle, 90, -318);
    addLine(symbol.lines, {{14.6, 1.4}, {11.9, 4}, {14.6, 6.6}});
    symbol.fineLines = fifteen();
    symbol.lineWidth = 1.6;
    return symbol;
}

Symbol goForward15()
{
    Symbol symbol = goBackward15();
    symbol.lines = QTransform(-1, 0, 0, 1, Symbol::grid, 0).map(symbol.lines);
    return symbol;
}

Symbol checkmark()
{
    Symbol symbol;
    addLine(symbol.lines, {{5, 12.6}, {10, 17.6}, {19, 6.4}});
    symbol.lineWidth = 2.6;
    return symbol;
}

Symbol chevronUpChevronDown()
{
    Symbol symbol;
    addLine(symbol.lines, {{7, 9}, {12, 4}, {17, 9}});
    addLine(symbol.lines, {{7, 15}, {12, 20}, {17, 15}});
    symbol.lineWidth = 2.6;
    return symbol;
}

struct NamedSymbol {
    QLatin1String name;
    Symbol (*draw)();
};

constexpr NamedSymbol symbols[] = {
    {QLatin1String("square.and.arrow.down"), squareAndArrowDown},
    {QLatin1String("music.note"), musicNote},
    {QLatin1String("waveform"), waveform},
    {QLatin1String("play.fill"), playFill},
    {QLatin1String("stop.fill"), stopFill},
    {QLatin1String("gobackward.15"), goBackward15},
    {QLatin1String("goforward.15"), goForward15},
    {QLatin1String("checkmark"), checkmark},
    {QLatin1String("chevron.up.chevron.down"), chevronUpChevronDown},
};

}  // namespace

Symbol symbolNamed(const QString& name)
{
    for (const NamedSymbol& symbol : symbols) {
        if (symbol.name == name) {
            return symbol.draw();
        }
    }
    return {};
}

}  // namespace tonvale
