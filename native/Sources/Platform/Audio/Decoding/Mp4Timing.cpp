// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/Mp4Timing.h"

#include "Platform/Audio/Decoding/BigEndian.h"
#include "Platform/Audio/Decoding/LocalInput.h"

#include <array>
#include <span>
#include <string_view>

namespace tonvale {

namespace {

/// The content of a box: the bytes [begin, end) of the file.
struct Box {
    std::int64_t begin = 0;
    std::int64_t end = 0;
};

std::uint32_t fourCharacterCode(std::string_view text)
{
    std::uint32_t code = 0;
    for (const char character : text) {
        code = code << 8U | static_cast<std::uint8_t>(character);
    }
    return code;
}

class Mp4Boxes {
public:
    explicit Mp4Boxes(LocalInput& input) : input_(input) {}

    [[nodiscard]] Box file() const { return {0, input_.size()}; }

    /// The first box of the given kind directly in `parent`, at `from` or later.
    [[nodiscard]] std::optional<Box> find(const Box& parent, std::string_view kind,
                                          std::int64_t from = 0) const
    {
        const std::uint32_t code = fourCharacterCode(kind);
        std::int64_t offset = from > parent.begin ? from : parent.begin;
        while (offset + 8 <= parent.end && boxesLeft_ > 0) {
            --boxesLeft_;
            std::int64_t size = read32(offset);
            std::int64_t header = 8;
            if (size == 1) {
                size = read64(offset + 8);
                header = 16;
            } else if (size == 0) {
                size = parent.end - offset;
            }
            if (size < header || size > parent.end - offset) {
                return std::nullopt;
            }
            if (read32(offset + 4) == code) {
                return Box{offset + header, offset + size};
            }
            offset += size;
        }
        return std::nullopt;
    }

    [[nodiscard]] std::uint32_t read32(std::int64_t offset) const
    {
        std::array<std::uint8_t, 4> b = {};
        input_.readAt(offset, b);
        return bigEndian32(b);
    }

    [[nodiscard]] std::int64_t read64(std::int64_t offset) const
    {
        const std::uint64_t high = read32(offset);
        return static_cast<std::int64_t>(high << 32U | read32(offset + 4));
    }

    /// Whether a box with versions uses 64-bit times.
    [[nodiscard]] bool isLong(const Box& box) const { return read32(box.begin) >> 24U == 1; }

private:
    LocalInput& input_;
    // A day of one-second fragments has fewer; without an end, a file of empty boxes takes minutes.
    mutable int boxesLeft_ = 200'000;
};

/// Both movie and media headers: version, two dates, ticks per second.
std::int64_t ticksPerSecond(const Mp4Boxes& boxes, const Box& header)
{
    return boxes.read32(header.begin + (boxes.isLong(header) ? 20 : 12));
}

std::optional<Box> findTrack(const Mp4Boxes& boxes, const Box& movie, std::uint32_t trackId)
{
    auto track = boxes.find(movie, "trak");
    while (track) {
        const auto header = boxes.find(*track, "tkhd");
        if (header && boxes.read32(header->begin + (boxes.isLong(*header) ? 20 : 12)) == trackId) {
            return track;
        }
        track = boxes.find(movie, "trak", track->end);
    }
    return std::nullopt;
}

/// Edits of nothing only delay the track, which a song alone does not need. Several others
/// are taken for one that begins where the first does.
std::optional<Mp4Timing::Edit> readEdits(const Mp4Boxes& boxes, const Box& list)
{
    constexpr std::int64_t maximumEdits = 1000;
    const bool isLong = boxes.isLong(list);
    const std::int64_t entrySize = isLong ? 20 : 12;
    const std::int64_t count = boxes.read32(list.begin + 4);
    std::optional<Mp4Timing::Edit> edit;
    for (std::int64_t index = 0; index < count && index < maximumEdits; ++index) {
        const std::int64_t entry = list.begin + 8 + index * entrySize;
        if (entry + entrySize > list.end) {
            break;
        }
        const std::int64_t duration = isLong ? boxes.read64(entry) : boxes.read32(entry);
        const std::int64_t start =
            isLong ? boxes.read64(entry + 8) : static_cast<std::int32_t>(boxes.read32(entry + 4));
        if (start < 0 || duration < 0 || duration > std::int64_t{1} << 50U) {
            continue;
        }
        if (!edit) {
            edit = Mp4Timing::Edit{.mediaStart = start};
        }
        edit->duration += duration;
    }
    return edit;
}

}  // namespace

std::optional<Mp4Timing> Mp4Timing::parse(LocalInput& input, std::uint32_t trackId)
{
    const Mp4Boxes boxes(input);
    const auto movie = boxes.find(boxes.file(), "moov");
    const auto movieHeader = movie ? boxes.find(*movie, "mvhd") : std::nullopt;
    const auto track = movieHeader ? findTrack(boxes, *movie, trackId) : std::nullopt;
    const auto media = track ? boxes.find(*track, "mdia") : std::nullopt;
    const auto mediaHeader = media ? boxes.find(*media, "mdhd") : std::nullopt;
    if (!mediaHeader) {
        return std::nullopt;
    }
    Mp4Timing timing;
    timing.movieTicksPerSecond = ticksPerSecond(boxes, *movieHeader);
    timing.mediaTicksPerSecond = ticksPerSecond(boxes, *mediaHeader);
    const auto edits = boxes.find(*track, "edts");
    const auto list = edits ? boxes.find(*edits, "elst") : std::nullopt;
    if (list) {
        timing.edit = readEdits(boxes, *list);
    }
    return timing;
}

}  // namespace tonvale
