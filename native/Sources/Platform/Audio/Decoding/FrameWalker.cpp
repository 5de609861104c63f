// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/FrameWalker.h"

#include "Platform/Audio/Decoding/LocalInput.h"

#include <algorithm>
#include <cstring>

namespace tonvale {

namespace {

constexpr std::size_t bufferSize = 65536;  // bytes; the longest frame has 8191

/// Outside a run of frames, a header is believed when this many more follow it. Three in a row
/// by chance need about 10^15 random bytes.
constexpr int confirmations = 2;

}  // namespace

FrameWalker::FrameWalker(LocalInput& input, CodedFrameParser parser)
    : input_(input)
    , parser_(parser)
    , buffer_(bufferSize)
{
}

std::optional<FrameWalker::Found> FrameWalker::next()
{
    while (offset_ < input_.size()) {
        const auto header = headerAt(offset_);
        if (header && offset_ + header->size <= input_.size() && isCredible(*header)) {
            const Found found = {*header, offset_};
            kind_ = header->kind;
            isInStep_ = true;
            offset_ += header->size;
            return found;
        }
        const std::int64_t tag = tagSize(window(offset_, tagHeaderSize));
        isInStep_ = isInStep_ && tag > 0;
        offset_ += tag > 0 ? tag : distanceToNextCandidate();
    }
    return std::nullopt;
}

void FrameWalker::jumpTo(const Found& frame) noexcept
{
    offset_ = frame.offset;
    kind_ = frame.header.kind;
    isInStep_ = true;
}

std::span<const std::uint8_t> FrameWalker::bytesOf(const Found& frame)
{
    return window(frame.offset, static_cast<std::size_t>(frame.header.size));
}

bool FrameWalker::hasFrameAfter(std::int64_t offset)
{
    FrameWalker probe(input_, parser_);
    probe.offset_ = offset;
    return probe.next().has_value();
}

FrameWalker::Sample FrameWalker::sampleAfter(std::int64_t offset, int count)
{
    FrameWalker probe(input_, parser_);
    probe.offset_ = offset;
    Sample sample;
    while (sample.count < count) {
        const auto found = probe.next();
        if (!found) {
            break;
        }
        const std::int64_t size = found->header.size;
        sample.smallest = sample.count == 0 ? size : std::min(sample.smallest, size);
        sample.largest = std::max(sample.largest, size);
        sample.bytes += size;
        ++sample.count;
    }
    return sample;
}

std::optional<CodedFrameHeader> FrameWalker::headerAt(std::int64_t offset)
{
    const auto bytes = window(offset, codedFrameHeaderSize);
    return bytes.size() < codedFrameHeaderSize ? std::nullopt : parser_(bytes);
}

bool FrameWalker::isCredible(const CodedFrameHeader& header)
{
    return (isInStep_ && header.kind == kind_) || isFollowedBySame(header);
}

bool FrameWalker::isFollowedBySame(const CodedFrameHeader& header)
{
    std::int64_t offset = offset_ + header.size;
    for (int count = 0; count < confirmations; ++count) {
        const auto bytes = window(offset, tagHeaderSize);
        if (bytes.empty() || tagSize(bytes) > 0) {
            // A short file, or the last frames of a part: in step they are likely true.
            return count > 0 || isInStep_ || kind_ == 0;
        }
        const auto following = headerAt(offset);
        if (!following || following->kind != header.kind) {
            return false;
        }
        offset += following->size;
    }
    return true;
}

/// Every header begins with a byte of ones; a tag is only looked for where a frame ended.
std::int64_t FrameWalker::distanceToNextCandidate()
{
    const auto bytes = window(offset_ + 1, bufferSize / 2);
    const void* const found =
        bytes.empty() ? nullptr : std::memchr(bytes.data(), 0xFF, bytes.size());
    if (found == nullptr) {
        return 1 + static_cast<std::int64_t>(bytes.size());
    }
    return 1 + (static_cast<const std::uint8_t*>(found) - bytes.data());
}

std::span<const std::uint8_t> FrameWalker::window(std::int64_t offset, std::size_t count)
{
    const std::int64_t inBuffer = offset - bufferOffset_;
    const auto buffered = static_cast<std::int64_t>(bufferCount_);
    if (inBuffer < 0 || inBuffer + static_cast<std::int64_t>(count) > buffered) {
        bufferCount_ = 0;  // what a read that fails leaves in it is of no use
        bufferOffset_ = offset;
        bufferCount_ = input_.readAt(offset, buffer_);
        return {buffer_.data(), std::min(count, bufferCount_)};
    }
    return {buffer_.data() + inBuffer, count};
}

}  // namespace tonvale
