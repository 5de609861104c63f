// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/AudioNameFilter.h"

#include <QMimeDatabase>
#include <QStringList>

#include <set>

namespace tonvale {

namespace {

/// Play lists are audio by their name only.
bool isAudio(const QMimeType& type)
{
    return type.name().startsWith(QLatin1String("audio/"))
           && !type.inherits(QStringLiteral("text/plain"));
}

/// Sorted, each once. The six names are known even where the system's list lacks them.
std::set<QString> audioPatterns()
{
    std::set<QString> patterns;
    for (const char* extension : {"mp3", "m4a", "wav", "aif", "aiff", "caf"}) {
        patterns.insert(QStringLiteral("*.") + QLatin1String(extension));
    }
    const QList<QMimeType> types = QMimeDatabase().allMimeTypes();
    for (const QMimeType& type : types) {
        if (isAudio(type)) {
            const QStringList globs = type.globPatterns();
            patterns.insert(globs.begin(), globs.end());
        }
    }
    return patterns;
}

}  // namespace

QString audioNameFilter()
{
    // Some desktops' dialogs tell upper from lower case, so both are listed.
    std::set<QString> patterns;
    for (const QString& pattern : audioPatterns()) {
        patterns.insert(pattern);
        patterns.insert(pattern.toLower());
        patterns.insert(pattern.toUpper());
    }
    return QStringLiteral("Audio files (%1)")
        .arg(QStringList(patterns.begin(), patterns.end()).join(QLatin1Char(' ')));
}

}  // namespace tonvale
