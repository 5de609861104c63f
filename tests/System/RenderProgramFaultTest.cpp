// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "System/RenderProgramFixture.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <iterator>
#include <random>
#include <thread>

namespace tonvale {
namespace {

using Calls = std::vector<std::string>;

/// Renders song.wav while something happens to one file; see Support/FaultyFiles.cpp.
class RenderFaults : public RenderProgram {
protected:
    void SetUp() override
    {
        makeSong("song.wav", 20000);
        song = bytesOf("song.wav");
    }

    /// Whatever happened: the song is as it was, and there is nothing new but the result.
    void TearDown() override
    {
        EXPECT_EQ(bytesOf("song.wav"), song);
        for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
            const std::string name = entry.path().filename();
            EXPECT_TRUE(name == "song.wav" || name.starts_with("out.")) << name;
        }
    }

    [[nodiscard]] std::string bytesOf(const std::string& name) const
    {
        std::ifstream file(in(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    [[nodiscard]] std::vector<std::string> arguments(const std::string& output) const
    {
        return {"song.wav", "--semitones", "3", "-o", output, "--force"};
    }

    /// @param what  an errno, "kill" or "trickle"
    [[nodiscard]] ProgramOptions fault(const std::string& file, std::size_t number,
                                       const std::string& what) const
    {
        ProgramOptions options;
        options.prepare = [=, log = (logs.path() / "log").string()] {
            ::setenv("LD_PRELOAD", TONVALE_FAULTY_FILES, 1);
            ::setenv("TONVALE_FAULT_FILE", file.c_str(), 1);
            ::setenv("TONVALE_FAULT_LOG", log.c_str(), 1);
            ::setenv("TONVALE_FAULT_AT", std::to_string(number).c_str(), 1);
            ::setenv("TONVALE_FAULT_WHAT", what.c_str(), 1);
        };
        return options;
    }

    /// What an undisturbed render does with a file.
    Calls callsOn(const std::string& file, const std::string& output)
    {
        std::filesystem::remove(logs.path() / "log");
        EXPECT_EQ(render(arguments(output), fault(file, 0, "")).exitStatus, 0);
        std::ifstream log(logs.path() / "log");
        return {std::istream_iterator<std::string>(log), {}};
    }

    static std::ptrdiff_t count(const Calls& calls, const std::string& call)
    {
        return std::ranges::count(calls, call);
    }

    test::TemporaryFolder logs;
    std::string song;
};

/// Nothing; a file that the render is to replace; or what it had written of the result so far.
enum class Left { nothing, former, beginning, whole };

class OutputFaults : public RenderFaults {
protected:
    static constexpr const char* former = "what was there before";

    void putFormer(const std::string& output) const { std::ofstream(in(output)) << former; }

    /// What a render that came to a bad end has left. Only the sizes in a header may be missing.
    [[nodiscard]] Left leftOf(const std::string& output, const std::string& whole) const
    {
        constexpr std::size_t headerBytes = 4096 + 84;  // the longest, of CAF
        const std::string bytes = bytesOf(output);
        if (!std::filesystem::exists(in(output))) {
            return Left::nothing;
        }
        if (bytes == former || bytes == whole) {
            return bytes == whole ? Left::whole : Left::former;
        }
        EXPECT_LE(bytes.size(), whole.size());
        const std::size_t header = std::min(bytes.size(), headerBytes);
        EXPECT_EQ(bytes.substr(header), whole.substr(header, bytes.size() - header));
        return Left::beginning;
    }
};

TEST_F(OutputFaults, AreToldAtEveryCallThatCanFail)
{
    for (const std::string output : {"out.wav", "out.aiff", "out.caf"}) {
        putFormer(output);
        const Calls calls = callsOn(output, output);
        const std::string whole = bytesOf(output);
        EXPECT_EQ(calls.front(), "unlink");
        EXPECT_EQ(count(calls, "open"), 1);
        EXPECT_GE(count(calls, "write"), 6) << "20000 frames in blocks, and a header";
        EXPECT_EQ(calls.back(), "close");
        for (std::size_t number = 1; number <= calls.size(); ++number) {
            for (const int error : {ENOSPC, EIO}) {
                SCOPED_TRACE(output + ", call " + std::to_string(number) + ", "
                             + calls[number - 1]);
                putFormer(output);
                const ProgramResult result =
                    render(arguments(output), fault(output, number, std::to_string(error)));
                expectOneSentence(result);
                EXPECT_NE(result.standardError.find(std::strerror(error)), std::string::npos)
                    << result.standardError;
                const Left expected = calls[number - 1] == "unlink" ? Left::former
                                      : calls[number - 1] == "open" ? Left::nothing
                                      : number == calls.size()      ? Left::whole
                                                                    : Left::beginning;
                EXPECT_EQ(leftOf(output, whole), expected);
            }
        }
    }
}

TEST_F(OutputFaults, OfAFolderThatMayOnlyBeReadAreTold)
{
    for (const int error : {EROFS, EACCES, EDQUOT}) {
        const ProgramResult result =
            render(arguments("out.wav"), fault("out.wav", 1, std::to_string(error)));
        expectOneSentence(result);
        EXPECT_NE(result.standardError.find(std::strerror(error)), std::string::npos);
        EXPECT_FALSE(std::filesystem::exists(in("out.wav")));
    }
}

TEST_F(OutputFaults, ThatAreOnlySlownessAreNone)
{
    ASSERT_EQ(render(arguments("out.wav")).exitStatus, 0);
    const std::string whole = bytesOf("out.wav");
    for (const std::string file : {"out.wav", "song.wav"}) {
        std::filesystem::remove(in("out.wav"));
        EXPECT_EQ(render(arguments("out.wav"), fault(file, 0, "trickle")).exitStatus, 0);
        EXPECT_EQ(bytesOf("out.wav"), whole) << file;
    }
}

TEST_F(OutputFaults, OfAProgramKilledAtAnyCallHarmNothingElse)
{
    putFormer("out.wav");
    const Calls calls = callsOn("out.wav", "out.wav");
    const std::string whole = bytesOf("out.wav");
    for (std::size_t number = 1; number <= calls.size(); ++number) {
        SCOPED_TRACE("before call " + std::to_string(number) + ", " + calls[number - 1]);
        putFormer("out.wav");
        EXPECT_EQ(render(arguments("out.wav"), fault("out.wav", number, "kill")).signalNumber,
                  SIGKILL);
        const Left expected = number == 1                   ? Left::former
                              : calls[number - 1] == "open" ? Left::nothing
                              : number == calls.size()      ? Left::whole
                                                            : Left::beginning;
        EXPECT_EQ(leftOf("out.wav", whole), expected);
        EXPECT_EQ(bytesOf("song.wav"), song);
    }
}

TEST_F(OutputFaults, OfAProgramKilledAtAnyMomentHarmNothingElse)
{
    const auto seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::cout << "seed " << seed << '\n';
    std::mt19937 random(seed);
    makeSong("song.wav", 100000);
    song = bytesOf("song.wav");
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(render(arguments("out.wav")).exitStatus, 0);
    const std::chrono::duration<double> usual = std::chrono::steady_clock::now() - start;
    const std::string whole = bytesOf("out.wav");
    std::uniform_real_distribution<double> moments(0, 1.05 * usual.count());
    std::array<int, 4> outcomes{};
    for (int round = 0; round < 100; ++round) {
        putFormer("out.wav");
        ProgramOptions options;
        options.folder = folder.path();
        std::vector<std::string> command = arguments("out.wav");
        command.insert(command.begin(), TONVALE_RENDER);
        test::RunningProgram program(command, options);
        std::this_thread::sleep_for(std::chrono::duration<double>(moments(random)));
        program.sendSignal(SIGKILL);
        const ProgramResult result = program.wait();
        ASSERT_TRUE(result.signalNumber == SIGKILL || result.exitStatus == 0);
        const Left left = leftOf("out.wav", whole);
        ++outcomes.at(static_cast<std::size_t>(left));
        if (result.exitStatus == 0) {
            EXPECT_EQ(left, Left::whole) << "round " << round;
        }
        ASSERT_EQ(bytesOf("song.wav"), song) << "round " << round;
    }
    EXPECT_GT(outcomes[static_cast<std::size_t>(Left::former)], 0);
    EXPECT_GT(outcomes[static_cast<std::size_t>(Left::beginning)], 0);
    ASSERT_EQ(render(arguments("out.wav")).exitStatus, 0);
    EXPECT_EQ(bytesOf("out.wav"), whole);
}

using SongFaults = RenderFaults;

TEST_F(SongFaults, AreToldAtEveryCallThatCanFail)
{
    const Calls calls = callsOn("song.wav", "out.wav");
    EXPECT_GE(count(calls, "read"), 3);
    int told = 0;
    for (std::size_t number = 1; number <= calls.size(); ++number) {
        SCOPED_TRACE("call " + std::to_string(number) + ", " + calls[number - 1]);
        const ProgramResult result =
            render(arguments("out.wav"), fault("song.wav", number, std::to_string(EIO)));
        if (calls[number - 1] == "close") {
            EXPECT_EQ(result.exitStatus, 0) << "all was read";
            continue;
        }
        expectOneSentence(result);
        EXPECT_NE(result.standardError.find("Input/output error"), std::string::npos);
        ++told;
    }
    EXPECT_GT(told, 3);
}

}  // namespace
}  // namespace tonvale
