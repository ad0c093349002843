// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// A span between two CHighResDateTime values: a status and a signed count of 100-nanosecond
/// units. Null or invalid spans have a count of 0.
class CHighResSpan {
public:
    enum class Status { kValid, kInvalid, kNull };

    CHighResSpan() = default;
    CHighResSpan(Status status, std::int64_t count)
        : m_status(status), m_count(status == Status::kValid ? count : 0) {}

    Status GetStatus() const { return m_status; }
    std::int64_t Count() const { return m_count; }
    /// Whole milliseconds, truncated toward zero (count / 10000).
    std::int64_t TotalMilliseconds() const { return m_count / kTicksPerMillisecond; }

    static constexpr std::int64_t kTicksPerMillisecond = 10000;

private:
    Status m_status = Status::kValid;
    std::int64_t m_count = 0;
};
