// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/MusicStream.h"

#include "Platform/Foundation/Precondition.h"

#include <algorithm>
#include <cerrno>
#include <limits>

namespace tonvale {

namespace {

constexpr std::int64_t farAway = std::numeric_limits<std::int64_t>::max() / 4;

/// Those who play or export a song count its frames in 32 bits.
constexpr std::int64_t mostFrames = std::numeric_limits<std::uint32_t>::max();

/// Twice what converters for music reach; beyond, a header is damaged, and the engine behind would
/// size its windows by it.
constexpr int highestSampleRate = 768000;

/// Damaged packets at the start of a file that are passed over in search of the first sound.
constexpr int patience = 500;

/// Up to here ahead, in seconds, decoding on costs no more than a new run.
constexpr std::int64_t shortWay = 2;

}  // namespace

MusicStream::MusicStream(std::unique_ptr<LocalInput> input)
    : input_(std::move(input))
    , source_(makePacketSource(*input_))
    , decoder_(std::make_unique<FrameDecoder>(source_->parameters(), source_->tickDuration()))
    , packet_(makePacket())
{
    const bool holdsMusic = decodeFirstBlock();
    const DecodedFormat& decoded = decoder_->format();
    format_ = {.sampleRate = static_cast<double>(decoded.sampleRate),
               .channelCount = static_cast<std::uint32_t>(decoded.channelCount),
               .channelMask = decoded.channelMask};
    if (decoded.sampleRate > highestSampleRate) {
        throw decoderError(invalidDataError);
    }
    memory_ = CodecMemory::of(source_->parameters(), decoded);
    extent_ = holdsMusic ? source_->extent(decoded) : MusicExtent{};
    if (extent_.length > mostFrames) {
        throw PlatformError::fromErrno(EFBIG);
    }
    // The extent may have moved the source, so even the first read begins a run.
    runEnd_ = -farAway;
}

void MusicStream::read(std::int64_t startFrame, AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    precondition(startFrame >= 0 && startFrame <= length());
    precondition(frameCount <= buffer.frameCapacity() && buffer.format() == format_);
    const auto frames =
        static_cast<std::uint32_t>(std::min<std::int64_t>(frameCount, length() - startFrame));
    try {
        fill(extent_.start + startFrame, buffer, frames);
    } catch (...) {
        hasFailed_ = true;
        runEnd_ = -farAway;  // the next read begins a run
        throw;
    }
    buffer.setFrameLength(frames);
}

/// @return false for a song of no frames at all: whole as a file, only empty
bool MusicStream::decodeFirstBlock()
{
    int firstError = invalidDataError;
    for (int attempt = 0; attempt < patience; ++attempt) {
        if (decoder_->receive()) {
            return true;
        }
        if (!source_->next(*packet_)) {
            if (attempt == 0 && decoder_->adoptDeclaredFormat()) {
                return false;
            }
            decoder_->sendEnd();
            if (decoder_->receive()) {
                return true;
            }
            break;
        }
        const int result = decoder_->send(*packet_);
        if (result < 0 && attempt == 0) {
            firstError = result;
        }
    }
    throw openingError(firstError);
}

void MusicStream::fill(std::int64_t raw, AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    std::uint32_t done = 0;
    while (done < frameCount) {
        const std::uint32_t room = frameCount - done;
        reach(raw + done);
        std::uint32_t count = 0;
        if (raw + done >= blockStart_ && raw + done < blockEnd_) {
            count = copyBlock(raw + done, buffer, done, room);
        } else {
            const std::int64_t gapEnd =
                raw + done < blockStart_ ? std::min(blockStart_, runEnd_) : runEnd_;
            count = static_cast<std::uint32_t>(std::min<std::int64_t>(room, gapEnd - raw - done));
            buffer.silence(done, count);
        }
        done += count;
    }
}

std::uint32_t MusicStream::copyBlock(std::int64_t raw, AudioPCMBuffer& buffer, std::uint32_t first,
                                     std::uint32_t room)
{
    const auto count = static_cast<std::uint32_t>(std::min<std::int64_t>(room, blockEnd_ - raw));
    const auto offset = static_cast<std::size_t>(raw - blockStart_);
    for (std::uint32_t index = 0; index < format_.channelCount; ++index) {
        const auto samples =
            decoder_->isAudible() ? decoder_->channel(index) : std::span<const float>();
        if (samples.empty()) {
            buffer.silence(first, count);
            break;
        }
        std::ranges::copy(samples.subspan(offset, count), buffer.channel(index).data() + first);
    }
    return count;
}

/// Makes `raw` one of the frames that are known: in the block, in the gap before it, or behind
/// the last block of the run.
void MusicStream::reach(std::int64_t raw)
{
    if (needsNewRun(raw)) {
        beginRun(raw);
    }
    while (raw >= blockEnd_ && !isAtEnd_) {
        knownFrom_ = std::max(knownFrom_, blockEnd_);
        isAtEnd_ = !decodeBlock();
    }
}

bool MusicStream::needsNewRun(std::int64_t raw) const noexcept
{
    if (raw < knownFrom_ || raw >= runEnd_) {
        return true;
    }
    const bool canSkip = source_->hasExactStamps() && memory_.stretch == 0 && !isAtEnd_;
    return canSkip && raw - blockEnd_ > shortWay * decoder_->format().sampleRate + memory_.preroll;
}

void MusicStream::beginRun(std::int64_t raw)
{
    std::int64_t runStart = raw;
    runEnd_ = farAway;
    if (memory_.stretch > 0 && source_->hasExactStamps()) {
        runStart = raw / memory_.stretch * memory_.stretch;
        runEnd_ = runStart + memory_.stretch;
    }
    const std::int64_t from = toTicks(runStart - memory_.preroll);
    feedFrom_ = -farAway;
    const bool isAtStart = !source_->hasExactStamps() || from <= 0;
    if (hasFailed_) {
        source_->recover();
        hasFailed_ = false;
    } else if (isAtStart) {
        source_->rewind();
    }
    if (!isAtStart) {
        source_->seek(from);
        feedFrom_ = from;
    }
    decoder_->restart();
    knownFrom_ = source_->hasExactStamps() ? runStart : 0;
    blockStart_ = 0;
    blockEnd_ = source_->hasExactStamps() ? -farAway : 0;
    isDraining_ = false;
    isAtEnd_ = false;
}

/// Makes the next decoded block the current one. @return false when the run has no more
bool MusicStream::decodeBlock()
{
    while (!decoder_->receive()) {
        if (isDraining_) {
            return false;
        }
        if (!sendPacket()) {
            decoder_->sendEnd();
            isDraining_ = true;
        }
    }
    placeBlock();
    return true;
}

bool MusicStream::sendPacket()
{
    while (source_->next(*packet_)) {
        const bool isEarly = packet_->pts != noTimeStamp && packet_->pts < feedFrom_;
        if (!isEarly || memory_.stretch == 0) {
            decoder_->send(*packet_);  // a packet that fails leaves a gap
            return true;
        }
    }
    return false;
}

void MusicStream::placeBlock()
{
    const std::int64_t stamp = source_->hasExactStamps() ? decoder_->timeStamp() : noTimeStamp;
    const std::int64_t place = stamp == noTimeStamp ? blockEnd_ : toFrames(stamp);
    blockStart_ = std::clamp(place, -farAway, farAway);  // a damaged stamp may be anything
    blockEnd_ = std::min(blockStart_ + decoder_->frameCount(), runEnd_);
}

std::int64_t MusicStream::toTicks(std::int64_t frames) const noexcept
{
    const AVRational frame = {1, decoder_->format().sampleRate};
    return av_rescale_q(frames, frame, source_->tickDuration());
}

std::int64_t MusicStream::toFrames(std::int64_t ticks) const noexcept
{
    const AVRational frame = {1, decoder_->format().sampleRate};
    return av_rescale_q(ticks, source_->tickDuration(), frame);
}

}  // namespace tonvale
