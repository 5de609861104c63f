// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

// Opens a song and prints its rate, channels and length, so that the cost of opening can be timed
// as a whole process. With --decode it also reads the song to its end.

#include "Platform/Audio/AudioFile.h"
#include "Platform/Foundation/LocalizedError.h"

#include <cstdint>
#include <exception>
#include <iostream>
#include <string_view>

namespace {

std::int64_t decode(tonvale::AudioFile& song)
{
    constexpr std::uint32_t blockFrames = 4096;
    const auto buffer = tonvale::AudioPCMBuffer::create(song.processingFormat(), blockFrames);
    std::int64_t frame = 0;
    while (frame < song.length()) {
        song.read(frame, *buffer, blockFrames);
        frame += buffer->frameLength();
    }
    return frame;
}

}  // namespace

int main(int argumentCount, char* arguments[])
{
    if (argumentCount < 2) {
        std::cerr << "Usage: open-song FILE [--decode]\n";
        return 2;
    }
    try {
        tonvale::AudioFile song = tonvale::AudioFile::forReading(arguments[1]);
        const bool decodes = argumentCount > 2 && std::string_view(arguments[2]) == "--decode";
        std::cout << song.processingFormat().sampleRate << ' '
                  << song.processingFormat().channelCount << ' '
                  << (decodes ? decode(song) : song.length()) << '\n';
        return 0;
    } catch (...) {
        std::cerr << tonvale::localizedDescription(std::current_exception()) << '\n';
        return 1;
    }
}
