// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

// What is heard of a song that is played, retuned, taken up elsewhere and stopped, and when: the
// whole way from the file to a sound server of its own that plays to nobody.
//
//     preview-latency [seconds] [song]     how long to look for underruns with every core busy
//                                          (60), and of which song, instead of a made one

#include "Platform/Audio/AudioFile.h"
#include "Platform/Audio/Graph/AudioEngine.h"
#include "Platform/Audio/Graph/AudioPlayerNode.h"
#include "Platform/Audio/Graph/AudioUnitTimePitch.h"
#include "SoundMeasuring.h"
#include "Support/PulseServer.h"
#include "Support/Recorder.h"
#include "Support/TemporaryFolder.h"
#include "ToneAnalysis.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <numbers>
#include <optional>
#include <thread>
#include <vector>

namespace {

using namespace tonvale;
using namespace tonvale::benchmarks;
using test::Recorder;
using Figures = std::vector<double>;

constexpr double songRate = 44100;
constexpr double tone = 440;
constexpr double level = 0.5;
constexpr std::int64_t half = 60 * 44100;  // frames; a tone on the left, then on the right
constexpr int rounds = 10;

double milliseconds(double frames)
{
    return frames * 1000 / deviceRate;
}

/// A stereo song of so many frames; `sampleAt(channel, frame)` tells what is in it.
template <class Signal>
std::shared_ptr<AudioFile> makeSong(const std::filesystem::path& path, std::int64_t length,
                                    Signal sampleAt)
{
    AudioFileSettings settings;
    settings.sampleRate = songRate;
    settings.numberOfChannels = 2;
    AudioFile file = AudioFile::forWriting(path, settings);
    const auto frames = static_cast<std::uint32_t>(length);
    const auto buffer = AudioPCMBuffer::create(file.processingFormat(), frames);
    buffer->setFrameLength(frames);
    for (std::uint32_t channel = 0; channel < 2; ++channel) {
        for (std::int64_t frame = 0; frame < length; ++frame) {
            buffer->channel(channel)[static_cast<std::size_t>(frame)] =
                static_cast<float>(sampleAt(channel, frame));
        }
    }
    file.write(*buffer);
    file.close();
    return std::make_shared<AudioFile>(AudioFile::forReading(path));
}

double toneAt(std::uint32_t channel, std::int64_t frame)
{
    const double turns = tone * static_cast<double>(frame) / songRate;
    const bool sounds = (channel == 0) == (frame < half);
    return sounds ? level * std::sin(2 * std::numbers::pi * turns) : 0;
}

constexpr double clickSpacing = 0.25;  // seconds

double clickAt(std::uint32_t /*channel*/, std::int64_t frame)
{
    return frame % std::llround(clickSpacing * songRate) == 0 ? level : 0;
}

/// A song on its way to the loudspeakers.
class Preview {
public:
    Preview()
    {
        engine_.attach(player_);
        engine_.attach(pitch_);
        engine_.connect(player_, pitch_, std::nullopt);
        engine_.connect(pitch_, engine_.mainMixerNode(), std::nullopt);
        engine_.start();
    }
    void play(const std::shared_ptr<AudioFile>& song, std::int64_t start)
    {
        player_.stop();
        player_.scheduleSegment(song, start, static_cast<std::uint32_t>(song->length() - start));
        player_.play();
    }
    void stop() { player_.stop(); }
    void setPitch(float cents) { pitch_.setPitch(cents); }
    [[nodiscard]] std::uint64_t underruns() const { return engine_.underrunCount(); }
    [[nodiscard]] bool isRunning() const { return engine_.isRunning(); }

private:
    AudioPlayerNode player_;
    AudioUnitTimePitch pitch_;
    AudioEngine engine_;  // last: goes before its nodes
};

void measurePlayAndStop(Preview& preview, Recorder& recorder,
                        const std::shared_ptr<AudioFile>& song, float cents)
{
    Figures begins;
    Figures ends;
    Figures clicks;
    preview.setPitch(cents);
    for (int round = 0; round < rounds; ++round) {
        const double play = now(recorder);
        preview.play(song, half / 2 + 997 * round);
        wait(recorder, 0.3 + 0.0013 * round);
        const double stop = now(recorder);
        preview.stop();
        wait(recorder, round % 2 == 0 ? 0.2 : 0.6);  // every other time from the device's pause
        const Samples sound = recorder.channel(0);
        const auto end = static_cast<double>(endOfSound(sound));
        const auto begin = static_cast<double>(firstSound(sound, play - 480));
        begins.push_back(milliseconds(begin - play));
        ends.push_back(milliseconds(end - stop));
        clicks.push_back(std::max(clickIn(sound, level, begin - 600, begin + 2400),
                                  clickIn(sound, level, end - 600, end + 600)));
    }
    std::printf("%+.0f cents\n", double{cents});
    report("  from play to sound", begins, "ms");
    report("  from stop to silence", ends, "ms");
    report("  click at either", clicks, "dB");
}

void measureSeek(Preview& preview, Recorder& recorder, const std::shared_ptr<AudioFile>& song)
{
    Figures begins;
    Figures ends;
    for (int round = 0; round < rounds; ++round) {
        preview.play(song, half / 2);
        wait(recorder, 0.3 + 0.0013 * round);
        const double seek = now(recorder);
        preview.play(song, half * 3 / 2);
        wait(recorder, 0.4);
        ends.push_back(milliseconds(static_cast<double>(endOfSound(recorder.channel(0))) - seek));
        begins.push_back(
            milliseconds(static_cast<double>(firstSound(recorder.channel(1), seek - 480)) - seek));
        preview.stop();
        wait(recorder, 0.2);
    }
    report("  old place heard after a seek for", ends, "ms");
    report("  new place heard after", begins, "ms");
}

/// From 0 to `cents` in the middle of the tone: when there is only the new one left.
void measureRetune(Preview& preview, Recorder& recorder, const std::shared_ptr<AudioFile>& song,
                   float cents)
{
    Figures times;
    Figures clicks;
    Figures dips;
    const double shifted = tone * std::exp2(double{cents} / 1200);
    for (int round = 0; round < rounds; ++round) {
        preview.setPitch(0);
        preview.play(song, half / 3);
        wait(recorder, 0.5 + 0.0013 * round);
        const double change = now(recorder);
        preview.setPitch(cents);
        wait(recorder, 0.5);
        const Samples sound = recorder.channel(0);
        double time = change + 19200;
        while (decibels(levelAt(sound, time, 960, shifted) / level) > -0.3) {
            time -= 24;
        }
        times.push_back(milliseconds(time - change));
        clicks.push_back(clickIn(sound, level, change, change + 14400));
        dips.push_back(dipIn(sound, level, change, change + 14400));
        preview.stop();
        wait(recorder, 0.2);
    }
    std::printf("from 0 to %+.0f cents\n", double{cents});
    report("  from the change to the new pitch", times, "ms");
    report("  click", clicks, "dB");
    report("  dip", dips, "dB");
}

/// From 0 to `cents` between the clicks of a song: how far from their places those after it are.
void measurePlaces(Preview& preview, Recorder& recorder, const std::shared_ptr<AudioFile>& clicks,
                   float cents)
{
    Figures distances;
    constexpr double spacing = clickSpacing * deviceRate;
    for (int round = 0; round < rounds; ++round) {
        preview.setPitch(0);
        const double play = now(recorder);
        preview.play(clicks, 0);
        wait(recorder, 2.4 * clickSpacing + 0.0113 * round);
        preview.setPitch(cents);
        wait(recorder, 4 * clickSpacing);
        const Samples sound = recorder.channel(0);
        const auto first = static_cast<double>(
            strongest(sound, static_cast<double>(firstSound(sound, play - 480)), spacing / 2));
        for (int click = 1; click < 6; ++click) {
            const double place = first + click * spacing;
            const auto found =
                static_cast<double>(strongest(sound, place - spacing / 4, spacing / 2));
            distances.push_back(milliseconds(found - place));
        }
        preview.stop();
        wait(recorder, 0.2);
    }
    report("  from a click's place to the click", distances, "ms");
}

void measureLoad(Preview& preview, const std::shared_ptr<AudioFile>& song,
                 std::chrono::seconds time)
{
    preview.setPitch(300);
    preview.play(song, 0);
    reportProcessor("processor while playing", std::chrono::seconds(10));
    const BusyCores busy;
    const std::uint64_t underrunsBefore = preview.underruns();
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
        preview.play(song, 0);
        const auto length = std::chrono::duration<double>(
            static_cast<double>(song->length()) / song->processingFormat().sampleRate - 1);
        std::this_thread::sleep_until(std::min<std::chrono::steady_clock::time_point>(
            end, std::chrono::steady_clock::now()
                     + std::chrono::duration_cast<std::chrono::milliseconds>(length)));
    }
    reportUnderruns(preview.underruns() - underrunsBefore, time);
}

}  // namespace

int main(int count, char** arguments)
{
    const std::chrono::seconds time(count > 1 ? std::atoi(arguments[1]) : 60);
    const test::PulseServer server(static_cast<std::uint32_t>(deviceRate));
    const test::TemporaryFolder folder;
    const auto song = makeSong(folder.path() / "song.wav", 2 * half, toneAt);
    const auto clicks = makeSong(folder.path() / "clicks.wav", 3 * 44100, clickAt);
    Preview preview;
    {
        Recorder recorder(static_cast<std::uint32_t>(deviceRate));
        measurePlayAndStop(preview, recorder, song, 0);
        measurePlayAndStop(preview, recorder, song, 300);
        measureSeek(preview, recorder, song);
        measureRetune(preview, recorder, song, 300);
        measurePlaces(preview, recorder, clicks, 300);
        measureRetune(preview, recorder, song, -600);
        measurePlaces(preview, recorder, clicks, -600);
    }
    measureLoad(preview,
                count > 2 ? std::make_shared<AudioFile>(AudioFile::forReading(arguments[2])) : song,
                time);
    return preview.isRunning() ? 0 : 1;
}
