// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// The user's timing, tone and speech settings, in the order the profile and the settings sheet
/// know them. The four pause values are edited and stored, but no sound timing reads them.
struct CodeTiming {
    std::int32_t PauseChar = 0;
    std::int32_t PauseDah = 0;
    std::int32_t PauseDit = 0;
    std::int32_t PauseWord = 0;
    std::int32_t ToneMHz = 0;  ///< tone pitch in hertz, whatever the name says
    std::int32_t WordRate = 0;  ///< words per minute
    std::int32_t SpeechDelay = 0;  ///< milliseconds
    std::int32_t Actor = 0;  ///< voice index 0 to 8

    friend bool operator==(const CodeTiming&, const CodeTiming&) = default;
};

/// Length of one dit in seconds: 12.0 / WPM / 10.0, computed in double precision from the speed
/// taken as single precision and kept in single precision (80 ms at 15 WPM).
inline float DitSeconds(int wordsPerMinute) {
    return static_cast<float>(12.0 / static_cast<double>(static_cast<float>(wordsPerMinute)) /
                              10.0);
}
