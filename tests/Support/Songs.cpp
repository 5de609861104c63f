// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/Songs.h"

#include "Platform/Audio/AudioFile.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tonvale::test {

Channels tones(const std::vector<double>& frequencies, double sampleRate, std::size_t frames)
{
    Channels channels;
    for (const double frequency : frequencies) {
        std::vector<float> samples(frames);
        for (std::size_t frame = 0; frame < frames; ++frame) {
            const double turns = frequency * static_cast<double>(frame) / sampleRate;
            samples[frame] = static_cast<float>(0.5 * std::sin(2 * std::numbers::pi * turns));
        }
        channels.push_back(std::move(samples));
    }
    return channels;
}

void writeSong(const std::filesystem::path& url, double sampleRate, const Channels& channels)
{
    AudioFileSettings settings;
    settings.sampleRate = sampleRate;
    settings.numberOfChannels = static_cast<std::uint32_t>(channels.size());
    AudioFile file = AudioFile::forWriting(url, settings);
    const auto frames = static_cast<std::uint32_t>(channels.front().size());
    if (frames > 0) {
        const auto buffer = AudioPCMBuffer::create(file.processingFormat(), frames);
        buffer->setFrameLength(frames);
        for (std::uint32_t channel = 0; channel < channels.size(); ++channel) {
            std::ranges::copy(channels[channel], buffer->channel(channel).begin());
        }
        file.write(*buffer);
    }
    file.close();
}

Song readSong(const std::filesystem::path& url)
{
    AudioFile file = AudioFile::forReading(url);
    Song song{file.processingFormat(), Channels(file.processingFormat().channelCount)};
    constexpr std::uint32_t blockFrames = 8192;
    const auto buffer = AudioPCMBuffer::create(song.format, blockFrames);
    for (std::int64_t frame = 0; frame < file.length(); frame += buffer->frameLength()) {
        file.read(frame, *buffer, blockFrames);
        for (std::uint32_t channel = 0; channel < song.channels.size(); ++channel) {
            const auto valid = buffer->channel(channel).first(buffer->frameLength());
            song.channels[channel].insert(song.channels[channel].end(), valid.begin(), valid.end());
        }
    }
    return song;
}

double frequencyOf(const std::vector<float>& samples, double sampleRate)
{
    std::vector<double> crossings;
    for (std::size_t frame = samples.size() / 4; frame < samples.size() * 3 / 4; ++frame) {
        const double before = samples[frame];
        const double after = samples[frame + 1];
        if (before < 0 && after >= 0) {
            crossings.push_back(static_cast<double>(frame) + before / (before - after));
        }
    }
    if (crossings.size() < 2) {
        return 0;
    }
    return static_cast<double>(crossings.size() - 1) * sampleRate
           / (crossings.back() - crossings.front());
}

double centsBetween(double expected, double measured)
{
    return 1200 * std::log2(measured / expected);
}

}  // namespace tonvale::test
