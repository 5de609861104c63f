// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/AudioFileReader.h"

#include "Platform/Audio/Decoding/MusicStream.h"

namespace tonvale {

AudioFileReader::AudioFileReader(const std::filesystem::path& url)
    : stream_(std::make_unique<MusicStream>(LocalInput::open(url)))
{
}

AudioFileReader::~AudioFileReader() = default;

const AudioFormat& AudioFileReader::format() const noexcept
{
    return stream_->format();
}

std::int64_t AudioFileReader::length() const noexcept
{
    return stream_->length();
}

void AudioFileReader::read(std::int64_t startFrame, AudioPCMBuffer& buffer,
                           std::uint32_t frameCount)
{
    stream_->read(startFrame, buffer, frameCount);
}

}  // namespace tonvale
