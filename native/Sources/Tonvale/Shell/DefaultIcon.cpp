// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/DefaultIcon.h"

#include <QString>

namespace tonvale {

QIcon defaultIcon()
{
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
        icon.addFile(QStringLiteral(":/tonvale/icons/%1.png").arg(size));
    }
    return icon;
}

}  // namespace tonvale
