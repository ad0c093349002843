// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Follows a listening session through the practice text for the character displays: the
/// character being sent, the next and the previous one.
///
/// The first two characters come from the text as typed; the rest from a normalised copy without
/// blanks, so a text that starts with a blank or a one-letter word shows one character off for the
/// rest of the session. That is how the displays have always behaved, and learners know it.
class CListeningCursor {
public:
    /// A new session over the practice text.
    void Reset(std::string_view practiceText);

    /// The worker announced its next non-blank character.
    void NextCharacter();

    /// One-character strings, empty when there is none; a line break reads as a zero character,
    /// which keeps its place but shows as nothing.
    const std::string& Previous() const { return m_previous; }
    const std::string& Current() const { return m_current; }
    const std::string& Next() const { return m_next; }
    std::int32_t Position() const { return m_position; }
    const std::string& ListeningText() const { return m_listeningText; }

    /// The normalised listening text: trimmed, every "  /  " removed, then every blank, and each
    /// carriage return and line feed replaced by a zero character.
    static std::string Normalise(std::string_view text);

private:
    std::string m_practiceText;
    std::string m_listeningText;
    std::int32_t m_position = 0;
    std::string m_previous;
    std::string m_current;
    std::string m_next;
};

/// The session clock "HH:MM:SS" for elapsed seconds; the hours start again after 24.
std::string FormatSessionClock(std::int64_t elapsedSeconds);
