// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

// What is heard of a song that is played, retuned, taken up elsewhere and stopped, and when: the
// whole way from the file to a sound server of its own that plays to nobody.
//
//     preview-latency [seconds] [song]     how long to look for underruns with every core busy
//     (60),
//                                          and of which song, instead of a made one

#include "Platform/Audio/AudioFile.h"
#include "Platform/Audio/Graph/AudioEngine.h"
#include "Platform/Audio/Graph/AudioPlayerNode.h"
#include "Platform/Audio/Graph/AudioUnitTimePitch.h"
#include "Support/PulseServer.h"
#include "Support/Recorder.h"
#include "Support/TemporaryFolder.h"

#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <numbers>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using namespace tonvale;
using test::Recorder;
using Samples = std::vector<float>;

constexpr double deviceRate = 48000;
constexpr double songRate = 44100;
constexpr double tone = 440;
constexpr float level = 0.5F;
constexpr std::int64_t half = 60 * 44100;  // frames; a tone on the left, then on the right
constexpr int rounds = 10;

void report(const char* what, Samples figures, const char* unit)
{
    std::sort(figures.begin(), figures.end());
    std::printf("%-36s median %7.1f, from %7.1f to %7.1f %s\n", what,
                double{figures[figures.size() / 2]}, double{figures.front()},
                double{figures.back()}, unit);
}

float decibels(double ratio)
{
    return static_cast<float>(20 * std::log10(std::max(ratio, 1e-9)));
}

float milliseconds(double frames)
{
    return static_cast<float>(frames * 1000 / deviceRate);
}

std::shared_ptr<AudioFile> makeSong(const std::filesystem::path& path)
{
    AudioFileSettings settings;
    settings.sampleRate = songRate;
    settings.numberOfChannels = 2;
    AudioFile file = AudioFile::forWriting(path, settings);
    const auto buffer = AudioPCMBuffer::create(file.processingFormat(), 2 * half);
    buffer->setFrameLength(2 * half);
    for (std::int64_t frame = 0; frame < 2 * half; ++frame) {
        const double turns = tone * static_cast<double>(frame) / songRate;
        const auto sample = static_cast<float>(level * std::sin(2 * std::numbers::pi * turns));
        const auto place = static_cast<std::size_t>(frame);
        buffer->channel(0)[place] = frame < half ? sample : 0;
        buffer->channel(1)[place] = frame < half ? 0 : sample;
    }
    file.write(*buffer);
    file.close();
    return std::make_shared<AudioFile>(AudioFile::forReading(path));
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

void wait(Recorder& recorder, double seconds)
{
    if (!recorder.waitForSeconds(seconds)) {
        throw std::runtime_error("the recording stopped");
    }
}

double now(const Recorder& recorder)
{
    return recorder.frameAt(Recorder::Clock::now());
}

std::size_t firstSound(const Samples& sound, double from)
{
    auto frame = static_cast<std::size_t>(std::max(0.0, from));
    while (frame < sound.size() && sound[frame] == 0.0F) {
        ++frame;
    }
    return frame;
}

std::size_t endOfSound(const Samples& sound)
{
    std::size_t end = sound.size();
    while (end > 0 && sound[end - 1] == 0.0F) {
        --end;
    }
    return end;
}

/// Level of a tone around `centre`, seen through a smooth window of `size` frames.
double levelAt(const Samples& sound, double centre, std::size_t size, double frequency)
{
    const auto first = static_cast<std::size_t>(centre) - size / 2;
    std::complex<double> sum = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const double x = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(size);
        // Blackman-Harris: what is elsewhere in the spectrum stays 92 dB down.
        const double window =
            0.35875 - 0.48829 * std::cos(x) + 0.14128 * std::cos(2 * x) - 0.01168 * std::cos(3 * x);
        const double turns = frequency * static_cast<double>(i) / deviceRate;
        sum += window * double{sound[first + i]} * std::polar(1.0, 2 * std::numbers::pi * turns);
    }
    return 2 * std::abs(sum) / (0.35875 * static_cast<double>(size));
}

