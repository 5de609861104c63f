// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/MusicFixtures.h"

#include "Support/Program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <numbers>
#include <random>
#include <utility>

namespace tonvale::test {

namespace {

void append(std::vector<std::uint8_t>& bytes, std::uint64_t value, int count)
{
    for (int index = 0; index < count; ++index) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * index)));
    }
}

void append(std::vector<std::uint8_t>& bytes, const std::string& text)
{
    bytes.insert(bytes.end(), text.begin(), text.end());
}

double toneAt(double seconds, int channel)
{
    const double root = 220.0 * (1.0 + 0.25 * channel);
    double sum = 0;
    for (const double interval : {1.0, 1.26, 1.5}) {
        sum += std::sin(2 * std::numbers::pi * root * interval * seconds);
    }
    return 0.07 * sum;  // the clicks stand out of it, even when a coder smears them
}

using Loss = MusicFormat::Loss;
using Length = MusicFormat::Length;

MusicFormat withFfmpeg(std::string name, std::string fileName, std::vector<std::string> options,
                       Loss loss = Loss::none)
{
    std::vector<std::string> encoder = {"ffmpeg", "-v", "error", "-y", "-i", "SOURCE"};
    encoder.insert(encoder.end(), options.begin(), options.end());
    encoder.emplace_back("TARGET");
    return {.name = std::move(name),
            .fileName = std::move(fileName),
            .encoder = std::move(encoder),
            .loss = loss};
}

MusicFormat withPadding(MusicFormat format, std::int64_t slack)
{
    format.length = Length::wholePackets;
    format.slack = slack;
    return format;
}

MusicFormat at48000(MusicFormat format)
{
    format.sampleRate = 48000;
    return format;
}

MusicFormat withIndexAtTheEnd(MusicFormat format)
{
    format.needsItsEnd = true;
    return format;
}

MusicFormat countedInPackets(MusicFormat format, std::int64_t packetFrames)
{
    format.damage = MusicFormat::Damage::movesUp;
    format.packetFrames = packetFrames;
    return format;
}

/// What is lost with a damaged packet depends on the container.
MusicFormat loosePackets(MusicFormat format)
{
    format.damage = MusicFormat::Damage::movesAnyhow;
    return format;
}

std::vector<MusicFormat> losslessFormats()
{
    std::vector<MusicFormat> all = {
        withFfmpeg("wav16", "s16.wav", {}),
        withFfmpeg("wav24", "s24.wav", {"-c:a", "pcm_s24le"}),
        withFfmpeg("wav32", "s32.wav", {"-c:a", "pcm_s32le"}),
        withFfmpeg("wavFloat32", "f32.wav", {"-c:a", "pcm_f32le"}),
        withFfmpeg("wavFloat64", "f64.wav", {"-c:a", "pcm_f64le"}),
        withFfmpeg("rf64", "rf.wav", {"-rf64", "always"}),
        withFfmpeg("aiff", "s16.aiff", {}),
        withFfmpeg("aiffC", "f32.aifc", {"-f", "aiff", "-c:a", "pcm_f32be"}),
        withFfmpeg("aiffLittleEndian", "sowt.aifc", {"-f", "aiff", "-c:a", "pcm_s16le"}),
        withFfmpeg("cafPcm", "s24.caf", {"-c:a", "pcm_s24be"}),
        withIndexAtTheEnd(withFfmpeg("cafAlac", "alac.caf", {"-c:a", "alac"})),
        withFfmpeg("au", "s16.au", {}),
        withPadding(withFfmpeg("w64", "s16.w64", {}), 2),  // ffmpeg counts the filling bytes
        withFfmpeg("flac", "song.flac", {}),
        withFfmpeg("oggFlac", "flac.ogg", {"-c:a", "flac"}),
        withIndexAtTheEnd(withFfmpeg("m4aAlac", "alac.m4a", {"-c:a", "alac"})),
        withIndexAtTheEnd(withFfmpeg("movPcm", "pcm.mov", {"-c:a", "pcm_s24le"})),
        withFfmpeg("wavpack", "song.wv", {}),
        withFfmpeg("tta", "song.tta", {}),
        loosePackets(withFfmpeg("matroskaFlac", "flac.mka", {"-c:a", "flac"})),
    };
    return all;
}

