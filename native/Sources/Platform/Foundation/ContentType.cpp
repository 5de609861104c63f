// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/ContentType.h"

#include "Platform/Foundation/FileDescriptor.h"
#include "Platform/Foundation/FileName.h"

#include <QFile>
#include <QMimeDatabase>
#include <QMimeType>

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace tonvale {

namespace {

constexpr QLatin1StringView audioPrefix("audio/");

template <std::size_t count>
bool contains(const std::array<QLatin1StringView, count>& names, const QString& name)
{
    return std::ranges::find(names, name) != names.end();
}

/// Lists of songs are filed under sound, too; most of them are text, or say so.
bool isPlayList(const QMimeType& type)
{
    static constexpr std::array playLists{
        QLatin1StringView("audio/x-mpegurl"), QLatin1StringView("audio/x-scpls"),
        QLatin1StringView("audio/x-ms-asx"), QLatin1StringView("audio/x-iriver-pla")};
    return type.inherits(QStringLiteral("text/plain")) || contains(playLists, type.name());
}

bool isAudio(const QMimeType& type)
{
    return type.name().startsWith(audioPrefix) && !isPlayList(type);
}

/// Whether such files hold sound or pictures, which their first bytes do not tell.
bool isContainer(const QString& type)
{
    static constexpr std::array containers{
        QLatin1StringView("video/mp4"),        QLatin1StringView("video/quicktime"),
        QLatin1StringView("video/3gpp"),       QLatin1StringView("video/3gpp2"),
        QLatin1StringView("application/ogg"),  QLatin1StringView("video/webm"),
        QLatin1StringView("video/x-matroska"), QLatin1StringView("application/x-matroska"),
        QLatin1StringView("video/x-ms-asf"),   QLatin1StringView("application/vnd.ms-asf"),
    };
    return contains(containers, type);
}

QString audioTypeOfName(const std::filesystem::path& file)
{
    const QString name = QFile::decodeName(FileName::lastPathComponent(file).c_str());
    const QList<QMimeType> types = QMimeDatabase().mimeTypesForFileName(name);
    const auto type = std::ranges::find_if(types, isAudio);
    return type != types.end() ? type->name() : QString();
}

/// Opened by its bytes, since a path need not be text; without waiting for the writer of a pipe.
FileDescriptor openRegularFile(const std::filesystem::path& file)
{
    FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status = {};
    const bool isRegular =
        descriptor.isOpen() && ::fstat(descriptor.get(), &status) == 0 && S_ISREG(status.st_mode);
    return isRegular ? std::move(descriptor) : FileDescriptor();
}

/// The name of the content's type; empty where the database knows none.
QString sniff(const FileDescriptor& descriptor)
{
    QFile content;
    if (!content.open(descriptor.get(), QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return {};
    }
    const QMimeType type = QMimeDatabase().mimeTypeForData(&content);
    const bool saysNothing = type.isDefault() || type.name() == u"application/x-zerosize";
    return saysNothing ? QString() : type.name();
}

}  // namespace

bool ContentType::conformsToAudio() const
{
    return isAudio(QMimeDatabase().mimeTypeForName(name_));
}

std::optional<ContentType> contentType(const std::filesystem::path& file)
{
    std::error_code ignored;
    if (std::filesystem::is_directory(file, ignored)) {
        return ContentType(QStringLiteral("inode/directory"));
    }
    const FileDescriptor descriptor = openRegularFile(file);
    if (!descriptor.isOpen()) {
        return std::nullopt;
    }
    const QString content = sniff(descriptor);
    if (content.isEmpty()) {
        return std::nullopt;
    }
    const QString byName = isContainer(content) ? audioTypeOfName(file) : QString();
    return ContentType(byName.isEmpty() ? content : byName);
}

}  // namespace tonvale
