// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Support/Program.h"
#include "Support/TemporaryFolder.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace tonvale::test {

/// A PulseAudio server of the test's own, with one device that nobody hears. While it exists it is
/// the one that this process, and what it starts, plays to; no other is touched.
class PulseServer {
public:
    static constexpr const char* deviceName = "speaker";

    /// Starts it, unless told not to.
    explicit PulseServer(std::uint32_t sampleRate = 48000, bool isStarted = true);
    ~PulseServer();
    PulseServer(const PulseServer&) = delete;
    PulseServer& operator=(const PulseServer&) = delete;

    /// Returns once it takes connections. @return false where it cannot run
    bool start();
    void kill();  ///< at once, without a word to those that play
    void freeze() const;
    void thaw() const;

    /// Has `pactl` tell or change something. @return what it printed
    [[nodiscard]] static std::string control(std::initializer_list<std::string> arguments);

private:
    void setVariable(const std::string& name, const std::string& value);

    TemporaryFolder folder_;
    std::uint32_t sampleRate_;
    std::map<std::string, std::optional<std::string>> formerVariables_;
    std::unique_ptr<RunningProgram> program_;
};

}  // namespace tonvale::test
