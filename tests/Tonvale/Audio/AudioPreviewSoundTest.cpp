// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/SoundTest.h"
#include "PreviewSound.h"

#include <cmath>
#include <numeric>
#include <sstream>
#include <vector>

namespace tonvale::test {

namespace {

using Samples = std::vector<float>;

constexpr double rate = 48000;
constexpr double seconds = 1.5;

double rms(const Samples& samples)
{
    return std::sqrt(std::inner_product(samples.begin(), samples.end(), samples.begin(), 0.0)
                     / static_cast<double>(samples.size()));
}

/// What a recording has of a tone.
struct HeardTone {
    double cents = 0;     // above the expected frequency
    double decibels = 0;  // above the expected level
    double seconds = 0;

    explicit HeardTone(const Samples& recording, double frequency, double level)
    {
        const std::size_t begin = soundIn(recording);
        const std::size_t end = recording.size() - soundIn({recording.rbegin(), recording.rend()});
        seconds = (static_cast<double>(end) - static_cast<double>(begin)) / rate;
        if (seconds < 0.5) {
            return;
        }
        const auto first = recording.begin() + static_cast<std::ptrdiff_t>(begin);
        const auto last = recording.begin() + static_cast<std::ptrdiff_t>(end);
        cents = centsBetween(frequency, frequencyOf({first, last}, rate));
        decibels = 20 * std::log10(rms({first + 12000, last - 12000}) / (level * std::sqrt(0.5)));
    }
};

class AudioPreviewSound : public PreviewSound {
protected:
    /// Both sides of the song from beginning to end.
    std::vector<Samples> record(int cents)
    {
        Recorder recorder;
        preview.play(cents, 0);
        EXPECT_TRUE(recorder.waitForSound(isSounding));
        EXPECT_TRUE(recorder.waitForSilence());
        return {recorder.channel(0), recorder.channel(1)};
    }
};

TEST_F(AudioPreviewSound, SoundsInTheNewKeyAtItsTempoAndLevel)
{
    load(440, seconds);
    std::ostringstream tries;
    bool isRight = false;
    for (int round = 0; round < undisturbedRounds && !isRight; ++round) {
        isRight = true;
        for (const Samples& side : record(300)) {
            const HeardTone tone(side, 523.2511, 0.5);
            tries << tone.cents << " cents, " << tone.decibels << " dB, " << tone.seconds << " s\n";
            isRight = isRight && std::abs(tone.cents) < 3 && std::abs(tone.decibels) < 0.1
                      && std::abs(tone.seconds - seconds) < 0.005;
        }
    }
    EXPECT_TRUE(isRight) << tries.str();
}

TEST_F(AudioPreviewSound, OneChannelAndSixSoundOnBothSides)
{
    for (const std::size_t channelCount : {1U, 6U}) {
        load(440, seconds, 96000, channelCount);
        bool isRight = false;
        for (int round = 0; round < undisturbedRounds && !isRight; ++round) {
            const std::vector<Samples> sides = record(300);
            isRight = std::abs(HeardTone(sides[0], 523.2511, 0.5).cents) < 3
                      && std::abs(HeardTone(sides[1], 523.2511, 0.5).cents) < 3
                      && rms(sides[0]) > 0.1 && rms(sides[1]) > 0.1;
        }
        EXPECT_TRUE(isRight) << channelCount;
    }
}

TEST_F(AudioPreviewSound, PlayingAgainAfterTheSongsEndIsNoUnderrun)
{
    load(440, 0.3);
    for (unsigned round = 1; round <= 3; ++round) {
        preview.play(300, 0);
        ASSERT_TRUE(hasTaken(round * 14400U));  // all of it
        ASSERT_TRUE(isPaused());
    }
    EXPECT_EQ(taken.all, 3U * 14400U);
    EXPECT_EQ(underruns(), 0U);
}

}  // namespace

}  // namespace tonvale::test
