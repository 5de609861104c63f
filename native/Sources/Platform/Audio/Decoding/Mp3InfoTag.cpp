// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/Mp3InfoTag.h"

#include "Platform/Audio/Decoding/BigEndian.h"

#include <algorithm>
#include <string_view>

namespace tonvale {

namespace {

using Bytes = std::span<const std::uint8_t>;

/// Every MP3 decoder delays the sound by this many frames beyond the encoder's own delay.
constexpr std::int64_t decoderDelay = 529;

constexpr std::uint32_t hasPacketCount = 1;
constexpr std::uint32_t hasByteCount = 2;
constexpr std::uint32_t hasSeekTable = 4;
constexpr std::uint32_t hasQuality = 8;

bool hasTextAt(Bytes bytes, std::size_t offset, std::string_view text)
{
    return bytes.size() >= offset + text.size()
           && std::equal(text.begin(), text.end(), bytes.data() + offset);
}

/// Takes bytes off the front; too few of them give zeros and an empty rest.
class Cursor {
public:
    explicit Cursor(Bytes bytes) : rest_(bytes) {}

    std::uint32_t take32() { return rest_.size() >= 4 ? bigEndian32(take(4)) : 0; }
    Bytes take(std::size_t count)
    {
        const Bytes taken = rest_.first(std::min(count, rest_.size()));
        rest_ = rest_.subspan(taken.size());
        return taken;
    }

private:
    Bytes rest_;
};

std::size_t sideInformationSize(const CodedFrameHeader& header)
{
    const bool isVersion1 = header.frames == 1152;
    if (isVersion1) {
        return header.isMono ? 17 : 32;
    }
    return header.isMono ? 9 : 17;
}

/// The extension begins with the encoder's name and version in 9 bytes; 12 bytes later two
/// 12-bit numbers give the frames of padding at the start and at the end.
void readPadding(Bytes extension, Mp3InfoTag& tag)
{
    if (extension.size() < 24 || extension[0] == 0) {
        return;
    }
    const std::int64_t delay = extension[21] << 4 | extension[22] >> 4;
    const std::int64_t padding = (extension[22] & 0x0F) << 8 | extension[23];
    if (delay == 0 && padding == 0) {
        return;  // a name alone; no encoder works without delay
    }
    tag.hasPadding = true;
    tag.startPadding = delay + decoderDelay;
    tag.endPadding = padding - decoderDelay;
}

Mp3InfoTag readXing(Bytes bytes)
{
    Mp3InfoTag tag;
    Cursor cursor(bytes);
    cursor.take(4);
    const std::uint32_t flags = cursor.take32();
    if ((flags & hasPacketCount) != 0) {
        tag.packetCount = cursor.take32();
    }
    if ((flags & hasByteCount) != 0) {
        tag.byteCount = cursor.take32();
    }
    if ((flags & hasSeekTable) != 0) {
        cursor.take(100);
    }
    if ((flags & hasQuality) != 0) {
        cursor.take(4);
    }
    readPadding(cursor.take(24), tag);
    return tag;
}

Mp3InfoTag readVbri(Bytes bytes)
{
    Mp3InfoTag tag;
    Cursor cursor(bytes);
    cursor.take(10);  // name, version, delay of a kind that no decoder uses, quality
    tag.byteCount = cursor.take32();
    tag.packetCount = cursor.take32();
    return tag;
}

}  // namespace

std::optional<Mp3InfoTag> Mp3InfoTag::parse(const CodedFrameHeader& header, Bytes frame)
{
    if (header.codec != AV_CODEC_ID_MP3) {
        return std::nullopt;
    }
    constexpr std::size_t headerSize = 4;
    for (const std::size_t checksum : {std::size_t{0}, std::size_t{2}}) {
        const std::size_t offset = headerSize + checksum + sideInformationSize(header);
        if (hasTextAt(frame, offset, "Xing") || hasTextAt(frame, offset, "Info")) {
            return readXing(frame.subspan(offset));
        }
    }
    constexpr std::size_t vbriOffset = headerSize + 32;
    if (hasTextAt(frame, vbriOffset, "VBRI")) {
        return readVbri(frame.subspan(vbriOffset));
    }
    return std::nullopt;
}

}  // namespace tonvale
