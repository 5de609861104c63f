// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/FileLocation.h"

namespace tonvale {

std::optional<std::filesystem::path> fileLocation(const QUrl& url)
{
    const bool isHere = url.host().isEmpty() || url.host() == u"localhost";
    if (!url.isLocalFile() || !isHere) {
        return std::nullopt;
    }
    // toLocalFile() is text, and would replace the bytes that are none.
    const QByteArray encoded = url.path(QUrl::FullyEncoded).toLatin1();
    const std::string path = QByteArray::fromPercentEncoding(encoded).toStdString();
    if (path.empty() || path.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    return path;
}

std::optional<std::filesystem::path> fileLocation(const QByteArray& written)
{
    return fileLocation(QUrl::fromEncoded(written.trimmed(), QUrl::StrictMode));
}

}  // namespace tonvale
