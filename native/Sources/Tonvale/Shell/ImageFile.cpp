// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/ImageFile.h"

#include <QFile>
#include <QImageReader>
#include <QPixmap>

namespace tonvale {

QIcon imageFile(const std::filesystem::path& file)
{
    QIcon icon;
    QImageReader reader(QFile::decodeName(file.c_str()));
    for (int index = 0, count = reader.imageCount(); index < count; ++index) {
        reader.jumpToImage(index);
        if (const QImage image = reader.read(); !image.isNull()) {
            icon.addPixmap(QPixmap::fromImage(image));
        }
    }
    return icon;
}

}  // namespace tonvale
