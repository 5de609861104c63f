// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/LocalInput.h"
#include "Platform/Audio/Decoding/MusicStream.h"
#include "Support/ReadAround.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <sys/types.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

namespace tonvale {

namespace {

/// A disk that holds one song and may fail somewhere.
struct Disk {
    std::span<const std::uint8_t> song;
    std::size_t mostAtOnce;  ///< bytes
    std::size_t brokenFrom;  ///< bytes; reading one of these fails
};

Disk disk;  // what LocalInput reads by is a plain function

ssize_t readDisk(int /*descriptor*/, void* data, std::size_t count, off_t offset)
{
    const auto start = static_cast<std::size_t>(offset);
    if (start >= disk.song.size()) {
        return 0;
    }
    if (start >= disk.brokenFrom) {
        errno = EIO;
        return -1;
    }
    const std::size_t end = std::min(disk.song.size(), disk.brokenFrom);
    const std::size_t done = std::min({count, disk.mostAtOnce, end - start});
    std::memcpy(data, disk.song.data() + start, done);
    return static_cast<ssize_t>(done);
}

}  // namespace

}  // namespace tonvale

/// A song in memory: opened, read and skipped through, from a disk that may read little at a time
/// or break.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tonvale;
    FuzzedDataProvider choices(data, size);  // takes numbers from the end
    const auto place = choices.ConsumeIntegral<std::uint32_t>();
    const bool breaks = choices.ConsumeIntegral<std::uint8_t>() < 32;
    const auto brokenFrom = choices.ConsumeIntegral<std::uint16_t>();
    const std::size_t mostAtOnce = std::size_t{1} << choices.ConsumeIntegralInRange(6, 16);
    const std::span song(data, choices.remaining_bytes());
    disk = {
        .song = song, .mostAtOnce = mostAtOnce, .brokenFrom = breaks ? brokenFrom : song.size()};
    try {
        MusicStream stream(std::make_unique<LocalInput>(
            FileDescriptor(), static_cast<std::int64_t>(song.size()), "song", &readDisk));
        test::readAround(stream, place);
    } catch (const PlatformError&) {
        // refused, in words for the user
    }
    return 0;
}
