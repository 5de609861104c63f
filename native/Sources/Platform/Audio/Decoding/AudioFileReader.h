// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/AudioPCMBuffer.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace tonvale {

class MusicStream;

/// Decodes one local audio file into frames that can be addressed by number.
///
/// Frame 0 is the first frame of music (encoder delay removed), frame length() - 1 the last.
/// Reading from any frame gives what reading straight through gives there.
/// @thread WORKER; one thread at a time
class AudioFileReader {
public:
    /// @error PlatformError in the system's or the decoder's words
    explicit AudioFileReader(const std::filesystem::path& url);
    ~AudioFileReader();

    [[nodiscard]] const AudioFormat& format() const noexcept;
    [[nodiscard]] std::int64_t length() const noexcept;

    /// As AudioFile::read().
    void read(std::int64_t startFrame, AudioPCMBuffer& buffer, std::uint32_t frameCount);

private:
    std::unique_ptr<MusicStream> stream_;
};

}  // namespace tonvale
