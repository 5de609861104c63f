// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFileSettings.h"
#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/AudioPCMBuffer.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace tonvale {

class AudioFileReader;
class AudioFileWriter;

/// A local audio file, open either for reading or for writing.
/// The file stays usable after its name was deleted or given to another file.
/// One thread at a time may use it.
/// @thread WORKER (reads and writes the disk)
class AudioFile {
public:
    /// Opens a song: whatever container and codec the system's decoders know, decoded to
    /// the format of AudioFormat.h at the song's own rate and channel count.
    /// Opening decodes no more than the first frames.
    /// @error PlatformError in the system's or the decoder's words; a song of more frames than
    ///        32 bits count is a file too large
    [[nodiscard]] static AudioFile forReading(const std::filesystem::path& url);

    /// Creates or empties a file; the container follows the extension: wav, aif, aiff, caf.
    /// @error PlatformError; unknown extension or settings included
    [[nodiscard]] static AudioFile forWriting(const std::filesystem::path& url,
                                              const AudioFileSettings& settings);

    AudioFile(AudioFile&&) noexcept;
    AudioFile& operator=(AudioFile&&) noexcept;
    ~AudioFile();

    /// The in-memory side of the file.
    [[nodiscard]] const AudioFormat& processingFormat() const noexcept;

    /// Reading: the exact number of frames of music, encoder padding not counted.
    /// Writing: the frames written so far.
    [[nodiscard]] std::int64_t length() const noexcept;

    /// Fills `buffer` with up to `frameCount` frames from `startFrame` on and sets its frameLength;
    /// fewer only at the end of the file. What cannot be decoded is silence.
    /// Consecutive reads are cheapest; any other start seeks.
    /// @param startFrame  0 ... length()
    /// @param buffer      in processingFormat(), with room for frameCount
    /// @error PlatformError when the disk fails, or the file has become shorter
    void read(std::int64_t startFrame, AudioPCMBuffer& buffer, std::uint32_t frameCount);

    /// Appends the buffer's valid frames, converted with saturation.
    /// @error PlatformError in the system's words: disk full, file too large for its container, ...
    void write(const AudioPCMBuffer& buffer);

    /// Completes a written file on disk and closes it; call it to learn of errors that the
    /// destructor would have to swallow. Nothing to do for a file open for reading.
    /// @error PlatformError
    void close();

private:
    explicit AudioFile(std::unique_ptr<AudioFileReader> reader) noexcept;
    explicit AudioFile(std::unique_ptr<AudioFileWriter> writer) noexcept;

    std::unique_ptr<AudioFileReader> reader_;
    std::unique_ptr<AudioFileWriter> writer_;
};

}  // namespace tonvale
