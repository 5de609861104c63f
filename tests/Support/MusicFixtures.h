// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Support/TemporaryFolder.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace tonvale::test {

/// A song to encode: channel after channel of 16-bit samples.
struct Recording {
    int sampleRate = 44100;
    std::vector<std::vector<std::int16_t>> channels;

    [[nodiscard]] std::int64_t length() const
    {
        return static_cast<std::int64_t>(channels.front().size());
    }
};

/// The same song for the same arguments: a chord, quiet noise and a click each half second,
/// different in every channel.
[[nodiscard]] Recording makeRecording(std::int64_t frames, int sampleRate = 44100,
                                      int channelCount = 2);

/// A plain 16-bit WAVE file.
void writeWave(const std::filesystem::path& path, const Recording& song);

[[nodiscard]] std::vector<std::uint8_t> readBytes(const std::filesystem::path& path);
void writeBytes(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

/// One kind of music file and how to make it.
struct MusicFormat {
    enum class Loss {
        none,  ///< decodes to the source's samples
        some,  ///< sounds like the source
    };
    enum class Length {
        exact,         ///< the file tells how long the music is
        wholePackets,  ///< it does not: padding of less than `slack` frames remains
    };

    std::string name;                  ///< letters and digits
    std::string fileName;              ///< its extension makes the container
    std::vector<std::string> encoder;  ///< program and arguments; SOURCE and TARGET stand for paths
    Loss loss = Loss::none;
    Length length = Length::exact;
    std::int64_t slack = 0;  ///< frames
    int sampleRate = 44100;  ///< of what is decoded

    /// What becomes of the music behind damaged packets.
    enum class Damage {
        keepsPlace,  ///< stays where it was: packets tell their place
        movesUp,     ///< comes earlier by whole packets of `packetFrames`: they are only counted
        movesAnyhow,
    };
    Damage damage = Damage::keepsPlace;
    std::int64_t packetFrames = 0;  ///< with movesUp

    bool needsItsEnd = false;  ///< the index is the last thing in the file
};

/// Every format that the reader is tested with.
[[nodiscard]] const std::vector<MusicFormat>& musicFormats();
[[nodiscard]] const MusicFormat& musicFormat(const std::string& name);

/// Encoded songs, made when first asked for and kept until the process ends.
class MusicFixtures {
public:
    [[nodiscard]] static MusicFixtures& shared();

    /// The song that every file holds: a little over 23 seconds.
    [[nodiscard]] const Recording& song() const noexcept { return song_; }

    /// @return an empty path, with a test failure, when the encoder failed
    [[nodiscard]] std::filesystem::path file(const MusicFormat& format);

    /// Encodes another song in the same way, each time anew.
    [[nodiscard]] std::filesystem::path encode(const MusicFormat& format, const Recording& song,
                                               const std::string& fileName);

    [[nodiscard]] const std::filesystem::path& folder() const noexcept { return folder_.path(); }

private:
    MusicFixtures();

    TemporaryFolder folder_;
    Recording song_;
};

}  // namespace tonvale::test
