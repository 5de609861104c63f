// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tonvale {

/// Carries samples from one thread to another without locks: one writes, one reads.
/// The places of both count up for ever; modulo the capacity they name an index.
class SampleRing {
public:
    /// @param capacity  samples, at least 1
    explicit SampleRing(std::size_t capacity) : samples_(capacity) {}

    /// How many samples can be written. @thread the writer
    [[nodiscard]] std::size_t room() const noexcept;

    /// Appends samples, room() at most. @thread the writer
    void write(std::span<const float> samples) noexcept;

    /// Takes samples off, as many as there are and fit. @return how many
    /// @thread the reader; no allocation, lock or wait
    [[nodiscard]] std::size_t read(std::span<float> samples) noexcept;

    /// @thread the writer, for whom the ring can only become emptier
    [[nodiscard]] bool isEmpty() const noexcept;

    /// Forgets what was written. @thread ANY, while nobody writes or reads
    void clear() noexcept;

private:
    std::vector<float> samples_;
    std::atomic<std::uint64_t> written_ = 0;
    std::atomic<std::uint64_t> read_ = 0;
};

}  // namespace tonvale
