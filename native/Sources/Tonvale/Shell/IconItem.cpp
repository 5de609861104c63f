// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/IconItem.h"

namespace tonvale {

void IconItem::setIcon(const QIcon& icon)
{
    icon_ = icon;
    update();
    emit iconChanged();
}

void IconItem::paint(QPainter* painter)
{
    icon_.paint(painter, boundingRect().toRect());
}

}  // namespace tonvale
