// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Desktop/Replaceable.h"

#include <filesystem>
#include <optional>
#include <string>

namespace tonvale {

/// Asks for one existing audio file.
/// @thread CONTROL
class OpenPanel : public Replaceable<OpenPanel> {
public:
    virtual ~OpenPanel() = default;

    /// Shows the panel and returns when it is closed; the event loop runs meanwhile.
    /// @return none when the user cancelled
    [[nodiscard]] virtual std::optional<std::filesystem::path> runModal() = 0;
};

/// Asks where to save a WAVE file. Folders can be created in it; it asks before it lets an
/// existing file be replaced; its answer always ends in ".wav", in small letters or capitals.
/// @thread CONTROL
class SavePanel : public Replaceable<SavePanel> {
public:
    virtual ~SavePanel() = default;

    std::string title;                   ///< of the panel's window
    std::string nameFieldStringValue;    ///< the proposed file name
    std::filesystem::path directoryURL;  ///< the folder shown first; empty: the panel's choice

    /// As OpenPanel's.
    [[nodiscard]] virtual std::optional<std::filesystem::path> runModal() = 0;
};

}  // namespace tonvale
