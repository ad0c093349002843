// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CListeningCursor.h"

#include <cstdio>

namespace {

bool IsTrimmed(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

std::string At(std::string_view text, std::size_t index) {
    return index < text.size() ? std::string(1, text[index]) : std::string();
}

}  // namespace

std::string CListeningCursor::Normalise(std::string_view text) {
    while (!text.empty() && IsTrimmed(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsTrimmed(text.back())) {
        text.remove_suffix(1);
    }
    std::string withoutMarkers;
    constexpr std::string_view kWordMarker = "  /  ";
    for (std::size_t i = 0; i < text.size();) {
        if (text.substr(i, kWordMarker.size()) == kWordMarker) {
            i += kWordMarker.size();
        } else {
            withoutMarkers += text[i++];
        }
    }
    std::string normalised;
    for (const char c : withoutMarkers) {
        if (c == ' ') {
            continue;
        }
        normalised += (c == '\r' || c == '\n') ? '\0' : c;
    }
    return normalised;
}

void CListeningCursor::Reset(std::string_view practiceText) {
    m_practiceText = practiceText;
    m_listeningText = practiceText;
    m_position = 0;
    m_next.clear();
}

void CListeningCursor::NextCharacter() {
    if (m_next.empty()) {
        m_position = 1;
        m_next = At(m_practiceText, 1);
        m_current = At(m_practiceText, 0);
        m_previous.clear();
        m_listeningText = Normalise(m_listeningText);
        return;
    }
    const auto length = static_cast<std::int32_t>(m_listeningText.size());
    ++m_position;
    while (m_position < length && (m_listeningText[static_cast<std::size_t>(m_position)] == ' ' ||
                                   m_listeningText[static_cast<std::size_t>(m_position)] == '/')) {
        ++m_position;
    }
    if (m_position > length) {
        m_position = length;
    }
    m_previous = m_current;
    m_current = m_next;
    if (m_position < length) {
        m_next = At(m_listeningText, static_cast<std::size_t>(m_position));
    }
}

std::string FormatSessionClock(std::int64_t elapsedSeconds) {
    const std::int64_t e = elapsedSeconds;
    const auto hours = static_cast<std::int16_t>(e / 3600 - 24 * (e / 86400));
    const auto minutes = static_cast<std::int16_t>(e / 60 - 60 * (e / 3600));
    const auto seconds = static_cast<std::int16_t>(e - 60 * (e / 60));
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", hours, minutes, seconds);
    return text;
}
