// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <filesystem>
#include <optional>
#include <utility>

namespace tonvale {

/// What kind of thing a file holds.
/// @thread ANY; a plain value
class ContentType {
public:
    /// @param name  as in the desktop's database: "audio/flac", "inode/directory"
    explicit ContentType(QString name) : name_(std::move(name)) {}

    [[nodiscard]] const QString& name() const noexcept { return name_; }

    /// Whether it is sound. Play lists are text, though their names begin with "audio/".
    [[nodiscard]] bool conformsToAudio() const;

private:
    QString name_;
};

/// The type of a file by its content. The name has a say only where the content is a container for
/// sound and pictures alike.
/// @return none where the file cannot be read, is no regular file or directory, or holds nothing
///         that the database knows
/// @thread CONTROL (reads the beginning of the file)
[[nodiscard]] std::optional<ContentType> contentType(const std::filesystem::path& file);

}  // namespace tonvale
