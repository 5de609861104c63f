// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/EssentiaKeyDetector.h"

#include "Platform/Foundation/PlatformError.h"
#include "Support/DetectionFailure.h"
#include "Support/FakeKeyDetection.h"
#include "Support/NamedPipe.h"
#include "Support/PrivateMounts.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <future>
#include <string>

namespace tonvale {
namespace {

using Error = EssentiaKeyDetectorError;
using EssentiaKeyDetector::detectSongDetails;
using test::detectionFailure;
using test::NamedPipe;
using namespace std::chrono_literals;

constexpr const char* song = "/music/song.mp3";  // no helper of these tests opens it
constexpr const char* aMinor = R"({"key": "A", "scale": "minor", "keyConfidence": 0.82})";

/// What a helper gets from us, and how it is run: by the real interpreter.
class EssentiaKeyDetectorLaunch : public ::testing::Test {
protected:
    /// What the helper writes to standard error before it fails.
    std::string reportOf(std::string_view python, const std::filesystem::path& file = song)
    {
        detection.setScript("import os, sys\n" + std::string(python) + "\nsys.exit(1)\n");
        return detectionFailure<Error>(file).errorDescription();
    }

    test::FakeKeyDetection detection;
};

std::string inHexadecimal(std::string_view bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += {digits[value / 16], digits[value % 16]};
    }
    return text;
}

TEST_F(EssentiaKeyDetectorLaunch, RunsTheScriptByTheSystemsInterpreterOnTheSong)
{
    // An interpreter that a search would find first, and that would answer something else.
    const std::filesystem::path decoy = detection.folder() / "python3";
    std::ofstream(decoy) << "#!/bin/sh\necho decoy >&2\nexit 1\n";
    std::filesystem::permissions(decoy, std::filesystem::perms::owner_all);
    const std::string path = std::getenv("PATH");
    ASSERT_EQ(::setenv("PATH", detection.folder().c_str(), 1), 0);
    const std::string report =
        reportOf("sys.stderr.write(open('/proc/self/cmdline').read().replace('\\0', '|'))");
    ASSERT_EQ(::setenv("PATH", path.c_str(), 1), 0);
    EXPECT_EQ(report, "/usr/bin/python3|" + (detection.root() / "detect_key.py").string() + "|"
                          + song + "|");
}

TEST_F(EssentiaKeyDetectorLaunch, ShowsTheHelperTwoVariablesAndNoOther)
{
    ASSERT_EQ(::setenv("TONVALE_TEST_MARK", "ours", 1), 0);
    const std::string report =
        reportOf("sys.stderr.write(open('/proc/self/environ').read().replace('\\0', '|'))");
    ::unsetenv("TONVALE_TEST_MARK");
    EXPECT_EQ(report, "PYTHONPATH=" + (detection.root() / "EssentiaPython").string()
                          + "|PATH=/usr/bin:/bin:/usr/sbin:/sbin|");
}

TEST_F(EssentiaKeyDetectorLaunch, LetsTheHelperFindItsAnalysisPackage)
{
    std::filesystem::create_directory(detection.root() / "EssentiaPython");
    std::ofstream(detection.root() / "EssentiaPython" / "analysis.py") << "answer = 'found'\n";
    EXPECT_EQ(reportOf("sys.dont_write_bytecode = True\nimport analysis\n"
                       "sys.stderr.write(analysis.answer)"),
              "found");
}

TEST_F(EssentiaKeyDetectorLaunch, HandsOverEveryPathAsOneArgumentUnchanged)
{
    for (const std::string path :
         {"/music/two words.mp3", "/music/F\xc3\xbcr \xe6\x97\xa5\xe6\x9c\xac.mp3", "/-c",
          "/music/line\nbreak.mp3", "/--help/song.mp3", "/music/#1 100%25?.mp3", "/music/ .mp3 ",
          "/music/'\"$HOME\\*.mp3", "/music/caf\xe9.mp3", "/music/a/../b//c.mp3"}) {
        EXPECT_EQ(reportOf("for word in sys.argv[1:]:\n"
                           "    sys.stderr.write(os.fsencode(word).hex() + ';')",
                           path),
                  inHexadecimal(path) + ";");
    }
}

TEST_F(EssentiaKeyDetectorLaunch, HandsOverAnAbsolutePathForARelativeOne)
{
    EXPECT_EQ(reportOf("sys.stderr.write(sys.argv[1])", "-c"),
              (std::filesystem::current_path() / "-c").string());
    EXPECT_EQ(detectionFailure<PlatformError>("").errorDescription(), "Invalid argument");
}

TEST_F(EssentiaKeyDetectorLaunch, ReadsAllThatAPipeHolds)
{
    constexpr std::size_t pipeCapacity = 65536;
    const std::string answer = aMinor;
    detection.setScript("import os\nos.write(1, b'" + answer
                        + "'.ljust(65536))\n"
                          "os.write(2, b'e' * 65536)\n");
    EXPECT_EQ(detectSongDetails(song).musicKey(), MusicKey::aMinor);
    EXPECT_EQ(reportOf("os.write(1, b' ' * 65536)\nos.write(2, b'e' * 65536)"),
              std::string(pipeCapacity, 'e'));
}

TEST_F(EssentiaKeyDetectorLaunch, ReadsOnWhileAChildOfTheHelperFinishesTheAnswer)
{
    std::future<DetectedSongDetails> details;
    NamedPipe report(detection.folder() / "report");
    NamedPipe release(detection.folder() / "release");
    detection.setScript(R"(
import os, sys
folder = os.path.dirname(sys.argv[1])
os.write(1, b'{"key": "A", "scale": "minor", ')
if os.fork() == 0:
    open(folder + "/report", "w").write("started\n")
    open(folder + "/release").readline()
    os.write(1, b'"keyConfidence": 0.82}')
os._exit(0)
)");
    details = std::async(std::launch::async, detectSongDetails, detection.folder() / "song.mp3");
    EXPECT_EQ(report.receive(), "started");
    EXPECT_EQ(details.wait_for(0s), std::future_status::timeout);
    release.send("go");
    EXPECT_EQ(details.get().keyConfidence(), 0.82);
}

TEST_F(EssentiaKeyDetectorLaunch, RunsTwoHelpersAtOnce)
{
    std::future<DetectedSongDetails> first;
    std::future<DetectedSongDetails> second;
    NamedPipe report(detection.folder() / "report");
    NamedPipe releaseFirst(detection.folder() / "C.release");
    NamedPipe releaseSecond(detection.folder() / "D.release");
    detection.setScript(R"(
import os, sys
folder, key = os.path.split(sys.argv[1])
open(folder + "/report", "w").write("started\n")
open(sys.argv[1] + ".release").readline()
print('{"key": "%s", "scale": "major", "keyConfidence": 1}' % key)
)");
    first = std::async(std::launch::async, detectSongDetails, detection.folder() / "C");
    second = std::async(std::launch::async, detectSongDetails, detection.folder() / "D");
    EXPECT_EQ(report.receive(), "started");
    EXPECT_EQ(report.receive(), "started");
    releaseSecond.send("go");
    ASSERT_EQ(second.wait_for(30s), std::future_status::ready) << "one waits for the other";
    EXPECT_EQ(second.get().musicKey(), MusicKey::dMajor);
    EXPECT_EQ(first.wait_for(0s), std::future_status::timeout);
    releaseFirst.send("go");
    EXPECT_EQ(first.get().musicKey(), MusicKey::cMajor);
}

TEST_F(EssentiaKeyDetectorLaunch, LooksForTheHelperAnewEachTime)
{
    detection.setAnswer(aMinor);
    EXPECT_EQ(detectSongDetails(song).musicKey(), MusicKey::aMinor);
    detection.setAnswer(R"({"key": "E", "scale": "minor", "keyConfidence": 0.5})");
    EXPECT_EQ(detectSongDetails(song).musicKey(), MusicKey::eMinor);
}

TEST_F(EssentiaKeyDetectorLaunch, FailsInTheSystemsWordsWithoutAnInterpreter)
{
    detection.setAnswer(aMinor);
    const std::filesystem::path text = detection.folder() / "text";
    std::ofstream(text) << "no program";
    const bool isAllowed = test::runWithPrivateMounts([&] {
        test::mountOver("/usr/bin/python3", text);
        EXPECT_EQ(detectionFailure<PlatformError>(song).errorDescription(), "Permission denied");
        std::filesystem::permissions(text, std::filesystem::perms::owner_all);
        EXPECT_EQ(detectionFailure<PlatformError>(song).errorDescription(), "Exec format error");
        test::mountOver("/usr/bin", detection.root());
        EXPECT_EQ(detectionFailure<PlatformError>(song).errorDescription(),
                  "No such file or directory");
    });
    if (!isAllowed) {
        GTEST_SKIP() << "hiding the interpreter takes root";
    }
    EXPECT_EQ(detectSongDetails(song).musicKey(), MusicKey::aMinor);
}

TEST_F(EssentiaKeyDetectorLaunch, TakesTheHelperOfTheSourceTreeWhereNoneIsInstalled)
{
    const auto module = EssentiaKeyDetector::detail::sourceFile().parent_path();
    const std::filesystem::path tree = module.parent_path().parent_path();
    detection.setAnswer(aMinor);
    std::filesystem::create_directory(detection.folder() / "tree");
    std::filesystem::create_directory(detection.folder() / "tree" / "Resources");
    const std::filesystem::path inTree = detection.folder() / "tree/Resources/KeyDetection";
    std::filesystem::rename(detection.root(), inTree);
    const bool isAllowed = test::runWithPrivateMounts([&] {
        test::mountOver(tree, detection.folder() / "tree");
        EXPECT_EQ(detectSongDetails(song).musicKey(), MusicKey::aMinor);
        std::filesystem::remove(inTree / "detect_key.py");
        test::mountOver("/usr/bin/python3", "/dev/null");  // a helper could not be started
        EXPECT_EQ(detectionFailure<Error>(song), Error::missingResources());
    });
    if (!isAllowed) {
        GTEST_SKIP() << "laying a tree of our own over the sources takes root";
    }
}

}  // namespace
}  // namespace tonvale
