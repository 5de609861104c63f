// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "System/RenderProgramFixture.h"

#include <array>
#include <cmath>
#include <fstream>
#include <random>

namespace tonvale {
namespace {

struct Encoding {
    std::string name;
    std::vector<std::string> options;
};

class EveryFormat : public RenderProgram, public ::testing::WithParamInterface<Encoding> {};

INSTANTIATE_TEST_SUITE_P(
    RenderProgram, EveryFormat,
    ::testing::Values(Encoding{"song.mp3", {"-b:a", "192k"}}, Encoding{"vbr.mp3", {"-q:a", "4"}},
                      Encoding{"song.m4a", {"-c:a", "aac", "-b:a", "160k"}},
                      Encoding{"alac.m4a", {"-c:a", "alac"}}, Encoding{"song.flac", {}},
                      Encoding{"song.ogg", {"-c:a", "libvorbis", "-q:a", "5"}},
                      Encoding{"song.opus", {"-c:a", "libopus", "-ar", "48000"}},
                      Encoding{"float.wav", {"-c:a", "pcm_f32le"}},
                      Encoding{"deep.wav", {"-c:a", "pcm_s24le"}}, Encoding{"song.aiff", {}},
                      Encoding{"song.caf", {"-c:a", "pcm_s16le"}}),
    [](const auto& test) {
        std::string name = test.param.name;
        std::ranges::replace(name, '.', '_');
        return name;
    });

TEST_P(EveryFormat, KeepsItsLengthToTheFrame)
{
    makeSong("source.wav");
    std::vector<std::string> arguments{"-i", "source.wav"};
    arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
    arguments.push_back(GetParam().name);
    convert(arguments);
    const ProgramResult result = render({GetParam().name, "--semitones", "3", "-o", "result.wav"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    expectTransposed("result.wav", GetParam().name == "song.opus" ? 48000 : 44100);
}

TEST_F(RenderProgram, SaysInOneSentenceWhyASongCannotBeRead)
{
    const unsigned seed = 7;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::ofstream(in("empty.mp3"));
    std::ofstream(in("text.mp3")) << "This is not a song.\n";
    std::ofstream noise(in("noise.mp3"), std::ios::binary);
    for (int count = 0; count < 100000; ++count) {
        noise.put(static_cast<char>(random()));
    }
    noise.close();
    std::ofstream(in("list.m3u")) << "#EXTM3U\nsong.wav\n";
    std::ofstream(in("list.m3u8")) << "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\nsong.wav\n";
    std::ofstream(in("list.mp3")) << "ffconcat version 1.0\nfile song.wav\n";
    makeSong("song.wav");
    std::filesystem::create_directory(in("folder.wav"));
    convert({"-f", "lavfi", "-i", "testsrc=d=0.2:s=64x64", "-an", "silent.mp4"});
    for (const std::string name : {"missing.wav", "empty.mp3", "text.mp3", "noise.mp3", "list.m3u",
                                   "list.m3u8", "list.mp3", "folder.wav", "silent.mp4"}) {
        const ProgramResult result = render({name, "--semitones", "1", "-o", "out.wav"});
        expectOneSentence(result);
        EXPECT_NE(result.standardError.find("\"" + name + "\""), std::string::npos);
        EXPECT_FALSE(std::filesystem::exists(in("out.wav"))) << name;
    }
}

TEST_F(RenderProgram, ReadsWhatIsLeftOfATruncatedSong)
{
    makeSong("source.wav", 44100 * 4);
    // An M4A with its index at the end cannot be read without it; everything else begins to play
    // as soon as its header is there, and at half its size for certain.
    for (const std::string name : {"a.mp3", "a.m4a", "a.flac", "a.ogg", "a.aiff", "a.wav"}) {
        convert({"-i", "source.wav", name});
        const auto size = std::filesystem::file_size(in(name));
        for (std::uintmax_t tenth = 9; tenth >= 1; --tenth) {
            std::filesystem::resize_file(in(name), size * tenth / 10);
            const ProgramResult result =
                render({name, "--semitones", "1", "-o", "out.wav", "--force"});
            if (name != "a.m4a" && (tenth >= 5 || result.exitStatus == 0)) {
                EXPECT_EQ(result.exitStatus, 0) << name << tenth << result.standardError;
                EXPECT_GT(test::readSong(in("out.wav")).channels[0].size(), 0U) << name << tenth;
            } else {
                expectOneSentence(result);
            }
        }
    }
}

TEST_F(RenderProgram, PlaysOverACorruptMiddle)
{
    makeSong("source.wav", 264600);
    for (const std::string name : {"a.mp3", "a.m4a", "a.flac", "a.ogg"}) {
        convert({"-i", "source.wav", name});
        const auto size = std::filesystem::file_size(in(name));
        std::fstream file(in(name), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(size * 2 / 5));
        file << std::string(static_cast<std::size_t>(size / 10), '\x5A');
        file.close();
        const ProgramResult result = render({name, "--semitones", "1", "-o", "out.wav", "--force"});
        EXPECT_EQ(result.exitStatus, 0) << name << result.standardError;
        const test::Song song = test::readSong(in("out.wav"));
        EXPECT_EQ(song.channels[0].size(), 264600U) << name;
        // Behind the damage it plays on; an MP3 cannot tell how many frames were lost, so all of
        // it comes earlier and silence follows.
        const std::vector<float> behind(song.channels[0].begin() + 165000,
                                        song.channels[0].begin() + 225000);
        const double measured = test::frequencyOf(behind, 44100);
        EXPECT_NEAR(test::centsBetween(440 * std::exp2(1.0 / 12), measured), 0, 2) << name;
    }
}

}  // namespace
}  // namespace tonvale