/// The largest component above 3 kHz in any short stretch, against the tone.
float clickIn(const Samples& sound, double from, double to)
{
    constexpr std::size_t size = 512;
    double worst = 0;
    for (double centre = from; centre < to; centre += size / 4) {
        for (double frequency = 3000; frequency < 20000; frequency += 2 * deviceRate / size) {
            worst = std::max(worst, levelAt(sound, centre, size, frequency));
        }
    }
    return decibels(worst / double{level});
}

/// The lowest power in any 20 ms, against the tone's.
float dipIn(const Samples& sound, double from, double to)
{
    constexpr std::size_t size = 960;
    double least = 1e9;
    for (double first = from; first < to; first += size / 20) {
        double power = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const double window =
                1 - std::cos(2 * std::numbers::pi * static_cast<double>(i) / size);
            const double sample = double{sound[static_cast<std::size_t>(first) + i]};
            power += window * sample * sample;
        }
        least = std::min(least, power / size);
    }
    return decibels(std::sqrt(2 * least) / double{level});
}

void measurePlayAndStop(Preview& preview, Recorder& recorder,
                        const std::shared_ptr<AudioFile>& song, float cents)
{
    Samples begins;
    Samples ends;
    Samples clicks;
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
        clicks.push_back(std::max(clickIn(sound, begin - 600, begin + 2400),
                                  clickIn(sound, end - 600, end + 600)));
    }
    std::printf("%+.0f cents\n", double{cents});
    report("  from play to sound", begins, "ms");
    report("  from stop to silence", ends, "ms");
    report("  click at either", clicks, "dB");
}

void measureSeek(Preview& preview, Recorder& recorder, const std::shared_ptr<AudioFile>& song)
{
    Samples begins;
    Samples ends;
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
    Samples times;
    Samples clicks;
    Samples dips;
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
        while (decibels(levelAt(sound, time, 960, shifted) / double{level}) > -0.3F) {
            time -= 24;
        }
        times.push_back(milliseconds(time - change));
        clicks.push_back(clickIn(sound, change, change + 14400));
        dips.push_back(dipIn(sound, change, change + 14400));
        preview.stop();
        wait(recorder, 0.2);
    }
    std::printf("from 0 to %+.0f cents\n", double{cents});
    report("  from the change to the new pitch", times, "ms");
    report("  click", clicks, "dB");
    report("  dip", dips, "dB");
}

double processorSeconds()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void measureLoad(Preview& preview, const std::shared_ptr<AudioFile>& song,
                 std::chrono::seconds time)
{
    preview.setPitch(300);
    preview.play(song, 0);
    const double before = processorSeconds();
    constexpr int calmSeconds = 10;
    std::this_thread::sleep_for(std::chrono::seconds(calmSeconds));
    std::printf("processor while playing              %.2f %% of a core\n",
                100 * (processorSeconds() - before) / calmSeconds);
    std::atomic<bool> isOver = false;
    std::vector<std::thread> busy;
    for (unsigned core = 0; core < std::thread::hardware_concurrency(); ++core) {
        busy.emplace_back([&isOver] {
            while (!isOver) {
            }
        });
    }
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
    std::printf("underruns in %lld s, every core busy   %llu\n",
                static_cast<long long>(time.count()),
                static_cast<unsigned long long>(preview.underruns() - underrunsBefore));
    isOver = true;
    for (std::thread& thread : busy) {
        thread.join();
    }
}

}  // namespace

int main(int count, char** arguments)
{
    const std::chrono::seconds time(count > 1 ? std::atoi(arguments[1]) : 60);
    const test::PulseServer server(static_cast<std::uint32_t>(deviceRate));
    const test::TemporaryFolder folder;
    const std::shared_ptr<AudioFile> song = makeSong(folder.path() / "song.wav");
    Preview preview;
    {
        Recorder recorder(static_cast<std::uint32_t>(deviceRate));
        measurePlayAndStop(preview, recorder, song, 0);
        measurePlayAndStop(preview, recorder, song, 300);
        measureSeek(preview, recorder, song);
        measureRetune(preview, recorder, song, 300);
        measureRetune(preview, recorder, song, -600);
    }
    measureLoad(preview,
                count > 2 ? std::make_shared<AudioFile>(AudioFile::forReading(arguments[2])) : song,
                time);
    return preview.isRunning() ? 0 : 1;
}
