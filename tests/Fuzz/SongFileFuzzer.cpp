// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/AudioFileReader.h"
#include "Platform/Foundation/PlatformError.h"
#include "Support/ReadAround.h"
#include "Support/TemporaryFolder.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

/// The ending, where there is one, is a hint in recognising the format.
constexpr std::array endings = {".mp3",  ".m4a", ".flac", ".ogg", ".wav",
                                ".aiff", ".caf", ".aac",  ".wma", ""};

}  // namespace

/// A song on disk under any name: opened, read and skipped through.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const tonvale::test::TemporaryFolder folder;
    FuzzedDataProvider choices(data, size);  // takes numbers from the end
    const auto place = choices.ConsumeIntegral<std::uint32_t>();
    const std::string name = std::string("song") + choices.PickValueInArray(endings);
    const std::filesystem::path song = folder.path() / name;
    std::ofstream(song, std::ios::binary)
        .write(reinterpret_cast<const char*>(data),
               static_cast<std::streamsize>(choices.remaining_bytes()));
    try {
        tonvale::AudioFileReader reader(song);
        tonvale::test::readAround(reader, place);
    } catch (const tonvale::PlatformError&) {
        // refused, in words for the user
    }
    return 0;
}
