// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/CafPacketInfo.h"

#include "Platform/Audio/Decoding/LocalInput.h"

#include <array>
#include <cstring>
#include <span>

namespace tonvale {

namespace {

constexpr std::int64_t fileHeaderSize = 8;
constexpr std::int64_t chunkHeaderSize = 12;  // four characters and a 64-bit size
constexpr int mostChunks = 10'000;  // files have a dozen; one of empty chunks would take minutes

std::int64_t bigEndian(std::span<const std::uint8_t> bytes)
{
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes) {
        value = value << 8U | byte;
    }
    return static_cast<std::int64_t>(value);
}

/// Packets, valid frames, priming frames, remainder frames.
std::optional<CafPacketInfo> readTable(LocalInput& input, std::int64_t offset)
{
    std::array<std::uint8_t, 24> table = {};
    if (input.readAt(offset, table) < table.size()) {
        return std::nullopt;
    }
    const std::span<const std::uint8_t> bytes(table);
    const CafPacketInfo info = {.validFrames = bigEndian(bytes.subspan(8, 8)),
                                .primingFrames = bigEndian(bytes.subspan(16, 4))};
    // Their sum must not overflow; no song is near either of them.
    constexpr std::int64_t mostPriming = 1 << 20;
    constexpr std::int64_t mostFrames = std::int64_t{1} << 40;
    if (info.validFrames <= 0 || info.validFrames > mostFrames
        || info.primingFrames > mostPriming) {
        return std::nullopt;
    }
    return info;
}

}  // namespace

std::optional<CafPacketInfo> CafPacketInfo::parse(LocalInput& input)
{
    std::array<std::uint8_t, chunkHeaderSize> header = {};
    std::int64_t offset = fileHeaderSize;
    for (int chunk = 0; chunk < mostChunks && input.readAt(offset, header) == header.size();
         ++chunk) {
        const std::int64_t size = bigEndian(std::span(header).subspan(4));
        const std::int64_t content = offset + chunkHeaderSize;
        if (std::memcmp(header.data(), "pakt", 4) == 0) {
            return readTable(input, content);
        }
        if (size < 0 || size > input.size() - content) {
            break;  // the last chunk may leave its size open
        }
        offset = content + size;
    }
    return std::nullopt;
}

}  // namespace tonvale
