// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CStraightKey.h"

void CStraightKey::KeyDown(const CHighResDateTime& now) {
    if (m_keyDown != 0) {
        return;
    }
    m_keyDownTime = now;
    m_keyDown = 1;
}

std::uint32_t CStraightKey::KeyUp(const CHighResDateTime& now) {
    m_keyUpTime = now;
    m_keySpan = m_keyUpTime - m_keyDownTime;
    m_keyDown = 0;
    return BeepMilliseconds(m_keySpan);
}

std::uint32_t CStraightKey::BeepMilliseconds(const CHighResSpan& span) {
    const std::int64_t milliseconds = span.TotalMilliseconds();
    const auto low16 = static_cast<std::int16_t>(static_cast<std::uint16_t>(milliseconds & 0xFFFF));
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(low16));
}
