// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFileSettings.h"
#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/AudioPCMBuffer.h"
#include "Platform/Foundation/FileDescriptor.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

// libsndfile's handle type, so that its header stays out of ours.
struct sf_private_tag;

namespace tonvale {

/// Writes one audio file, block by block, and reports every failure of the disk.
///
/// Where the process has a limit on file sizes, the kernel also raises SIGXFSZ, which ends the
/// process unless the program ignores that signal.
/// @thread WORKER; one thread at a time
class AudioFileWriter {
public:
    /// The header of a WAV or AIFF file counts its bytes in 32 bits.
    static constexpr std::int64_t fourGigabytes = 0xFFFFFFFF;

    /// @param maximumFileSize  in bytes; the write that would pass it fails as on a full disk
    /// @error PlatformError; nothing is touched on disk when extension or settings are refused
    AudioFileWriter(const std::filesystem::path& url, const AudioFileSettings& settings,
                    std::int64_t maximumFileSize = fourGigabytes);
    ~AudioFileWriter();

    AudioFileWriter(const AudioFileWriter&) = delete;
    AudioFileWriter& operator=(const AudioFileWriter&) = delete;

    [[nodiscard]] const AudioFormat& format() const noexcept { return format_; }
    [[nodiscard]] std::int64_t framesWritten() const noexcept { return framesWritten_; }

    /// As AudioFile::write().
    void write(const AudioPCMBuffer& buffer);

    /// As AudioFile::close(); a second call does nothing.
    void close();

private:
    struct Disk;  // the descriptor as libsndfile sees it, with the first error met
    struct CloseSound {
        void operator()(sf_private_tag* sound) const noexcept;
    };

    void refuseBeyondMaximumSize(std::uint32_t frames) const;
    void interleave(const AudioPCMBuffer& buffer);
    void throwDiskFailure() const;  // where there was one
    [[noreturn]] void throwFailure() const;

    AudioFormat format_;
    std::int64_t maximumFileSize_;
    std::int64_t framesWritten_ = 0;
    std::vector<std::int16_t> interleaved_;
    std::unique_ptr<Disk> disk_;
    std::unique_ptr<sf_private_tag, CloseSound> sound_;  // after disk_: closing writes to it
};

}  // namespace tonvale
