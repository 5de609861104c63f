// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/FormatProbe.h"

#include "Platform/Audio/Decoding/CodedFrame.h"
#include "Platform/Audio/Decoding/LocalInput.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace tonvale {

namespace {

constexpr const char* musicContainers =
    "aac,ac3,aiff,amr,ape,asf,au,avi,caf,dsf,dts,dtshd,eac3,flac,flv,iff,ircam,loas,"
    "matroska,webm,mlp,mov,mp4,m4a,3gp,3g2,mj2,mp3,mpc,mpc8,mpeg,mpegts,nistsphere,ogg,oma,"
    "rm,shn,sox,tak,truehd,tta,voc,w64,wav,wv,xwma";

/// Most files show what they are at once; bare frames behind junk need more.
constexpr std::array<std::size_t, 3> probeSizes = {4096, 65536, 1048576};

/// Players put tags in front of any format, with pictures larger than what is probed.
std::int64_t endOfLeadingTags(LocalInput& input)
{
    std::array<std::uint8_t, 10> head = {};
    std::int64_t offset = 0;
    while (input.readAt(offset, head) == head.size() && head[0] == 'I') {
        const std::int64_t size = tagSize(head);
        if (size == 0) {
            break;
        }
        offset += size;
    }
    return offset;
}

/// @param bytes  followed by the zeros that probing needs
const AVInputFormat* guess(std::vector<std::uint8_t>& bytes, std::size_t count,
                           const std::string& name, int& score)
{
    const AVProbeData data = {.filename = name.c_str(),
                              .buf = bytes.data(),
                              .buf_size = static_cast<int>(count),
                              .mime_type = nullptr};
    return av_probe_input_format3(&data, 1, &score);
}

}  // namespace

const AVInputFormat& recogniseFormat(LocalInput& input)
{
    const std::int64_t offset = endOfLeadingTags(input);
    std::vector<std::uint8_t> bytes;
    for (const std::size_t size : probeSizes) {
        bytes.assign(size + AVPROBE_PADDING_SIZE, 0);
        const std::size_t count = input.readAt(offset, std::span(bytes).first(size));
        const bool isLast = count < size || size == probeSizes.back();
        int score = 0;
        const AVInputFormat* const format = guess(bytes, count, input.name(), score);
        if (format == nullptr || (score <= AVPROBE_SCORE_RETRY && !isLast)) {
            if (isLast) {
                break;
            }
            continue;
        }
        if (av_match_list(format->name, musicContainers, ',') <= 0) {
            break;
        }
        return *format;
    }
    throw decoderError(invalidDataError);
}

const char* containersOfMusic() noexcept
{
    return musicContainers;
}

bool isNamed(const AVInputFormat& format, std::string_view name)
{
    return av_match_name(std::string(name).c_str(), format.name) != 0;
}

bool isOneOf(const AVInputFormat& format, std::initializer_list<std::string_view> names)
{
    return std::ranges::any_of(names,
                               [&format](std::string_view name) { return isNamed(format, name); });
}

}  // namespace tonvale
