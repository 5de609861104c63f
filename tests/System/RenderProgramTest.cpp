// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/Program.h"
#include "Support/Songs.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sched.h>
#include <sys/inotify.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tonvale {
namespace {

using test::ProgramOptions;
using test::ProgramResult;

constexpr double minorThird = 1.189207115;  // the ratio of three semitones

/// Blocks until a file of this name appears in the folder.
void waitForFile(const std::filesystem::path& folder, const std::string& name,
                 const std::function<void()>& start)
{
    const int watch = ::inotify_init1(IN_CLOEXEC);
    ASSERT_GE(::inotify_add_watch(watch, folder.c_str(), IN_CREATE), 0);
    start();
    alignas(inotify_event) std::array<char, 4096> events{};
    for (bool isThere = false; !isThere;) {
        const ssize_t count = ::read(watch, events.data(), events.size());
        ASSERT_GT(count, 0);
        const std::string_view text(events.data(), static_cast<std::size_t>(count));
        isThere = text.find(name) != std::string_view::npos;
    }
    ::close(watch);
}

class RenderProgram : public ::testing::Test {
protected:
    [[nodiscard]] std::filesystem::path in(const std::string& name) const
    {
        return folder.path() / name;
    }

    /// Runs the renderer in the test's folder.
    ProgramResult render(std::vector<std::string> arguments, ProgramOptions options = {}) const
    {
        arguments.insert(arguments.begin(), TONVALE_RENDER);
        options.folder = folder.path();
        return test::runProgram(arguments, options);
    }

    /// A second of music, 440 Hz on the left and 660 Hz on the right.
    void makeSong(const std::string& name, std::size_t frames = 44100) const
    {
        test::writeSong(in(name), 44100, test::tones({440, 660}, 44100, frames));
    }

