// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

// What is heard of the sound output, and when, on a sound server of its own that plays to nobody.
//
//     sound-output [seconds]     how long to look for underruns with every core busy; 60 by default

#include "SoundMeasuring.h"
#include "Support/PulseServer.h"
#include "Support/Recorder.h"
#include "Support/ToneSource.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <numbers>
#include <thread>
#include <vector>

namespace {

using namespace tonvale;
using namespace tonvale::benchmarks;
using test::Recorder;
using test::ToneSource;

constexpr double rate = 48000;
constexpr double frequency = 997;
constexpr int rounds = 20;

struct Take {
    double beginMilliseconds;  // from play to the first frame
    double endMilliseconds;    // from the discard to the last
    double clickDecibels;      // second difference beyond the tone's own, against a full tone's
};

double clickDecibels(const std::vector<float>& sound, std::size_t begin, std::size_t end)
{
    const double turn = 2.0 * std::numbers::pi * frequency / rate;
    const double ofFullTone = 2.0 - 2.0 * std::cos(turn);
    double largest = 0.0;
    for (std::size_t i = begin; i + 1 < end; ++i) {
        largest = std::max(largest, std::abs(double{sound[i - 1]} - 2.0 * double{sound[i]}
                                             + double{sound[i + 1]}));
    }
    const double beyond = std::max(largest - 0.5 * ofFullTone, 1e-9);  // ours has half the level
    return 20.0 * std::log10(beyond / ofFullTone);
}

Take playAndStop(Recorder& recorder, AudioOutput& output, ToneSource& source, double seconds)
{
    const std::size_t before = recorder.frameCount();
    source.setTone(frequency);
    const double play = now(recorder);
    source.offer(ToneSource::unlimited);
    output.framesReady();
    wait(recorder, seconds);
    source.offer(0);
    const double stop = now(recorder);
    output.discardQueued();
    wait(recorder, 0.2);

    const std::vector<float> sound = recorder.channel(0);
    const auto isHeard = [](float sample) { return sample != 0.0F; };
    const auto first =
        std::find_if(sound.begin() + static_cast<std::ptrdiff_t>(before), sound.end(), isHeard);
    const auto last = std::find_if(sound.rbegin(), sound.rend(), isHeard).base();
    const auto end = static_cast<std::size_t>(last - sound.begin());
    return {(static_cast<double>(first - sound.begin()) - play) * 1000 / rate,
            (static_cast<double>(end) - stop) * 1000 / rate,
            clickDecibels(sound, end - 2400, end + 2400)};
}

void measureSound(AudioOutput& output, ToneSource& source)
{
    Recorder recorder(static_cast<std::uint32_t>(rate));
    std::vector<double> begins;
    std::vector<double> ends;
    std::vector<double> clicks;
    for (int round = 0; round < rounds; ++round) {
        const Take take = playAndStop(recorder, output, source, 0.3 + 0.0013 * round);
        begins.push_back(take.beginMilliseconds);
        ends.push_back(take.endMilliseconds);
        clicks.push_back(take.clickDecibels);
        wait(recorder, round % 2 == 0 ? 0.0 : 0.4);  // every other time from the pause
    }
    report("from play to sound", begins, "ms");
    report("from discard to silence", ends, "ms");
    report("click at a discard", clicks, "dB");
}

void measureUnderruns(AudioOutput& output, std::chrono::seconds time)
{
    const BusyCores busy;
    const std::uint64_t before = output.underrunCount();
    std::this_thread::sleep_for(time);
    reportUnderruns(output.underrunCount() - before, time);
}

}  // namespace

int main(int count, char** arguments)
{
    const std::chrono::seconds time(count > 1 ? std::atoi(arguments[1]) : 60);
    const test::PulseServer server(static_cast<std::uint32_t>(rate));
    ToneSource source(rate);
    const std::unique_ptr<AudioOutput> output = AudioOutput::create();
    output->start(source);
    measureSound(*output, source);
    reportProcessor("processor while idle", std::chrono::seconds(5));
    source.setTone(frequency);
    source.offer(ToneSource::unlimited);
    output->framesReady();
    reportProcessor("processor while playing", std::chrono::seconds(10));
    measureUnderruns(*output, time);
    return output->isRunning() ? 0 : 1;
}
