// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/FrameWalker.h"

#include <cstdint>
#include <vector>

namespace tonvale {

/// Remembers where every n-th packet of a stream without time stamps lies. Filled in order.
class PacketTable {
public:
    struct Entry {
        std::int64_t tick = 0;
        FrameWalker::Found frame;
    };

    /// Takes note of the next packet; packets already known are passed over.
    void add(const Entry& entry);

    /// The last noted packet that begins at `tick` or earlier, or the first one.
    /// @return nothing while the table is empty
    [[nodiscard]] const Entry* find(std::int64_t tick) const noexcept;

private:
    std::vector<Entry> entries_;
    std::int64_t endOffset_ = -1;  ///< of the last packet seen, bytes
    int sinceLastEntry_ = 0;
};

}  // namespace tonvale
