// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// The C runtime's srand/rand sequence, reproduced exactly so that practice text generated from a
/// seed is the same on every platform (srand(1) then rand() gives 41, 18467, 6334, 26500, ...).
class CCrtRandom {
public:
    static constexpr int kRandMax = 32767;

    explicit CCrtRandom(std::uint32_t seed = 1) : m_state(seed) {}

    /// srand(): restart the sequence from seed.
    void Seed(std::uint32_t seed) { m_state = seed; }

    /// rand(): the next value, 0 to kRandMax.
    int Next() {
        m_state = m_state * kMultiplier + kIncrement;
        return static_cast<int>((m_state >> 16) & kRandMax);
    }

private:
    static constexpr std::uint32_t kMultiplier = 214013u;
    static constexpr std::uint32_t kIncrement = 2531011u;

    std::uint32_t m_state;
};
