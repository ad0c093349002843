// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string_view>
#include <string>

/// Whether a time or span holds a value.
enum class TimeStatus { Valid, Invalid, Null };

/// A span of time in 100-nanosecond units, with a status.
struct CHighResSpan {
    TimeStatus status = TimeStatus::Valid;
    std::int64_t count = 0;

    /// Whole milliseconds, truncated toward zero.
    std::int64_t TotalMilliseconds() const { return count / kTicksPerMillisecond; }

    static constexpr std::int64_t kTicksPerMillisecond = 10'000;
};

/// A local date and time in 100-nanosecond units since the clock's origin (the Unix epoch in
/// local time), with a status. Valid with a count of 0 when default-constructed.
struct CHighResDateTime {
    TimeStatus status = TimeStatus::Valid;
    std::int64_t count = 0;

    /// The local clock now, to the millisecond.
    static CHighResDateTime Now();

    /// "%H:%M:%S:%s" gives hours, minutes, seconds and milliseconds; other characters are copied.
    std::string Format(std::string_view pattern) const;

    /// Null if either side is null, else invalid if either is invalid (count 0 in both cases),
    /// else the difference of the counts.
    friend CHighResSpan operator-(const CHighResDateTime& later, const CHighResDateTime& earlier);
};
