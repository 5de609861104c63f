// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/SoundTest.h"
#include "Platform/Foundation/LocalizedError.h"
#include "Support/ProcessState.h"

#include <chrono>
#include <thread>

namespace tonvale::test {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using SoundServerTest = SoundTest;

/// What start() says, or nothing when it succeeds.
std::string errorOf(AudioOutput& output, AudioOutputSource& source)
{
    try {
        output.start(source);
    } catch (const LocalizedError& error) {
        return error.errorDescription();
    }
    return {};
}

TEST(SoundServerMissingTest, StartSaysSoAtOnceAndQuietly)
{
    const PulseServer nobody(48000, false);
    ToneSource source;
    const auto output = AudioOutput::create();
    testing::internal::CaptureStderr();
    const auto begin = Clock::now();
    EXPECT_EQ(errorOf(*output, source), "Connection refused");
    EXPECT_LT(Clock::now() - begin, 1s);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(output->isRunning());
    output->setTitle("still nobody");
    output->discardQueued();
    output->framesReady();
}

TEST_F(SoundServerTest, HungServerIsGivenUpWithinThreeSeconds)
{
    server.freeze();
    const auto begin = Clock::now();
    EXPECT_EQ(errorOf(*output, source), "Timeout");
    EXPECT_LT(Clock::now() - begin, 3s);

    const auto end = Clock::now();
    output.reset();
    EXPECT_LT(Clock::now() - end, 1s);
}

TEST_F(SoundServerTest, ServerThatHangsWhilePlayingHoldsNobodyUp)
{
    output->start(source);
    play(997);
    ASSERT_TRUE(eventually([this] { return source.given() > 9600; }));
    server.freeze();
    const auto begin = Clock::now();
    stop();
    output->setTitle("hung");
    play(1501);
    output.reset();
    EXPECT_LT(Clock::now() - begin, 1s);
}

TEST_F(SoundServerTest, KilledServerIsNoticedAndTheNextStartOpensAnew)
{
    output->start(source);
    play(997);
    ASSERT_TRUE(eventually([this] { return source.given() > 9600; }));
    server.kill();
    ASSERT_TRUE(eventually([this] { return !output->isRunning(); }));
    stop();
    play(997);
    EXPECT_EQ(errorOf(*output, source), "Connection refused");

    ASSERT_TRUE(server.start());
    source.offer(0);
    output->start(source);
    EXPECT_TRUE(output->isRunning());
    Recorder recorder;
    play(1501, 9600);
    EXPECT_TRUE(recorder.waitForSound(isSounding));
    EXPECT_TRUE(recorder.waitForSilence());
    EXPECT_EQ(source.given(), 9600);
}

TEST_F(SoundServerTest, StreamThatTheServerEndsIsLost)
{
    output->start(source);
    play(997);
    ASSERT_TRUE(eventually([this] { return source.given() > 9600; }));
    static_cast<void>(PulseServer::control({"unload-module", "module-null-sink"}));
    EXPECT_TRUE(eventually([this] { return !output->isRunning(); })) << "no device is left";
}

TEST_F(SoundServerTest, StreamGoesOnAtAnotherDeviceWhenItsOwnIsRemoved)
{
    static_cast<void>(PulseServer::control({"load-module", "module-null-sink", "sink_name=other"}));
    static_cast<void>(PulseServer::control({"set-default-sink", "other"}));
    output->start(source);
    play(997);
    ASSERT_TRUE(eventually([this] { return source.given() > 9600; }));
    Recorder recorder;  // at the device that stays
    const std::string modules = PulseServer::control({"list", "short", "modules"});
    const std::size_t line = modules.rfind('\n', modules.find("sink_name=other")) + 1;
    static_cast<void>(PulseServer::control(
        {"unload-module", modules.substr(line, modules.find('\t', line) - line)}));
    EXPECT_TRUE(recorder.waitForSound(isSounding));
    EXPECT_TRUE(output->isRunning());
    stop();
    EXPECT_TRUE(recorder.waitForSilence());
}

TEST_F(SoundServerTest, OutputsComeAndGoWithoutATrace)
{
    const auto open = [this] {
        const auto another = AudioOutput::create();
        another->start(source);
    };
    open();  // the library keeps a little for good
    const auto descriptors = openDescriptors().size();
    for (int round = 0; round < 20; ++round) {
        open();
    }
    EXPECT_EQ(openDescriptors().size(), descriptors);
}

}  // namespace

}  // namespace tonvale::test
