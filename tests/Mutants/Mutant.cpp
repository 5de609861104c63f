// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Mutants/Mutant.h"

#include "Support/MusicFixtures.h"

#include <algorithm>
#include <utility>

namespace tonvale::test {

namespace {

/// 0 ... `bound` - 1, the same with every standard library.
std::size_t below(std::size_t bound, std::mt19937& random)
{
    return random() % bound;
}

std::uint8_t anyByte(std::mt19937& random)
{
    return static_cast<std::uint8_t>(random());
}

void flipBits(Bytes& song, std::mt19937& random)
{
    const std::size_t count = std::size_t{1} << below(8, random);
    for (std::size_t index = 0; index < count; ++index) {
        song[below(song.size(), random)] ^= static_cast<std::uint8_t>(1U << below(8, random));
    }
}

void overwriteHeader(Bytes& song, std::mt19937& random)
{
    constexpr std::array<std::uint8_t, 5> extremes = {0x00, 0x01, 0x7F, 0x80, 0xFF};
    const std::size_t reach = std::min<std::size_t>(song.size(), 128U << below(4, random));
    // Some formats have their tables at the end.
    const std::size_t origin = below(3, random) == 0 ? song.size() - reach : 0;
    const std::size_t fields = 1 + below(4, random);
    for (std::size_t field = 0; field < fields; ++field) {
        const std::size_t start = origin + below(reach, random);
        const std::size_t end = std::min(song.size(), start + (std::size_t{1} << below(4, random)));
        const std::uint8_t extreme = extremes[below(extremes.size(), random)];
        const bool isRandom = below(3, random) == 0;
        for (std::size_t place = start; place < end; ++place) {
            song[place] = isRandom ? anyByte(random) : extreme;
        }
    }
}

/// Noise, or a piece of the song itself.
void insertBytes(Bytes& song, std::mt19937& random)
{
    Bytes piece(1 + below(std::size_t{1} << below(13, random), random));
    if (below(2, random) == 0) {
        std::ranges::generate(piece, [&random] { return anyByte(random); });
    } else {
        piece.resize(std::min(piece.size(), song.size()));
        const std::size_t from = below(song.size() - piece.size() + 1, random);
        std::copy_n(song.begin() + static_cast<std::ptrdiff_t>(from), piece.size(), piece.begin());
    }
    const std::size_t place = below(song.size() + 1, random);
    song.insert(song.begin() + static_cast<std::ptrdiff_t>(place), piece.begin(), piece.end());
}

void zeroStretch(Bytes& song, std::mt19937& random)
{
    const std::size_t start = below(song.size(), random);
    const std::size_t longest = std::min<std::size_t>(song.size() - start, 1U << below(15, random));
    std::fill_n(song.begin() + static_cast<std::ptrdiff_t>(start), 1 + below(longest, random), 0);
}

/// In pages of a few packets, not of a second: a damaged page is left out as a whole.
MusicFormat withShortPages(MusicFormat format)
{
    format.encoder.insert(format.encoder.end() - 1, {"-page_duration", "30000"});
    return format;
}

}  // namespace

Bytes damaged(Bytes song, Way way, std::mt19937& random)
{
    switch (way) {
    case Way::flip:
        flipBits(song, random);
        break;
    case Way::truncate:
        song.resize(below(song.size(), random));
        break;
    case Way::header:
        overwriteHeader(song, random);
        break;
    case Way::insert:
        insertBytes(song, random);
        break;
    case Way::zero:
        zeroStretch(song, random);
        break;
    }
    return song;
}

std::vector<MutantSource> makeMutantSources()
{
    // Each format twice, so that they take equal turns; where it can be, as another kind.
    const std::vector<std::pair<std::string, MusicFormat>> kinds = {
        {"MP3", musicFormat("mp3Constant")},
        {"M4A", musicFormat("m4aAac")},
        {"FLAC", musicFormat("flac")},
        {"OGG", withShortPages(musicFormat("vorbis"))},
        {"WAV", musicFormat("wav16")},
        {"AIFF", musicFormat("aiff")},
        {"CAF", musicFormat("cafPcm")},
        {"MP3", musicFormat("mp3Variable")},
        {"M4A", musicFormat("m4aAlac")},
        {"FLAC", musicFormat("flac")},
        {"OGG", withShortPages(musicFormat("opus"))},
        {"WAV", musicFormat("wavFloat32")},
        {"AIFF", musicFormat("aiffC")},
        {"CAF", musicFormat("cafAlac")},
    };
    constexpr std::int64_t frames = 11025;  // a quarter of a second
    const Recording song = makeRecording(frames);
    std::vector<MutantSource> sources;
    for (const auto& [format, kind] : kinds) {
        const auto file = MusicFixtures::shared().encode(kind, song, kind.fileName);
        sources.push_back({format, kind.fileName, readBytes(file)});
    }
    return sources;
}

Mutant makeMutant(const std::vector<MutantSource>& sources, std::uint32_t seed, std::uint32_t index)
{
    std::seed_seq sequence{seed, index};
    std::mt19937 random(sequence);
    const MutantSource& source = sources[index % sources.size()];
    const auto way = static_cast<Way>(index / sources.size() % wayNames.size());
    return {&source, way, damaged(source.bytes, way, random)};
}

}  // namespace tonvale::test
