// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <optional>

namespace tonvale {

/// An installed application: its executable and the resources that belong to it.
/// @thread ANY
class Bundle {
public:
    explicit Bundle(std::filesystem::path executable);

    /// The application that is running.
    [[nodiscard]] static Bundle main();

    /// For tests: makes main() answer `bundle` until called with null. The caller keeps `bundle`
    /// alive and calls this while nobody asks for main().
    static void replaceMain(const Bundle* bundle) noexcept;

    [[nodiscard]] const std::filesystem::path& executableURL() const noexcept
    {
        return executable_;
    }

    /// `<directory of the executable>/../share/tonvale`; none where that is no directory.
    [[nodiscard]] std::optional<std::filesystem::path> resourceURL() const;

private:
    std::filesystem::path executable_;
};

}  // namespace tonvale
