// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <utility>
#include <vector>

namespace tonvale {

/// The songs as the file system knows them, so that none is overwritten under any of its names.
/// @thread ANY
class InputFiles {
public:
    /// @param songs  as named on the command line
    /// @error UsageError where several are named and not one of them is there
    explicit InputFiles(const std::vector<std::filesystem::path>& songs);

    [[nodiscard]] bool contains(const struct stat& file) const;
    [[nodiscard]] bool areSeveral() const noexcept { return areSeveral_; }

private:
    std::vector<std::pair<dev_t, ino_t>> files_;  // in order
    bool areSeveral_;
};

}  // namespace tonvale
