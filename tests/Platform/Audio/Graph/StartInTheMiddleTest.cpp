// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/AudioMixerNode.h"
#include "Platform/Audio/Graph/AudioUnitTimePitch.h"

#include "Support/SignalNode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace tonvale {
namespace {

using test::renderAll;
using test::Signal;

constexpr AudioFormat mono{44100, 1};

/// A source that starts in the middle of a signal, and knows what lies before.
class MiddleNode final : public AudioNode {
public:
    MiddleNode(Signal signal, std::uint32_t start) : signal_(std::move(signal)), start_(start) {}

    std::uint32_t reset(std::uint32_t prerollFrames) override
    {
        const std::uint32_t before = std::min(prerollFrames, start_);
        next_ = start_ - before;
        return before;
    }
    void render(AudioPCMBuffer& buffer, std::uint32_t frameCount) override
    {
        buffer.setFrameLength(frameCount);
        for (std::uint32_t frame = 0; frame < frameCount; ++frame) {
            buffer.channel(0)[frame] = next_ < signal_.size() ? signal_[next_] : 0;
            ++next_;
        }
    }

private:
    Signal signal_;
    std::uint32_t start_;
    std::size_t next_ = 0;
};

Signal wave(std::size_t frames)
{
    Signal signal(frames);
    for (std::size_t frame = 0; frame < frames; ++frame) {
        signal[frame] = 0.5F * std::sin(0.03F * static_cast<float>(frame));
    }
    return signal;
}

Signal partOf(const Signal& signal, std::size_t start, std::size_t count)
{
    const auto first = signal.begin() + static_cast<std::ptrdiff_t>(start);
    return {first, first + static_cast<std::ptrdiff_t>(count)};
}

/// What a node gives after reset(preroll) where its source starts at `start`.
template <typename Node>
void expectStart(bool isOffline, std::uint32_t start, std::uint32_t preroll)
{
    SCOPED_TRACE(testing::Message() << "from " << start << ", preroll " << preroll);
    const Signal signal = wave(40000);
    MiddleNode source(signal, start);
    Node node;  // goes first: it reads ahead
    node.setInput(&source);
    node.prepare({mono, 512, isOffline});
    for (int round = 0; round < 2; ++round) {
        const std::uint32_t before = std::min(start, preroll);
        EXPECT_EQ(node.reset(preroll), before);
        EXPECT_EQ(renderAll(node, mono, 3000, 500), partOf(signal, start - before, 3000));
    }
}

TEST(StartInTheMiddle, MixerGivesTheFramesFromThereOn)
{
    for (const std::uint32_t start : {0U, 30U, 200U, 4000U, 20000U}) {
        for (const std::uint32_t preroll : {0U, 100U}) {
            expectStart<AudioMixerNode>(false, start, preroll);
        }
    }
}

TEST(StartInTheMiddle, ShifterGivesTheFramesFromThereOn)
{
    for (const bool isOffline : {false, true}) {
        for (const std::uint32_t start : {0U, 30U, 200U, 20000U}) {
            for (const std::uint32_t preroll : {0U, 100U}) {
                expectStart<AudioUnitTimePitch>(isOffline, start, preroll);
            }
        }
    }
}

TEST(StartInTheMiddle, SoundsAsLoudAsTheSongDoesThere)
{
    Signal signal = wave(40000);
    signal[19000] = 1.4F;  // its reduction lasts for 0.09 s
    const auto limited = [&signal](std::uint32_t start) {
        MiddleNode source(signal, start);
        AudioMixerNode mixer;
        mixer.setInput(&source);
        mixer.prepare({mono, 512, false});
        (void)mixer.reset(0);
        return renderAll(mixer, mono, 40000 - start, 512);
    };
    const Signal whole = limited(0);
    const Signal middle = limited(20000);
    EXPECT_LT(std::abs(whole[20010]), 0.99F * std::abs(signal[20010]));
    for (std::size_t frame = 0; frame < middle.size(); ++frame) {
        ASSERT_NEAR(middle[frame], whole[20000 + frame], 1e-6F) << frame;
    }
}

}  // namespace
}  // namespace tonvale
