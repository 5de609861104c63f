// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/FramedSource.h"

#include "Platform/Audio/Decoding/LocalInput.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

namespace tonvale {

namespace {

/// Where frames are looked at to check a tag's count, and how many of them at each place.
constexpr int samplePlaces = 12;
constexpr int framesPerPlace = 8;

/// What the frames looked at suggest for the whole file.
struct CountEstimate {
    double frames = 0;
    bool isConstant = true;  ///< all of one bit rate: sizes differ by a byte of padding at most
};

/// Evenly spread samples: the mean of their densities is the density of the file.
CountEstimate estimateCount(FrameWalker& walker, std::int64_t start, std::int64_t byteCount)
{
    CountEstimate estimate;
    std::int64_t smallest = std::numeric_limits<std::int64_t>::max();
    std::int64_t largest = 0;
    int places = 0;
    for (int place = 0; place < samplePlaces; ++place) {
        const auto sample =
            walker.sampleAfter(start + byteCount / samplePlaces * place, framesPerPlace);
        if (sample.count == 0) {
            continue;
        }
        ++places;
        estimate.frames += static_cast<double>(sample.count) / static_cast<double>(sample.bytes);
        smallest = std::min(smallest, sample.smallest);
        largest = std::max(largest, sample.largest);
    }
    estimate.frames *= static_cast<double>(byteCount) / std::max(places, 1);
    estimate.isConstant = largest - smallest <= 1;
    return estimate;
}

/// Makes it a packet of these bytes and nothing else.
void renew(AVPacket& packet, std::span<const std::uint8_t> bytes)
{
    av_packet_unref(&packet);
    if (av_new_packet(&packet, static_cast<int>(bytes.size())) < 0) {
        throw decoderError(outOfMemoryError);
    }
    std::ranges::copy(bytes, packet.data);
}

}  // namespace

FramedSource::FramedSource(LocalInput& input, CodedFrameParser parser)
    : input_(input)
    , walker_(input, parser)
    , parameters_(makeCodecParameters())
{
    const auto first = walker_.next();
    if (!first) {
        throw decoderError(invalidDataError);
    }
    first_ = *first;
    firstTag_ = tagOf(first_);
    parameters_->codec_type = AVMEDIA_TYPE_AUDIO;
    parameters_->codec_id = first_.header.codec;
    parameters_->sample_rate = first_.header.sampleRate;
    rewind();
}

const AVCodecParameters& FramedSource::parameters() const noexcept
{
    return *parameters_;
}

AVRational FramedSource::tickDuration() const noexcept
{
    return {1, first_.header.sampleRate};
}

bool FramedSource::next(AVPacket& packet)
{
    const std::int64_t tick = tick_;
    const auto found = nextMusicFrame();
    if (!found) {
        return false;
    }
    renew(packet, walker_.bytesOf(*found));
    packet.pts = tick;
    return true;
}

void FramedSource::seek(std::int64_t tick)
{
    const PacketTable::Entry* const entry = table_.find(tick);
    if (entry == nullptr || entry->tick > tick) {
        rewind();
        return;
    }
    walker_.jumpTo(entry->frame);
    tick_ = entry->tick;
    PacketTable::Entry before = *entry;
    while (tick_ <= tick) {
        before.tick = tick_;
        const auto found = nextMusicFrame();
        if (!found) {
            break;
        }
        before.frame = *found;
    }
    walker_.jumpTo(before.frame);
    tick_ = before.tick;
}

void FramedSource::rewind()
{
    walker_.jumpTo(first_);
    tick_ = 0;
}

MusicExtent FramedSource::extent(const DecodedFormat& format)
{
    std::int64_t start = 0;
    std::int64_t end = 0;
    if (firstTag_ && isTrustworthy(*firstTag_)) {
        end = *firstTag_->packetCount * first_.header.frames - firstTag_->endPadding;
    } else {
        end = countedEnd();
    }
    if (firstTag_) {
        start = firstTag_->startPadding;
    }
    const AVRational frame = {1, format.sampleRate};
    const std::int64_t rawStart = av_rescale_q(start, tickDuration(), frame);
    const std::int64_t rawEnd = av_rescale_q(end, tickDuration(), frame);
    return {.start = rawStart, .length = std::max<std::int64_t>(rawEnd - rawStart, 0)};
}

std::optional<FrameWalker::Found> FramedSource::nextMusicFrame()
{
    auto found = walker_.next();
    while (found) {
        const auto tag = tagOf(*found);
        if (!tag) {
            break;
        }
        noteTag(*tag);
        found = walker_.next();
    }
    if (found) {
        table_.add({tick_, *found});
        tick_ += found->header.frames;
    }
    return found;
}

std::optional<Mp3InfoTag> FramedSource::tagOf(const FrameWalker::Found& found)
{
    return Mp3InfoTag::parse(found.header, walker_.bytesOf(found));
}

void FramedSource::noteTag(const Mp3InfoTag& tag)
{
    lastTag_ = tag;
    lastTagTick_ = tick_;
}

/// A count that is wrongly refused costs a scan and no more: it finds the same end.
bool FramedSource::isTrustworthy(const Mp3InfoTag& tag)
{
    return tag.packetCount && *tag.packetCount > 0 && fitsFile(tag) && fitsFrames(tag);
}

/// Whether the packets counted are of the sizes that the file's frames have. The tag's own frame
/// is in the bytes, not in the count; where the sizes vary, so does the estimate.
bool FramedSource::fitsFrames(const Mp3InfoTag& tag)
{
    const std::int64_t start = first_.offset + first_.header.size;
    const std::int64_t byteCount = *tag.byteCount - first_.header.size;
    if (byteCount <= 0) {
        return false;
    }
    const CountEstimate estimate = estimateCount(walker_, start, byteCount);
    const double tolerance =
        estimate.isConstant ? 2 + estimate.frames / 1000 : 2 + estimate.frames / 8;
    return std::fabs(static_cast<double>(*tag.packetCount) - estimate.frames) <= tolerance;
}

/// The counts of a tag hold for the whole file only if its last byte is the file's last, tags
/// apart; not so in files that were joined or cut.
bool FramedSource::fitsFile(const Mp3InfoTag& tag)
{
    if (!tag.byteCount) {
        return false;
    }
    const std::int64_t end = first_.offset + *tag.byteCount;
    return end <= input_.size() && !walker_.hasFrameAfter(end + first_.header.size);
}

/// One walk over the whole file, which also fills the table. The padding at the end is that of
/// the last part, if that part is whole.
std::int64_t FramedSource::countedEnd()
{
    rewind();
    lastTag_ = {};
    lastTagTick_ = 0;
    while (nextMusicFrame()) {
    }
    const std::int64_t partFrames = tick_ - lastTagTick_;
    const bool isWhole =
        lastTag_.packetCount && *lastTag_.packetCount * first_.header.frames == partFrames;
    const std::int64_t end = isWhole ? tick_ - lastTag_.endPadding : tick_;
    rewind();
    return end;
}

}  // namespace tonvale
