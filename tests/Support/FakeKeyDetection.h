// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Foundation/Bundle.h"
#include "Support/TemporaryFolder.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace tonvale::test {

/// An installed application with a helper of the test's own, in place of the real one as long as
/// this lives. The helper is run by the real interpreter.
class FakeKeyDetection {
public:
    FakeKeyDetection();
    ~FakeKeyDetection();
    FakeKeyDetection(const FakeKeyDetection&) = delete;
    FakeKeyDetection& operator=(const FakeKeyDetection&) = delete;

    /// The folder of all; free for the test's files.
    [[nodiscard]] const std::filesystem::path& folder() const noexcept { return folder_.path(); }
    /// The directory "KeyDetection".
    [[nodiscard]] const std::filesystem::path& root() const noexcept { return root_; }

    /// Makes this Python text the helper.
    void setScript(std::string_view python);

    /// Makes a helper that prints these bytes and exits.
    void setAnswer(std::string_view standardOutput, std::string_view standardError = "",
                   int status = 0);

private:
    TemporaryFolder folder_;
    std::filesystem::path root_ = folder_.path() / "share" / "tonvale" / "KeyDetection";
    Bundle bundle_{folder_.path() / "bin" / "tonvale"};
};

}  // namespace tonvale::test
