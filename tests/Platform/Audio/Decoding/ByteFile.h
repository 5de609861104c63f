// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/LocalInput.h"
#include "Support/TemporaryFolder.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

namespace tonvale::test {

using Bytes = std::vector<std::uint8_t>;

/// Numbers as most containers write them: the highest byte first.
inline void append(Bytes& bytes, std::uint64_t number, int byteCount)
{
    for (int place = byteCount - 1; place >= 0; --place) {
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * place)));
    }
}

inline void append(Bytes& bytes, const Bytes& more)
{
    std::ranges::copy(more, std::back_inserter(bytes));
}

inline Bytes text(std::string_view characters)
{
    return {characters.begin(), characters.end()};
}

/// A file of these bytes, opened.
class ByteFile {
public:
    explicit ByteFile(const Bytes& bytes)
    {
        const auto path = folder_.path() / "bytes";
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        input_ = LocalInput::open(path);
    }
    [[nodiscard]] LocalInput& input() const { return *input_; }

private:
    TemporaryFolder folder_;
    std::unique_ptr<LocalInput> input_;
};

}  // namespace tonvale::test
