// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/ByteFile.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace tonvale::test {

/// A box with its header of eight bytes.
inline Bytes box(std::string_view kind, const Bytes& content)
{
    Bytes bytes;
    append(bytes, content.size() + 8, 4);
    append(bytes, text(kind));
    append(bytes, content);
    return bytes;
}

/// The headers of movie, track and media alike: version and flags, two dates, a number.
inline Bytes header(std::string_view kind, bool isLong, std::uint32_t number)
{
    Bytes content;
    append(content, isLong ? 1 : 0, 1);
    append(content, 0, 3);
    append(content, 0x0102030405060708, isLong ? 8 : 4);
    append(content, 0x1112131415161718, isLong ? 8 : 4);
    append(content, number, 4);
    append(content, 0, 8);
    return box(kind, content);
}

/// One of an edit list, in ticks of the movie and of the media.
struct Entry {
    std::int64_t duration;
    std::int64_t start;
};

inline Bytes editList(bool isLong, const std::vector<Entry>& entries)
{
    Bytes content;
    append(content, isLong ? 1 : 0, 1);
    append(content, 0, 3);
    append(content, entries.size(), 4);
    for (const Entry& entry : entries) {
        append(content, static_cast<std::uint64_t>(entry.duration), isLong ? 8 : 4);
        append(content, static_cast<std::uint64_t>(entry.start), isLong ? 8 : 4);
        append(content, 0x00010000, 4);  // the rate
    }
    return box("edts", box("elst", content));
}

inline Bytes track(std::uint32_t id, std::uint32_t ticksPerSecond, const Bytes& edits,
                   bool isLong = false)
{
    Bytes content = header("tkhd", isLong, id);
    append(content, edits);
    append(content, box("mdia", header("mdhd", isLong, ticksPerSecond)));
    return box("trak", content);
}

inline Bytes movie(const Bytes& tracks, bool isLong = false, std::uint32_t ticksPerSecond = 600)
{
    Bytes content = header("mvhd", isLong, ticksPerSecond);
    append(content, tracks);
    Bytes file = box("ftyp", text("M4A "));
    append(file, box("moov", content));
    return file;
}

}  // namespace tonvale::test
