// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/ReadAhead.h"

#include "Platform/Foundation/PlatformError.h"
#include "Support/SignalNode.h"

#include <gtest/gtest.h>

#include <vector>

namespace tonvale {
namespace {

constexpr AudioFormat mono{44100, 1};
constexpr std::uint32_t chunkFrames = 100;

test::Signal ramp(std::size_t frames)
{
    test::Signal signal(frames);
    for (std::size_t frame = 0; frame < frames; ++frame) {
        signal[frame] = static_cast<float>(frame);
    }
    return signal;
}

TEST(ReadAhead, HandsOutTheChunksInOrder)
{
    test::SignalNode source(ramp(10000));
    ReadAhead readAhead(source, mono, chunkFrames);
    for (std::size_t chunk = 0; chunk < 100; ++chunk) {
        const AudioPCMBuffer& buffer = readAhead.next();
        ASSERT_EQ(buffer.frameLength(), chunkFrames);
        for (std::uint32_t frame = 0; frame < chunkFrames; ++frame) {
            ASSERT_EQ(buffer.channel(0)[frame], static_cast<float>(chunk * chunkFrames + frame));
        }
    }
}

TEST(ReadAhead, RendersNoFurtherThanTwoChunksAhead)
{
    test::SignalNode source(ramp(10000));
    {
        ReadAhead readAhead(source, mono, chunkFrames);
        (void)readAhead.next();
        (void)readAhead.next();
    }
    EXPECT_LE(source.framesTaken(), 3 * chunkFrames);
}

TEST(ReadAhead, EndsWithoutAnyoneHavingTakenAChunk)
{
    test::SignalNode source(ramp(10000));
    const ReadAhead readAhead(source, mono, chunkFrames);
}

/// Fails `failures` times, from its third block on.
class FailingNode final : public AudioNode {
public:
    explicit FailingNode(int failures) : failures_(failures) {}

    void render(AudioPCMBuffer& buffer, std::uint32_t frameCount) override
    {
        if (++count_ > 2 && count_ <= 2 + failures_) {
            throw PlatformError("disk on fire");
        }
        buffer.setFrameLength(frameCount);
    }

private:
    int failures_;
    int count_ = 0;
};

TEST(ReadAhead, ThrowsAFailureWhereItsChunkIsTakenAndNotBefore)
{
    FailingNode source(2);
    ReadAhead readAhead(source, mono, chunkFrames);
    EXPECT_NO_THROW((void)readAhead.next());
    EXPECT_NO_THROW((void)readAhead.next());
    EXPECT_THROW((void)readAhead.next(), PlatformError);
    EXPECT_THROW((void)readAhead.next(), PlatformError);
}

TEST(ReadAhead, ForgetsAFailureThatWasTold)
{
    FailingNode source(1);
    ReadAhead readAhead(source, mono, chunkFrames);
    for (int chunk = 1; chunk <= 9; ++chunk) {
        if (chunk == 3) {
            EXPECT_THROW((void)readAhead.next(), PlatformError);
        } else {
            EXPECT_NO_THROW((void)readAhead.next()) << chunk;
        }
    }
}

}  // namespace
}  // namespace tonvale
