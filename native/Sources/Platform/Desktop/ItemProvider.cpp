// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/ItemProvider.h"

#include "Platform/Foundation/PlatformError.h"

#include <QCoreApplication>

#include <cerrno>
#include <utility>

namespace tonvale {

URLItemProvider::URLItemProvider(QUrl url) : url_(std::move(url)) {}

bool URLItemProvider::hasItemConformingToTypeIdentifier(std::string_view typeIdentifier) const
{
    return typeIdentifier == fileURLTypeIdentifier && url_.isLocalFile();
}

void URLItemProvider::loadItem(std::string_view typeIdentifier, Completion completion)
{
    Item item = url_;
    if (!hasItemConformingToTypeIdentifier(typeIdentifier)) {
        item = std::make_exception_ptr(PlatformError::fromErrno(ENOENT));
    }
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [item = std::move(item), completion = std::move(completion)] { completion(item); },
        Qt::QueuedConnection);
}

}  // namespace tonvale
