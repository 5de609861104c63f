// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/PacketTable.h"

#include <gtest/gtest.h>

namespace tonvale::test {

namespace {

/// The n-th packet of a stream of packets 400 bytes and 1152 ticks long, which begins at tick 100.
PacketTable::Entry packet(std::int64_t number)
{
    return {.tick = 100 + 1152 * number, .frame = {.header = {}, .offset = 400 * number}};
}

PacketTable tableOf(std::int64_t count)
{
    PacketTable table;
    for (std::int64_t number = 0; number < count; ++number) {
        table.add(packet(number));
    }
    return table;
}

TEST(PacketTableTest, NothingIsFoundInAnEmptyTable)
{
    EXPECT_EQ(PacketTable().find(0), nullptr);
}

TEST(PacketTableTest, EverySixtyFourthPacketIsNoted)
{
    const PacketTable table = tableOf(200);
    for (std::int64_t number = 0; number < 200; ++number) {
        const auto* const entry = table.find(packet(number).tick);
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(entry->tick, packet(number / 64 * 64).tick) << number;
        EXPECT_EQ(entry->frame.offset, packet(number / 64 * 64).frame.offset) << number;
    }
}

TEST(PacketTableTest, TheFirstPacketServesWhatLiesBeforeIt)
{
    const PacketTable table = tableOf(200);
    EXPECT_EQ(table.find(-5000)->tick, packet(0).tick);
    EXPECT_EQ(table.find(packet(64).tick - 1)->tick, packet(0).tick);
    EXPECT_EQ(table.find(1'000'000'000)->tick, packet(192).tick);
}

TEST(PacketTableTest, PacketsThatAreKnownAreNotNotedAgain)
{
    PacketTable table = tableOf(100);
    for (std::int64_t number = 64; number < 128; ++number) {  // read again after a seek
        table.add(packet(number));
    }
    EXPECT_EQ(table.find(packet(127).tick)->tick, packet(64).tick);
    table.add(packet(128));
    EXPECT_EQ(table.find(packet(128).tick)->tick, packet(128).tick);
}

}  // namespace

}  // namespace tonvale::test
