// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Audio/RenderLoop.h"

#include "Platform/Foundation/PlatformError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <utility>
#include <vector>

namespace tonvale {
namespace {

using Status = AudioEngineManualRenderingStatus;
using ::testing::ElementsAre;

struct FakeBuffer {
    std::uint32_t frames = 0;
    [[nodiscard]] std::uint32_t frameLength() const { return frames; }
};

/// Answers each request by the next of its scripted statuses, then by success.
class FakeEngine {
public:
    std::deque<Status> script;
    std::vector<std::uint32_t> requests;
    std::function<void()> onRender = [] {};
    bool answersEmptyOnce = false;

    [[nodiscard]] std::int64_t manualRenderingSampleTime() const { return sampleTime_; }

    Status renderOffline(std::uint32_t frameCount, FakeBuffer& buffer)
    {
        requests.push_back(frameCount);
        onRender();
        Status status = Status::success;
        if (!script.empty()) {
            status = script.front();
            script.pop_front();
        }
        if (status == Status::success) {
            buffer.frames = std::exchange(answersEmptyOnce, false) ? 0 : frameCount;
            sampleTime_ += buffer.frames;
        }
        return status;
    }

private:
    std::int64_t sampleTime_ = 0;
};

struct FakeFile {
    std::vector<std::uint32_t> writes;
    std::function<void()> onWrite = [] {};

    void write(const FakeBuffer& buffer)
    {
        onWrite();
        writes.push_back(buffer.frames);
    }
};

class RenderLoop : public ::testing::Test {
protected:
    std::int64_t run(std::int64_t length)
    {
        return renderBlocks(engine, file, buffer, length,
                            [this](std::int64_t frames) { observed.push_back(frames); });
    }

    FakeEngine engine;
    FakeFile file;
    FakeBuffer buffer;
    std::vector<std::int64_t> observed;
};

TEST_F(RenderLoop, AsksForBlocksOf4096FramesAndARest)
{
    EXPECT_EQ(run(10000), 10000);
    EXPECT_THAT(engine.requests, ElementsAre(4096, 4096, 1808));
    EXPECT_THAT(file.writes, ElementsAre(4096, 4096, 1808));
    EXPECT_THAT(observed, ElementsAre(4096, 8192, 10000));
}

TEST_F(RenderLoop, DoesNotRunForAnEmptySong)
{
    EXPECT_EQ(run(0), 0);
    EXPECT_TRUE(engine.requests.empty());
}

TEST_F(RenderLoop, AsksAgainForTheSameFramesWhileThereIsNothingToGive)
{
    engine.script.assign(5000, Status::insufficientDataFromInputNode);
    engine.script.push_back(Status::cannotDoInCurrentContext);
    EXPECT_EQ(run(100), 100);
    EXPECT_EQ(engine.requests.size(), 5002U);
    EXPECT_EQ(engine.requests.front(), 100U);
    EXPECT_THAT(file.writes, ElementsAre(100));
}

TEST_F(RenderLoop, WritesNothingForAnEmptyBlockAndGoesOn)
{
    engine.answersEmptyOnce = true;
    EXPECT_EQ(run(100), 100);
    EXPECT_EQ(engine.requests.size(), 2U);
    EXPECT_THAT(file.writes, ElementsAre(100));
}

TEST_F(RenderLoop, FailsOnTheErrorStatusAndOnAnyUnknownOne)
{
    for (const Status status : {Status::error, static_cast<Status>(99)}) {
        engine.script = {Status::success, status};
        try {
            run(100000);
            FAIL() << "did not throw";
        } catch (const AudioExportError& error) {
            EXPECT_EQ(error, AudioExportError(AudioExportError::renderFailed));
        }
    }
}

TEST_F(RenderLoop, PassesOnWhatEngineFileAndObserverThrow)
{
    const PlatformError failure("disk full");
    file.onWrite = [&] { throw failure; };
    EXPECT_THROW(run(100), PlatformError);
    file.onWrite = [] {};
    engine.onRender = [&] { throw failure; };
    EXPECT_THROW(run(10000), PlatformError);
    engine.onRender = [] {};
    const auto stop = [&](std::int64_t) { throw failure; };
    EXPECT_THROW(renderBlocks(engine, file, buffer, 20000, stop), PlatformError);
}

TEST_F(RenderLoop, LeavesWhatWasWrittenBeforeAFailure)
{
    engine.script = {Status::success, Status::success, Status::error};
    EXPECT_THROW(run(100000), AudioExportError);
    EXPECT_THAT(file.writes, ElementsAre(4096, 4096));
}

TEST(AudioExportError, DescribesEachCase)
{
    EXPECT_EQ(AudioExportError(AudioExportError::couldNotCreateBuffer).errorDescription(),
              "Could not create the export audio buffer.");
    EXPECT_EQ(AudioExportError(AudioExportError::emptyRender).errorDescription(),
              "The export produced no audio frames.");
    EXPECT_EQ(AudioExportError(AudioExportError::renderFailed).errorDescription(),
              "The audio render did not complete.");
}

TEST(AudioExportError, EqualsAndHashesByItsCase)
{
    const AudioExportError first(AudioExportError::emptyRender);
    const AudioExportError same(AudioExportError::emptyRender);
    const AudioExportError other(AudioExportError::renderFailed);
    EXPECT_EQ(first, same);
    EXPECT_NE(first, other);
    EXPECT_EQ(std::hash<AudioExportError>{}(first), std::hash<AudioExportError>{}(same));
    EXPECT_NE(std::hash<AudioExportError>{}(first), std::hash<AudioExportError>{}(other));
}

}  // namespace
}  // namespace tonvale
