// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/AudioFile.h"

#include "Platform/Audio/Decoding/AudioFileReader.h"
#include "Platform/Audio/Encoding/AudioFileWriter.h"
#include "Platform/Foundation/Precondition.h"

#include <utility>

namespace tonvale {

AudioFile AudioFile::forReading(const std::filesystem::path& url)
{
    return AudioFile(std::make_unique<AudioFileReader>(url));
}

AudioFile AudioFile::forWriting(const std::filesystem::path& url, const AudioFileSettings& settings)
{
    return AudioFile(std::make_unique<AudioFileWriter>(url, settings));
}

AudioFile::AudioFile(std::unique_ptr<AudioFileReader> reader) noexcept : reader_(std::move(reader))
{
}

AudioFile::AudioFile(std::unique_ptr<AudioFileWriter> writer) noexcept : writer_(std::move(writer))
{
}

AudioFile::AudioFile(AudioFile&&) noexcept = default;
AudioFile& AudioFile::operator=(AudioFile&&) noexcept = default;
AudioFile::~AudioFile() = default;

const AudioFormat& AudioFile::processingFormat() const noexcept
{
    return reader_ ? reader_->format() : writer_->format();
}

std::int64_t AudioFile::length() const noexcept
{
    return reader_ ? reader_->length() : writer_->framesWritten();
}

void AudioFile::read(std::int64_t startFrame, AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    precondition(reader_ != nullptr);
    reader_->read(startFrame, buffer, frameCount);
}

void AudioFile::write(const AudioPCMBuffer& buffer)
{
    precondition(writer_ != nullptr);
    writer_->write(buffer);
}

void AudioFile::close()
{
    if (writer_) {
        writer_->close();
    }
}

}  // namespace tonvale
