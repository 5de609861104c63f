// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/AudioEngine.h"

#include "Platform/Foundation/PlatformError.h"
#include "Support/SignalNode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace tonvale {
namespace {

using test::Signal;
using test::SignalNode;
using Status = AudioEngineManualRenderingStatus;
constexpr auto offline = AudioEngineManualRenderingMode::offline;
constexpr AudioFormat mono{44100, 1};

Signal ramp(std::size_t frames)
{
    Signal signal(frames);
    for (std::size_t frame = 0; frame < frames; ++frame) {
        signal[frame] = static_cast<float>(frame) / static_cast<float>(frames);
    }
    return signal;
}

Signal renderThrough(const Signal& signal, std::size_t frameCount, std::uint32_t blockFrames)
{
    SignalNode source(signal);
    AudioEngine engine;
    engine.attach(source);
    engine.connect(source, engine.mainMixerNode(), mono);
    engine.enableManualRenderingMode(offline, mono, blockFrames);
    engine.start();
    const auto buffer = AudioPCMBuffer::create(mono, blockFrames);
    Signal result;
    while (result.size() < frameCount) {
        const auto frames = static_cast<std::uint32_t>(
            std::min<std::size_t>(blockFrames, frameCount - result.size()));
        EXPECT_EQ(engine.renderOffline(frames, *buffer), Status::success);
        EXPECT_EQ(buffer->frameLength(), frames);
        result.insert(result.end(), buffer->channel(0).begin(),
                      buffer->channel(0).begin() + frames);
        EXPECT_EQ(engine.manualRenderingSampleTime(), static_cast<std::int64_t>(result.size()));
    }
    return result;
}

TEST(AudioEngine, GivesItsSourceBackFrameForFrameAndSilenceAfterIt)
{
    const Signal signal = ramp(3000);
    Signal expected = signal;
    expected.resize(5000);
    for (const std::uint32_t blockFrames : {1U, 100U, 4096U}) {
        EXPECT_EQ(renderThrough(signal, 5000, blockFrames), expected) << blockFrames;
    }
}

TEST(AudioEngine, KeepsWhatItsNodesOvershootWithinFullScale)
{
    Signal loud(20000);
    for (std::size_t frame = 0; frame < loud.size(); ++frame) {
        loud[frame] = 1.4F * std::sin(0.05F * static_cast<float>(frame));
    }
    for (const float sample : renderThrough(loud, loud.size(), 512)) {
        ASSERT_LT(std::abs(sample), 1.0F);
    }
}

TEST(AudioEngine, RendersNothingWhileItStandsStill)
{
    AudioEngine engine;
    engine.enableManualRenderingMode(offline, mono, 64);
    const auto buffer = AudioPCMBuffer::create(mono, 64);
    EXPECT_FALSE(engine.isRunning());
    EXPECT_EQ(engine.renderOffline(64, *buffer), Status::cannotDoInCurrentContext);
    engine.start();
    EXPECT_TRUE(engine.isRunning());
    EXPECT_EQ(engine.renderOffline(64, *buffer), Status::success);
    engine.stop();
    EXPECT_EQ(engine.renderOffline(64, *buffer), Status::cannotDoInCurrentContext);
    EXPECT_EQ(engine.manualRenderingSampleTime(), 64);
}

TEST(AudioEngine, RendersSmallBlocksIntoALargeBuffer)
{
    const Signal signal = ramp(2000);
    SignalNode source(signal);
    AudioEngine engine;
    engine.attach(source);
    engine.connect(source, engine.mainMixerNode(), mono);
    engine.enableManualRenderingMode(offline, mono, 64);
    engine.start();
    const auto buffer = AudioPCMBuffer::create(mono, 4096);
    for (std::size_t frame = 0; frame + 64 <= signal.size(); frame += 64) {
        ASSERT_EQ(engine.renderOffline(64, *buffer), Status::success);
        ASSERT_EQ(buffer->channel(0)[63], signal[frame + 63]);
    }
}

TEST(AudioEngine, RefusesFormatsThatItCannotRender)
{
    for (const AudioFormat& format :
         {AudioFormat{0, 2}, AudioFormat{-1, 2}, AudioFormat{std::nan(""), 2},
          AudioFormat{44100, 0}, AudioFormat{44100, 65}}) {
        AudioEngine engine;
        EXPECT_THROW(engine.enableManualRenderingMode(offline, format, 64), PlatformError);
    }
}

TEST(AudioEngine, RefusesToRenderInAnotherFormatThanItsConnections)
{
    SignalNode source(ramp(10));
    AudioEngine engine;
    engine.attach(source);
    engine.connect(source, engine.mainMixerNode(), AudioFormat{48000, 1});
    EXPECT_THROW(engine.enableManualRenderingMode(offline, mono, 64), PlatformError);
}

TEST(AudioEngine, ForgetsTheFormatsOfConnectionsThatAreNoMore)
{
    SignalNode source(ramp(10));
    AudioEngine engine;
    engine.attach(source);
    engine.connect(source, engine.mainMixerNode(), AudioFormat{48000, 1});
    engine.connect(source, engine.mainMixerNode(), mono);
    EXPECT_NO_THROW(engine.enableManualRenderingMode(offline, mono, 64));
    {
        SignalNode other(ramp(10));
        engine.attach(other);
        engine.connect(other, engine.mainMixerNode(), AudioFormat{48000, 1});
        EXPECT_THROW(engine.enableManualRenderingMode(offline, mono, 64), PlatformError);
    }
    EXPECT_NO_THROW(engine.enableManualRenderingMode(offline, mono, 64));
}

TEST(AudioEngine, TakesTheRenderingFormatWhereAConnectionNamesNone)
{
    SignalNode source(ramp(64));
    AudioEngine engine;
    engine.attach(source);
    engine.connect(source, engine.mainMixerNode(), std::nullopt);
    engine.enableManualRenderingMode(offline, mono, 64);
    EXPECT_EQ(engine.manualRenderingFormat(), mono);
    engine.start();
    const auto buffer = AudioPCMBuffer::create(mono, 64);
    EXPECT_EQ(engine.renderOffline(64, *buffer), Status::success);
    EXPECT_EQ(buffer->channel(0)[32], 0.5F);
}

TEST(AudioEngine, CountsItsFramesFromTheLastStartOn)
{
    AudioEngine engine;
    engine.enableManualRenderingMode(offline, mono, 64);
    const auto buffer = AudioPCMBuffer::create(mono, 64);
    engine.start();
    EXPECT_EQ(engine.renderOffline(64, *buffer), Status::success);
    engine.stop();
    engine.start();
    EXPECT_EQ(engine.manualRenderingSampleTime(), 0);
    EXPECT_EQ(engine.underrunCount(), 0U) << "there is no device";
}

/// Sends its input on.
class Passage final : public AudioNode {
public:
    void render(AudioPCMBuffer& buffer, std::uint32_t frameCount) override
    {
        renderInput(buffer, frameCount);
    }
};

TEST(AudioEngine, ForgetsANodeThatGoes)
{
    AudioEngine engine;
    Passage passage;
    engine.attach(passage);
    engine.connect(passage, engine.mainMixerNode(), mono);
    std::optional<SignalNode> source;
    for (int round = 0; round < 2; ++round) {
        source.emplace(ramp(100));
        engine.attach(*source);  // at the place of the one before
        engine.connect(*source, passage, AudioFormat{48000, 1});
        EXPECT_EQ(passage.input(), &*source);
        source.reset();
        EXPECT_EQ(passage.input(), nullptr);
    }
    EXPECT_EQ(engine.mainMixerNode().input(), &passage);
    engine.enableManualRenderingMode(offline, mono, 64);
    engine.start();
    EXPECT_TRUE(engine.isRunning());
    source.emplace(ramp(100));
    engine.attach(*source);
    source.reset();
    EXPECT_FALSE(engine.isRunning()) << "whatever goes stops it";
}

TEST(AudioEngine, ForgetsTheFormatThatANodeWasFedIn)
{
    AudioEngine engine;
    SignalNode source(ramp(100));
    engine.attach(source);
    {
        Passage passage;
        engine.attach(passage);
        engine.connect(source, passage, AudioFormat{48000, 1});
        EXPECT_THROW(engine.enableManualRenderingMode(offline, mono, 64), PlatformError);
    }
    EXPECT_NO_THROW(engine.enableManualRenderingMode(offline, mono, 64));
}

TEST(AudioEngineDeathTest, AbortsForABufferOfAnotherFormat)
{
    AudioEngine engine;
    engine.enableManualRenderingMode(offline, mono, 64);
    engine.start();
    const auto buffer = AudioPCMBuffer::create({44100, 2}, 64);
    EXPECT_EXIT((void)engine.renderOffline(64, *buffer), ::testing::KilledBySignal(SIGABRT), "");
}

TEST(AudioEngineDeathTest, HasNoRenderingFormatOnceRenderingIsDisabled)
{
    AudioEngine engine;
    engine.enableManualRenderingMode(offline, mono, 64);
    engine.disableManualRenderingMode();
    EXPECT_EXIT((void)engine.manualRenderingFormat(), ::testing::KilledBySignal(SIGABRT), "");
}

TEST(AudioEngineDeathTest, ConnectsOnlyWhatIsAttached)
{
    SignalNode source(ramp(10));
    AudioEngine engine;
    EXPECT_EXIT(engine.connect(source, engine.mainMixerNode(), mono),
                ::testing::KilledBySignal(SIGABRT), "");
}

}  // namespace
}  // namespace tonvale
