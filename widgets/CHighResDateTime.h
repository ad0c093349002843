// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/CHighResSpan.h"

#include <cstdint>
#include <string>

/// A local date and time with millisecond resolution: a status (valid, invalid, null) and a
/// signed count of 100-nanosecond units since 1 January 1601, 00:00 local time. A default
/// value is valid with a count of 0, so a span measured from it covers the whole count.
class CHighResDateTime {
public:
    using Status = CHighResSpan::Status;

    CHighResDateTime() = default;
    explicit CHighResDateTime(std::int64_t count, Status status = Status::kValid)
        : m_status(status), m_count(count) {}

    /// The local clock now, cut to whole milliseconds.
    static CHighResDateTime Now();
    /// The value for a local calendar time; invalid when a field is out of range.
    static CHighResDateTime FromLocal(int year, int month, int day, int hour, int minute,
                                      int second, int millisecond = 0);

    Status GetStatus() const { return m_status; }
    void SetStatus(Status status) { m_status = status; }
    std::int64_t Count() const { return m_count; }

    /// strftime-like: %Y %m %d %H %M %S, %s for milliseconds (three digits), %% for a percent
    /// sign; other characters are copied. Empty for a value that is not valid.
    std::string Format(const std::string& format) const;

    /// Null if either side is null, else invalid if either is invalid, else the difference.
    friend CHighResSpan operator-(const CHighResDateTime& later, const CHighResDateTime& earlier);

private:
    Status m_status = Status::kValid;
    std::int64_t m_count = 0;
};
