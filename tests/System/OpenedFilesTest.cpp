// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/MusicFixtures.h"
#include "System/RenderProgramFixture.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <regex>
#include <string_view>

namespace tonvale {
namespace {

using test::MusicFixtures;

/// What a program asked the system for, and all those that it started.
struct Traces {
    std::set<std::string> opened;       ///< files, as they were named
    std::vector<std::string> executed;  ///< programs, in their order
    std::vector<std::string> network;   ///< calls that have to do with sockets
};

/// Under strace(1), which sees every call whoever makes it.
class OpenedFiles : public RenderProgram {
protected:
    void SetUp() override
    {
        if (test::runProgram({"strace", "-o", "/dev/null", "true"}).exitStatus != 0) {
            GTEST_SKIP() << "strace cannot watch programs here";
        }
    }

    Traces trace(std::vector<std::string> arguments)
    {
        const std::string log = logs.path() / "log";
        arguments.insert(arguments.begin(),
                         {"strace", "--follow-forks", "--seccomp-bpf", "--string-limit=4096",
                          "--trace=%file,%network,execve,execveat", "--output=" + log,
                          TONVALE_RENDER});
        ProgramOptions options;
        options.folder = folder.path();
        result = test::runProgram(arguments, options);
        return read(log);
    }

    static Traces read(const std::string& log)
    {
        static const std::regex call(R"re(^\d+ +(\w+)\((?:AT_FDCWD, |\d+, )?(?:"([^"]*)")?.*)re");
        static const std::set<std::string> opening{"open", "openat", "openat2", "creat"};
        static const std::set<std::string> others{
            "access", "chdir",      "faccessat", "faccessat2", "getcwd", "lstat",
            "mkdir",  "newfstatat", "readlink",  "readlinkat", "rename", "stat",
            "statfs", "statx",      "unlink",    "unlinkat"};
        Traces traces;
        std::ifstream file(log);
        std::smatch match;
        for (std::string line; std::getline(file, line);) {
            if (!std::regex_match(line, match, call)) {
                continue;  // a process ended, or the rest of a call that took a while
            }
            if (opening.contains(match[1])) {
                traces.opened.insert(match[2]);
            } else if (match[1] == "execve" || match[1] == "execveat") {
                traces.executed.push_back(match[2]);
            } else if (!others.contains(match[1]) && !isAboutUserNames(line)) {
                traces.network.push_back(line);
            }
        }
        return traces;
    }

    /// The C library asks a cache of its own about users, where that runs; it knows nothing of
    /// songs.
    static bool isAboutUserNames(const std::string& line)
    {
        return line.find("socket(AF_UNIX") != std::string::npos
               || line.find("/nscd/socket") != std::string::npos;
    }

    /// The opened ones that are none of the system's.
    static std::set<std::string> ownFiles(std::set<std::string> opened)
    {
        std::erase_if(opened, [](const std::string& file) {
            constexpr std::string_view systems[] = {"/dev/null", "/dev/urandom", "/etc/", "/lib/",
                                                    "/lib64/",   "/proc/",       "/sys/", "/usr/"};
            return std::ranges::any_of(
                systems, [&](std::string_view system) { return file.starts_with(system); });
        });
        return opened;
    }

    void expectNoOther(const std::vector<std::string>& arguments)
    {
        SCOPED_TRACE(::testing::PrintToString(arguments));
        const Traces traces = trace(arguments);
        for (const std::string& file : traces.opened) {
            EXPECT_EQ(file.find("other"), std::string::npos) << file;
        }
        EXPECT_EQ(traces.network, std::vector<std::string>{});
        expectOneSentence(result);
    }

    void write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(in(name), std::ios::binary) << bytes;
    }