    void convert(const std::vector<std::string>& arguments) const
    {
        std::vector<std::string> words{"ffmpeg", "-nostdin", "-loglevel", "error", "-y"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        ProgramOptions options;
        options.folder = folder.path();
        const ProgramResult result = test::runProgram(words, options);
        ASSERT_EQ(result.exitStatus, 0) << result.standardError;
    }

    void expectTransposed(const std::string& name, std::size_t frames) const
    {
        const test::Song song = test::readSong(in(name));
        ASSERT_EQ(song.channels.size(), 2U);
        EXPECT_EQ(song.channels[0].size(), frames);
        const double rate = song.format.sampleRate;
        const double left = test::frequencyOf(song.channels[0], rate);
        const double right = test::frequencyOf(song.channels[1], rate);
        EXPECT_NEAR(test::centsBetween(440 * minorThird, left), 0, 1);
        EXPECT_NEAR(test::centsBetween(660 * minorThird, right), 0, 1);
    }

    /// Exit status 1, one line on standard error, and no word of anything saved.
    static void expectOneSentence(const ProgramResult& result)
    {
        EXPECT_EQ(result.exitStatus, 1) << result.standardError;
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_TRUE(result.standardError.starts_with("tonvale-render: ")) << result.standardError;
        EXPECT_EQ(std::ranges::count(result.standardError, '\n'), 1) << result.standardError;
        EXPECT_TRUE(result.standardError.ends_with("\n"));
    }

    test::TemporaryFolder folder;
};

TEST_F(RenderProgram, TurnsASongIntoANewKeyAndSaysWhereItIs)
{
    makeSong("Night Song.wav");
    const ProgramResult result = render({"Night Song.wav", "--from", "C", "--to", "Eb"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    EXPECT_EQ(result.standardOutput, "Saved \"Night Song - Key of Eb.wav\"\n");
    EXPECT_EQ(result.standardError, "");
    expectTransposed("Night Song - Key of Eb.wav", 44100);
}

TEST_F(RenderProgram, NamesItsOutputAfterSemitonesAndCents)
{
    makeSong("song.wav", 2000);
    EXPECT_EQ(render({"song.wav", "--semitones", "3"}).exitStatus, 0);
    EXPECT_EQ(render({"song.wav", "--cents", "-150", "--quiet"}).standardOutput, "");
    EXPECT_TRUE(std::filesystem::exists(in("song (+3 semitones).wav")));
    EXPECT_TRUE(std::filesystem::exists(in("song (-150 cents).wav")));
}

TEST_F(RenderProgram, WritesOtherContainersWhereAskedTo)
{
    makeSong("song.wav", 9000);
    for (const std::string name : {"a.aif", "a.aiff", "a.caf", "a.WAV"}) {
        EXPECT_EQ(render({"song.wav", "--semitones", "3", "-o", name}).exitStatus, 0) << name;
        EXPECT_EQ(test::readSong(in(name)).channels[0].size(), 9000U) << name;
    }
}

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

class Detection : public RenderProgram {
protected:
    void SetUp() override
    {
        const std::string maker = TONVALE_SOURCES "/scripts/make-demo-tune";
        ASSERT_EQ(test::runProgram({maker, in("tune.wav").string()}).exitStatus, 0);
    }
};

TEST_F(Detection, PrintsTheKeyAndTheTempoOfASongInTwoLines)
{
    const ProgramResult result = render({"tune.wav", "--detect"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    EXPECT_TRUE(result.standardOutput.starts_with("Key  : C major - Confidence "));
    EXPECT_NE(result.standardOutput.find("%\nTempo  : "), std::string::npos);
    EXPECT_EQ(std::ranges::count(result.standardOutput, '\n'), 2) << result.standardOutput;
}

TEST_F(Detection, TakesThePlaceOfTheRecordedKey)
{
    const ProgramResult result = render({"tune.wav", "--detect", "--to", "Eb"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    EXPECT_TRUE(result.standardOutput.ends_with("Saved \"tune - Key of Eb.wav\"\n"));
    EXPECT_EQ(render({"tune.wav", "--semitones", "3", "--quiet"}).exitStatus, 0);
    EXPECT_EQ(test::readSong(in("tune - Key of Eb.wav")).channels,
              test::readSong(in("tune (+3 semitones).wav")).channels);
}

TEST_F(Detection, SaysWhyASongCannotBeListenedTo)
{
    std::ofstream(in("text.mp3")) << "This is not a song.\n";
    expectOneSentence(render({"text.mp3", "--detect"}));
    expectOneSentence(render({"missing.mp3", "--detect", "--to", "C"}));
}

TEST_F(RenderProgram, AnswersHelpAndVersion)
{
    const ProgramResult help = render({"--help"});
    EXPECT_EQ(help.exitStatus, 0);
    EXPECT_TRUE(help.standardOutput.starts_with("Usage: tonvale-render INPUT"));
    const ProgramResult version = render({"--version"});
    EXPECT_EQ(version.exitStatus, 0);
    EXPECT_EQ(version.standardOutput, "tonvale-render " TONVALE_VERSION "\n");
}

TEST_F(RenderProgram, AnswersWrongUseByStatusTwo)
{
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{},
                                               {"a.wav"},
                                               {"a.wav", "--semitones", "7"},
                                               {"a.wav", "--from", "H", "--to", "C"},
                                               {"a.wav", "--louder"},
                                               {"a.wav", "b.wav", "--cents", "1"}}) {
        const ProgramResult result = render(arguments);
        EXPECT_EQ(result.exitStatus, 2);
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_EQ(std::ranges::count(result.standardError, '\n'), 1) << result.standardError;
    }
}

TEST_F(RenderProgram, ReplacesAnOutputOnlyByForce)
{
    makeSong("song.wav", 2000);
    makeSong("result.wav", 10);
    const std::vector<std::string> arguments{"song.wav", "--cents", "1", "-o", "result.wav"};
    expectOneSentence(render(arguments));
    EXPECT_EQ(test::readSong(in("result.wav")).channels[0].size(), 10U);
    std::vector<std::string> forced = arguments;
    forced.push_back("--force");
    EXPECT_EQ(render(forced).exitStatus, 0);
    EXPECT_EQ(test::readSong(in("result.wav")).channels[0].size(), 2000U);
}

TEST_F(RenderProgram, NeverTouchesTheSongItselfNorADevice)
{
    makeSong("song.wav", 2000);
    std::filesystem::create_hard_link(in("song.wav"), in("link.wav"));
    std::filesystem::create_symlink("/dev/null", in("device.wav"));
    for (const std::string output : {"song.wav", "./song.wav", "link.wav", "device.wav"}) {
        expectOneSentence(render({"song.wav", "--cents", "1", "-o", output, "--force"}));
    }
    EXPECT_EQ(test::readSong(in("song.wav")).channels[0].size(), 2000U);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_TRUE(std::filesystem::is_symlink(in("device.wav")));
}

TEST_F(RenderProgram, TakesAnyNameThatAFileCanHave)
{
    for (const std::string name :
         {"with blanks.wav", "F#.wav", "100%.wav", "it's \"quoted\".wav", "two\nlines.wav",
          "Gr\xC3\xBC\xC3\x9F"
          "e \xE6\xAD\x8C.wav",
          "\xFF\xFE not utf-8.wav", "-dash.wav", "a:b.wav", "http:song.wav", "concat:song.wav",
          ".hidden.wav"}) {
        makeSong(name, 1500);
        const ProgramResult result = render({"--semitones", "1", "-o", "out.wav", "--", name});
        EXPECT_EQ(result.exitStatus, 0) << name << ": " << result.standardError;
        EXPECT_EQ(test::readSong(in("out.wav")).channels[0].size(), 1500U) << name;
        std::filesystem::remove(in("out.wav"));
        EXPECT_EQ(render({"--from", "C", "--to", "Db", "--", name}).exitStatus, 0) << name;
        const std::string stem = name.substr(0, name.rfind('.'));
        EXPECT_TRUE(std::filesystem::exists(in(stem + " - Key of C#.wav"))) << name;
    }
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

TEST_F(RenderProgram, SaysWhyItCannotWrite)
{
    makeSong("song.wav", 2000);
    for (const std::string output : {"/proc/out.wav", "/sys/out.wav", "missing/out.wav"}) {
        expectOneSentence(render({"song.wav", "--cents", "1", "-o", output}));
    }
}

TEST_F(RenderProgram, NeverCallsAFileSavedThatIsNotWhole)
{
    makeSong("song.wav", 44100);
    // From nothing at all to just under the 176,444 bytes that the whole file takes.
    for (const rlim_t bytes : {0UL, 43UL, 44UL, 100000UL, 176443UL}) {
        ProgramOptions options;
        options.prepare = [bytes] {
            const rlimit limit{bytes, bytes};
            ::setrlimit(RLIMIT_FSIZE, &limit);
        };
        const ProgramResult result =
            render({"song.wav", "--cents", "1", "-o", "out.wav", "--force"}, options);
        expectOneSentence(result);
        EXPECT_NE(result.standardError.find("File too large"), std::string::npos);
    }
}

TEST_F(RenderProgram, ReportsAFullDisk)
{
    makeSong("song.wav", 44100);
    std::filesystem::create_directory(in("disk"));
    constexpr int couldNotMount = 77;
    ProgramOptions options;
    options.prepare = [disk = in("disk").string()] {
        if (::unshare(CLONE_NEWNS) != 0
            || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0
            || ::mount("none", disk.c_str(), "tmpfs", 0, "size=64k") != 0) {
            ::_exit(couldNotMount);
        }
    };
    const ProgramResult result =
        render({"song.wav", "--cents", "1", "-o", "disk/out.wav"}, options);
    if (result.exitStatus == couldNotMount) {
        GTEST_SKIP() << "mounting a small disk needs root";
    }
    expectOneSentence(result);
    EXPECT_NE(result.standardError.find("No space left on device"), std::string::npos);
}

class Interrupted : public RenderProgram, public ::testing::WithParamInterface<int> {
protected:
    /// Three hours of silence that take no room on the disk: still rendering when the signal comes.
    void makeLongSong() const
    {
        makeSong("song.wav", 0);
        std::fstream header(in("song.wav"), std::ios::in | std::ios::out | std::ios::binary);
        header.seekp(40);
        constexpr std::uint32_t dataBytes = 3U * 3600 * 44100 * 4;
        for (int byte = 0; byte < 4; ++byte) {
            header.put(static_cast<char>(dataBytes >> (8 * byte)));
        }
        header.close();
        std::filesystem::resize_file(in("song.wav"), 44 + std::uintmax_t{dataBytes});
    }

    /// Starts a render and returns when its output is there.
    void start(std::optional<test::RunningProgram>& program)
    {
        ProgramOptions options;
        options.folder = folder.path();
        waitForFile(folder.path(), "out.wav", [&] {
            program.emplace(std::vector<std::string>{TONVALE_RENDER, "song.wav", "--semitones", "1",
                                                     "-o", "out.wav"},
                            options);
        });
    }
};

INSTANTIATE_TEST_SUITE_P(RenderProgram, Interrupted, ::testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_P(Interrupted, RemovesItsUnfinishedOutputAndDiesOfTheSignal)
{
    makeLongSong();
    std::optional<test::RunningProgram> program;
    start(program);
    // Terminals and timeouts often send the signal twice.
    program->sendSignal(GetParam());
    program->sendSignal(GetParam());
    const ProgramResult result = program->wait();
    EXPECT_EQ(result.signalNumber, GetParam());
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_FALSE(std::filesystem::exists(in("out.wav")));
    EXPECT_TRUE(std::filesystem::exists(in("song.wav")));
}

TEST_F(RenderProgram, TellsThatItsOutputWasDeletedMeanwhile)
{
    makeSong("song.wav", 44100 * 60);
    ProgramOptions options;
    options.folder = folder.path();
    std::optional<test::RunningProgram> program;
    waitForFile(folder.path(), "out.wav", [&] {
        program.emplace(std::vector<std::string>{TONVALE_RENDER, "song.wav", "--semitones", "1",
                                                 "-o", "out.wav"},
                        options);
    });
    std::filesystem::remove(in("out.wav"));
    const ProgramResult result = program->wait();
    expectOneSentence(result);
    EXPECT_NE(result.standardError.find("No such file or directory"), std::string::npos);
}

TEST_F(RenderProgram, TellsThatItCouldNotSpeak)
{
    ProgramOptions options;
    options.prepare = [] { ::dup2(::open("/dev/full", O_WRONLY), STDOUT_FILENO); };
    EXPECT_EQ(render({"--help"}, options).exitStatus, 1);
}

TEST_F(RenderProgram, DrawsItsProgressOnATerminalOnly)
{
    makeSong("song.wav", 44100 * 60);
    // script(1) gives the program a terminal and copies what it draws.
    const ProgramResult result = test::runProgram(
        {"script", "--quiet", "--return", "--command",
         std::string(TONVALE_RENDER) + " song.wav --semitones 1 -o out.wav", "/dev/null"},
        {folder.path(), [] {}});
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_NE(result.standardOutput.find(" %  0:"), std::string::npos) << result.standardOutput;
    EXPECT_NE(result.standardOutput.find("Saved \"out.wav\""), std::string::npos);
}

}  // namespace
}  // namespace tonvale
