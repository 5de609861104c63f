// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/NamedFileIcons.h"

#include <QFileInfo>
#include <QIcon>
#include <QMimeDatabase>

namespace tonvale {

namespace {

QMimeType typeByName(const QFileInfo& file)
{
    return QMimeDatabase().mimeTypeForFile(file.fileName(), QMimeDatabase::MatchExtension);
}

}  // namespace

QIcon NamedFileIcons::icon(const QFileInfo& file) const
{
    if (file.isDir()) {
        return QFileIconProvider::icon(file);
    }
    const QMimeType type = typeByName(file);
    return QIcon::fromTheme(type.iconName(),
                            QIcon::fromTheme(type.genericIconName(), icon(IconType::File)));
}

QString NamedFileIcons::type(const QFileInfo& file) const
{
    return file.isDir() ? QFileIconProvider::type(file) : typeByName(file).comment();
}

}  // namespace tonvale
