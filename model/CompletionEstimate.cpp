// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CompletionEstimate.h"

#include <cmath>
#include <cstdint>
#include <cstdio>

#include "model/CodePatterns.h"
#include "model/CodeTiming.h"

double EstimateSeconds(std::string_view text, int wordsPerMinute, int farnsworthFactor) {
    const float unit = DitSeconds(wordsPerMinute);
    const std::int64_t units = CountUnits(ToUpperAscii(text), farnsworthFactor);
    return static_cast<double>(unit) * static_cast<double>(units);
}

std::string FormatCompletionTime(double seconds) {
    constexpr std::int64_t kSecondsPerDay = 86400;
    // Estimates beyond any real text (or a speed of 0) would not fit a whole number of seconds.
    constexpr double kLargest = 9.0e15;
    std::int64_t whole = 0;
    if (std::isfinite(seconds) && std::fabs(seconds) < kLargest) {
        whole = static_cast<std::int64_t>(seconds);
    }
    const std::int64_t ofDay = ((whole % kSecondsPerDay) + kSecondsPerDay) % kSecondsPerDay;
    const int hours = static_cast<int>(ofDay / 3600);
    const int minutes = static_cast<int>(ofDay / 60 % 60);
    int secs = static_cast<int>(ofDay % 60);
    // The span is built from whole seconds, so its millisecond part is always 0 and this
    // rounding never fires; it is kept so the display reads exactly as it always has.
    const std::int64_t spanMilliseconds = whole * 1000;
    if (spanMilliseconds % 1000 > 500) {
        ++secs;
    }
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", hours, minutes, secs);
    return text;
}