    test::TemporaryFolder logs;
    ProgramResult result;
};

TEST_F(OpenedFiles, OfARenderAreTheSongAndTheResult)
{
    makeSong("song.wav");
    makeSong("other.wav");
    const Traces traces = trace({"song.wav", "--semitones", "1", "-o", "out.wav"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    EXPECT_EQ(ownFiles(traces.opened), (std::set<std::string>{"song.wav", "out.wav"}));
    EXPECT_EQ(traces.executed, std::vector<std::string>{TONVALE_RENDER});
    EXPECT_EQ(traces.network, std::vector<std::string>{});
}

TEST_F(OpenedFiles, OfADetectionAreTheSongAndTheHelper)
{
    makeDemoTune("song.mp3");
    const Traces traces = trace({"--detect", "song.mp3"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    std::set<std::string> own = ownFiles(traces.opened);
    std::erase_if(own, [](const std::string& file) {
        return file.starts_with(TONVALE_SOURCES "/native/Resources/KeyDetection");
    });
    std::set<std::string> names;
    for (const std::string& file : own) {
        names.insert(std::filesystem::path(file).filename());
    }
    EXPECT_EQ(names, std::set<std::string>{"song.mp3"}) << ::testing::PrintToString(own);
    ASSERT_EQ(traces.executed.size(), 3U) << ::testing::PrintToString(traces.executed);
    EXPECT_EQ(traces.executed[1], "/usr/bin/python3");
    EXPECT_EQ(traces.executed[2], "/usr/bin/ffmpeg");
    EXPECT_EQ(traces.network, std::vector<std::string>{});
}

std::string bigEndian(std::uint64_t value, int count)
{
    std::string bytes;
    for (int shift = 8 * (count - 1); shift >= 0; shift -= 8) {
        bytes += static_cast<char>(value >> shift);
    }
    return bytes;
}

/// A movie whose sound is said to lie in another file.
std::string movieWithExternalSound(const std::string& absolute, const std::string& relative)
{
    const auto song = test::readBytes(MusicFixtures::shared().file(test::musicFormat("m4aAac")));
    std::string movie(song.begin(), song.end());
    const std::string folders = bigEndian(1, 2) + bigEndian(1, 2);  // levels up, levels down
    const std::string path = bigEndian(2, 2) + bigEndian(absolute.size(), 2) + absolute
                             + std::string(absolute.size() % 2, '\0');
    std::string alias = bigEndian(0, 4) + std::string(10, '\0') + std::string(1, '\4') + "disk"
                        + std::string(23, '\0') + std::string(12, '\0')
                        + std::string(1, static_cast<char>(relative.size())) + relative
                        + std::string(63 - relative.size(), '\0') + std::string(16, '\0') + folders
                        + std::string(16, '\0') + path + bigEndian(0xFFFF, 2) + bigEndian(0, 2);
    const std::string entry = bigEndian(alias.size() + 8, 4) + "alis" + alias;
    constexpr std::size_t formerEntry = 12;  // "url ", the file itself
    for (const std::string box : {"moov", "trak", "mdia", "minf", "dinf", "dref"}) {
        const std::size_t size = movie.find(box) - 4;
        std::uint64_t old = 0;
        for (std::size_t place = size; place < size + 4; ++place) {
            old = old << 8U | static_cast<unsigned char>(movie[place]);
        }
        movie.replace(size, 4, bigEndian(old + entry.size() - formerEntry, 4));
    }
    return movie.replace(movie.find("dref") + 12, formerEntry, entry);
}

TEST_F(OpenedFiles, AreNeverThoseThatAFileNames)
{
    makeSong("other.wav");
    std::filesystem::copy_file(in("other.wav"), in("other.mp3"));
    const std::string path = in("other.wav");
    const std::string hls = "#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXT-X-MEDIA-SEQUENCE:0\n";
    const std::vector<std::pair<std::string, std::string>> files{
        {"plain.mp3", "#EXTM3U\nother.mp3\n"},
        {"hls.mp3", hls + "#EXTINF:10,\nother.mp3\n#EXT-X-ENDLIST\n"},
        {"web.mp3", hls + "#EXTINF:10,\nhttp://127.0.0.1:9/x.mp3\n#EXT-X-ENDLIST\n"},
        {"key.mp3",
         hls + "#EXT-X-KEY:METHOD=AES-128,URI=\"http://127.0.0.1:9/\"\n#EXTINF:9,\nother.mp3\n"},
        {"concat.mp3", "ffconcat version 1.0\nfile other.wav\n"},
        {"dash.mp4", "<?xml version=\"1.0\"?><MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\"></MPD>"},
        {"session.wav", "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\n"
                        "m=audio 5004 RTP/AVP 0\n"},
        {"frames%d.wav", "RIFF"},
        {"movie.m4a", movieWithExternalSound(path, "other.wav")},
        {"http:x.mp3", "nothing"},
    };
    for (const auto& [name, bytes] : files) {
        write(name, bytes);
        expectNoOther({name, "--semitones", "1", "-o", "out.wav", "--force"});
    }
    for (const std::string name : {"hls.mp3", "web.mp3", "concat.mp3", "movie.m4a"}) {
        expectNoOther({"--detect", name});
    }
}

}  // namespace
}  // namespace tonvale