std::vector<MusicFormat> lossyFormats()
{
    const std::vector<std::string> lame = {"lame", "--quiet", "-V4", "SOURCE", "TARGET"};
    const std::vector<std::string> constantLame = {"lame", "--quiet", "--cbr", "-b",
                                                   "128",  "SOURCE",  "TARGET"};
    std::vector<std::string> bareLame = {"lame", "--quiet", "-t", "-b", "128", "SOURCE", "TARGET"};
    return {
        withFfmpeg("wav8", "u8.wav", {"-c:a", "pcm_u8"}, Loss::some),
        withFfmpeg("wavMuLaw", "mulaw.wav", {"-c:a", "pcm_mulaw"}, Loss::some),
        countedInPackets({.name = "mp3Constant",
                          .fileName = "cbr.mp3",
                          .encoder = constantLame,
                          .loss = Loss::some},
                         1152),
        // ffmpeg rounds the padding that it writes
        countedInPackets(
            withPadding(withFfmpeg("mp3ByFfmpeg", "ffmpeg.mp3", {"-b:a", "128k"}, Loss::some), 576),
            1152),
        countedInPackets(
            {.name = "mp3Variable", .fileName = "vbr.mp3", .encoder = lame, .loss = Loss::some},
            1152),
        countedInPackets(withPadding({.name = "mp3Bare",
                                      .fileName = "bare.mp3",
                                      .encoder = std::move(bareLame),
                                      .loss = Loss::some},
                                     3 * 1152),
                         1152),
        countedInPackets(withPadding(withFfmpeg("mp2", "song.mp2", {}, Loss::some), 2 * 1152),
                         1152),
        withIndexAtTheEnd(withFfmpeg("m4aAac", "aac.m4a", {"-c:a", "aac"}, Loss::some)),
        countedInPackets(
            withPadding(withFfmpeg("adts", "song.aac", {"-c:a", "aac"}, Loss::some), 3 * 1024),
            1024),
        withFfmpeg("vorbis", "vorbis.ogg", {"-c:a", "libvorbis"}, Loss::some),
        at48000(withFfmpeg("opus", "song.opus", {"-c:a", "libopus"}, Loss::some)),
        loosePackets(at48000(withFfmpeg("webmOpus", "opus.webm", {"-c:a", "libopus"}, Loss::some))),
        loosePackets(
            withPadding(withFfmpeg("wma2", "two.wma", {"-c:a", "wmav2"}, Loss::some), 2 * 2048)),
        loosePackets(
            withPadding(withFfmpeg("wma1", "one.wma", {"-c:a", "wmav1"}, Loss::some), 2 * 2048)),
        loosePackets(withPadding(
            withFfmpeg("matroskaVorbis", "vorbis.mka", {"-c:a", "libvorbis"}, Loss::some), 2048)),
        loosePackets(withPadding(withFfmpeg("ac3", "song.ac3", {}, Loss::some), 2 * 1536)),
    };
}

}  // namespace

Recording makeRecording(std::int64_t frames, int sampleRate, int channelCount)
{
    std::mt19937 random(20260101);
    Recording song = {.sampleRate = sampleRate, .channels = {}};
    for (int channel = 0; channel < channelCount; ++channel) {
        std::vector<std::int16_t> samples;
        for (std::int64_t frame = 0; frame < frames; ++frame) {
            const double noise = static_cast<double>(random() % 2001) / 1000.0 - 1.0;
            const double tone = toneAt(static_cast<double>(frame) / sampleRate, channel);
            const bool isClick = (frame + 100 * channel) % (sampleRate / 2) == 0;
            const double value = isClick ? 0.9 : tone + 0.02 * noise;
            samples.push_back(static_cast<std::int16_t>(std::lround(value * 32767)));
        }
        song.channels.push_back(std::move(samples));
    }
    return song;
}

void writeWave(const std::filesystem::path& path, const Recording& song)
{
    const std::uint64_t channels = song.channels.size();
    const auto rate = static_cast<std::uint64_t>(song.sampleRate);
    const std::uint64_t dataSize = static_cast<std::uint64_t>(song.length()) * channels * 2;
    std::vector<std::uint8_t> bytes;
    append(bytes, "RIFF");
    append(bytes, 36 + dataSize, 4);
    append(bytes, "WAVEfmt ");
    append(bytes, 16, 4);
    append(bytes, 1, 2);
    append(bytes, channels, 2);
    append(bytes, rate, 4);
    append(bytes, rate * channels * 2, 4);
    append(bytes, channels * 2, 2);
    append(bytes, 16, 2);
    append(bytes, "data");
    append(bytes, dataSize, 4);
    for (std::size_t frame = 0; frame < song.channels.front().size(); ++frame) {
        for (const auto& channel : song.channels) {
            append(bytes, static_cast<std::uint16_t>(channel[frame]), 2);
        }
    }
    writeBytes(path, bytes);
}

std::vector<std::uint8_t> readBytes(const std::filesystem::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void writeBytes(const std::filesystem::path& path, std::span<const std::uint8_t> bytes)
{
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    std::ranges::copy(bytes, std::ostreambuf_iterator<char>(stream));
    stream.close();
    EXPECT_TRUE(stream.good()) << path;
}

const std::vector<MusicFormat>& musicFormats()
{
    static const std::vector<MusicFormat> all = [] {
        std::vector<MusicFormat> formats = losslessFormats();
        std::ranges::move(lossyFormats(), std::back_inserter(formats));
        return formats;
    }();
    return all;
}

const MusicFormat& musicFormat(const std::string& name)
{
    return *std::ranges::find(musicFormats(), name, &MusicFormat::name);
}

MusicFixtures& MusicFixtures::shared()
{
    static MusicFixtures fixtures;
    return fixtures;
}

MusicFixtures::MusicFixtures() : song_(makeRecording(44100 * 23 + 613)) {}

std::filesystem::path MusicFixtures::file(const MusicFormat& format)
{
    const std::filesystem::path target = folder_.path() / format.fileName;
    return std::filesystem::exists(target) ? target : encode(format, song_, format.fileName);
}

std::filesystem::path MusicFixtures::encode(const MusicFormat& format, const Recording& song,
                                            const std::string& fileName)
{
    const std::filesystem::path source = folder_.path() / "source.wav";
    const std::filesystem::path target = folder_.path() / fileName;
    writeWave(source, song);
    std::vector<std::string> arguments = format.encoder;
    std::ranges::replace(arguments, "SOURCE", source.string());
    std::ranges::replace(arguments, "TARGET", target.string());
    const ProgramResult result = runProgram(arguments);
    EXPECT_EQ(result.exitStatus, 0) << format.name << ": " << result.standardError;
    return result.exitStatus == 0 ? target : std::filesystem::path();
}

}  // namespace tonvale::test
