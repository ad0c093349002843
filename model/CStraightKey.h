// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "model/CHighResDateTime.h"

/// The Enter key as a straight key: the time between the first press and the release becomes
/// the length of one tone played after the release.
class CStraightKey {
public:
    /// A key-down; auto-repeats while the key is held do not move the start.
    void KeyDown(const CHighResDateTime& now);

    /// A key-up, whether or not a press was seen: the tone length in milliseconds, cut to its low
    /// 16 bits as a signed number and widened, so holds up to 32767 ms play exactly and a hold of
    /// 40000 ms gives 4294941760.
    std::uint32_t KeyUp(const CHighResDateTime& now);

    bool IsDown() const { return m_keyDown != 0; }
    const CHighResDateTime& KeyDownTime() const { return m_keyDownTime; }

    /// The tone length for a span, with the deliberate 16-bit cut.
    static std::uint32_t BeepMilliseconds(const CHighResSpan& span);

private:
    std::int32_t m_keyDown = 0;
    CHighResDateTime m_keyDownTime;
    CHighResDateTime m_keyUpTime;
    CHighResSpan m_keySpan;
};
