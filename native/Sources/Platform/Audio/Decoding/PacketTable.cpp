// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/PacketTable.h"

#include <algorithm>

namespace tonvale {

namespace {

constexpr int packetsPerEntry = 64;  // 4 minutes of MP3 make 144 entries, 2 hours 4300

}  // namespace

void PacketTable::add(const Entry& entry)
{
    if (entry.frame.offset <= endOffset_) {
        return;
    }
    endOffset_ = entry.frame.offset;
    if (entries_.empty() || ++sinceLastEntry_ == packetsPerEntry) {
        entries_.push_back(entry);
        sinceLastEntry_ = 0;
    }
}

const PacketTable::Entry* PacketTable::find(std::int64_t tick) const noexcept
{
    if (entries_.empty()) {
        return nullptr;
    }
    const auto after = std::upper_bound(
        entries_.begin(), entries_.end(), tick,
        [](std::int64_t wanted, const Entry& entry) { return wanted < entry.tick; });
    return after == entries_.begin() ? &entries_.front() : &*std::prev(after);
}

}  // namespace tonvale
