// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/ContainerExtent.h"

#include "Platform/Audio/Decoding/PacketSource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace tonvale::test {

namespace {

constexpr DecodedFormat at48000 = {.sampleRate = 48000, .channelCount = 2};

/// Packets of a codec that does not tell their length.
class FakePackets final : public PacketSource {
public:
    struct Fake {
        std::int64_t stamp = noTimeStamp;
        std::int64_t duration = 0;
        std::int64_t discard = 0;
    };

    FakePackets(bool hasExactStamps, std::vector<Fake> packets)
        : hasExactStamps_(hasExactStamps)
        , packets_(std::move(packets))
        , parameters_(makeCodecParameters())
    {
    }

    [[nodiscard]] const AVCodecParameters& parameters() const noexcept override
    {
        return *parameters_;
    }
    [[nodiscard]] AVRational tickDuration() const noexcept override { return {1, 1000}; }
    [[nodiscard]] bool hasExactStamps() const noexcept override { return hasExactStamps_; }
    [[nodiscard]] bool next(AVPacket& packet) override
    {
        av_packet_unref(&packet);
        if (next_ == packets_.size()) {
            return false;
        }
        const Fake& fake = packets_[next_++];
        packet.pts = fake.stamp;
        packet.duration = fake.duration;
        if (fake.discard > 0) {
            std::uint8_t* const data =
                av_packet_new_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, 10);
            std::fill_n(data, 10, std::uint8_t{0x77});
            for (int place = 0; place < 4; ++place) {
                data[4 + place] = static_cast<std::uint8_t>(fake.discard >> (8 * place));
            }
        }
        return true;
    }
    void seek(std::int64_t /*tick*/) override {}
    void rewind() override { next_ = 0; }
    [[nodiscard]] MusicExtent extent(const DecodedFormat& /*format*/) override { return {}; }

private:
    bool hasExactStamps_;
    std::vector<Fake> packets_;
    UniqueCodecParameters parameters_;
    std::size_t next_ = 0;
};

std::int64_t endOf(bool hasExactStamps, std::vector<FakePackets::Fake> packets)
{
    FakePackets source(hasExactStamps, std::move(packets));
    return scanForEnd(source, 20000, at48000);
}

TEST(ScanForEndTest, WithoutStampsTheEndIsAllPacketsTogether)
{
    EXPECT_EQ(endOf(false, {}), 0);
    EXPECT_EQ(endOf(false, {{.duration = 10}, {.duration = 20}, {.duration = 5}}), 35 * 48);
    EXPECT_EQ(endOf(false, {{.stamp = 5000, .duration = 10}, {.duration = 20}}), 30 * 48);
}

TEST(ScanForEndTest, WithStampsTheEndIsThatOfTheLatestPacket)
{
    EXPECT_EQ(endOf(true, {{0, 10}, {1000, 20}, {500, 20}}), 1020 * 48);
    EXPECT_EQ(endOf(true, {{0, 10}, {.duration = 700}}), 10 * 48) << "one without a stamp";
    EXPECT_EQ(endOf(true, {{0, 10}, {202'000, 20}, {20, 5}}), 25 * 48)
        << "no song of 20000 bytes lasts 202 seconds";
    EXPECT_EQ(endOf(true, {{0, 10}, {201'900, 20}}), 201'920 * 48);
}

TEST(ScanForEndTest, TheLastPacketSaysHowMuchOfItIsNoMusic)
{
    EXPECT_EQ(endOf(false, {{.duration = 10}, {.duration = 10, .discard = 100}}), 20 * 48 - 100);
    EXPECT_EQ(endOf(false, {{.duration = 10, .discard = 100}, {.duration = 10}}), 20 * 48);
    EXPECT_EQ(endOf(true, {{0, 10}, {1000, 2000, 0x10203}}), 3000 * 48 - 0x10203);
    EXPECT_EQ(endOf(true, {{0, 10, 0x01000000}}), 0) << "more than there is";
}

}  // namespace

}  // namespace tonvale::test
