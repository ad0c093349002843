// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CHighResDateTime.h"

#include <chrono>
#include <cstdio>
#include <ctime>

namespace {

constexpr std::int64_t kTicksPerSecond = 10'000'000;
constexpr std::int64_t kTicksPerDay = kTicksPerSecond * 86400;
// Days from 1601-01-01 to 1970-01-01.
constexpr std::int64_t kDaysFrom1601To1970 = 134774;

// Days since 1970-01-01 of a proleptic Gregorian date (H. Hinnant's days_from_civil).
std::int64_t DaysFromCivil(std::int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

struct Civil {
    std::int64_t year;
    unsigned month;
    unsigned day;
};

Civil CivilFromDays(std::int64_t z) {
    z += 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    const unsigned d = doy - (153 * mp + 2) / 5 + 1;
    const unsigned m = mp < 10 ? mp + 3 : mp - 9;
    return {static_cast<std::int64_t>(yoe) + era * 400 + (m <= 2), m, d};
}

bool IsLeap(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

}  // namespace

CHighResDateTime CHighResDateTime::Now() {
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::time_t seconds = system_clock::to_time_t(now);
    std::tm local{};
    localtime_r(&seconds, &local);
    const auto millis = duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000;
    return FromLocal(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                     local.tm_min, local.tm_sec, static_cast<int>(millis < 0 ? 0 : millis));
}

CHighResDateTime CHighResDateTime::FromLocal(int year, int month, int day, int hour, int minute,
                                             int second, int millisecond) {
    static constexpr int kDaysInMonth[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool fieldsOk = year >= 1601 && year <= 30827 && month >= 1 && month <= 12 && day >= 1 &&
                          day <= kDaysInMonth[month - 1] + (month == 2 && IsLeap(year) ? 1 : 0) &&
                          hour >= 0 && hour <= 23 && minute >= 0 && minute <= 59 && second >= 0 &&
                          second <= 59 && millisecond >= 0 && millisecond <= 999;
    if (!fieldsOk) {
        return CHighResDateTime(0, Status::kInvalid);
    }
    const std::int64_t days =
        DaysFromCivil(year, static_cast<unsigned>(month), static_cast<unsigned>(day)) +
        kDaysFrom1601To1970;
    const std::int64_t count =
        days * kTicksPerDay +
        (static_cast<std::int64_t>(hour) * 3600 + minute * 60 + second) * kTicksPerSecond +
        static_cast<std::int64_t>(millisecond) * CHighResSpan::kTicksPerMillisecond;
    return CHighResDateTime(count);
}

std::string CHighResDateTime::Format(const std::string& format) const {
    if (m_status != Status::kValid || m_count < 0) {
        return {};
    }
    const std::int64_t days = m_count / kTicksPerDay;
    const std::int64_t inDay = m_count % kTicksPerDay;
    const Civil date = CivilFromDays(days - kDaysFrom1601To1970);
    const int hour = static_cast<int>(inDay / (3600 * kTicksPerSecond));
    const int minute = static_cast<int>(inDay / (60 * kTicksPerSecond) % 60);
    const int second = static_cast<int>(inDay / kTicksPerSecond % 60);
    const int millisecond = static_cast<int>(inDay / CHighResSpan::kTicksPerMillisecond % 1000);

    std::string out;
    char field[24];
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%' || i + 1 == format.size()) {
            out += format[i];
            continue;
        }
        const char code = format[++i];
        // clang-format off
        switch (code) {
            case 'Y': std::snprintf(field, sizeof field, "%04lld", static_cast<long long>(date.year)); break;
            case 'm': std::snprintf(field, sizeof field, "%02u", date.month); break;
            case 'd': std::snprintf(field, sizeof field, "%02u", date.day); break;
            case 'H': std::snprintf(field, sizeof field, "%02d", hour); break;
            case 'M': std::snprintf(field, sizeof field, "%02d", minute); break;
            case 'S': std::snprintf(field, sizeof field, "%02d", second); break;
            case 's': std::snprintf(field, sizeof field, "%03d", millisecond); break;
            case '%': std::snprintf(field, sizeof field, "%%"); break;
            default: std::snprintf(field, sizeof field, "%%%c", code); break;
        }
        // clang-format on
        out += field;
    }
    return out;
}

CHighResSpan operator-(const CHighResDateTime& later, const CHighResDateTime& earlier) {
    using Status = CHighResSpan::Status;
    if (later.m_status == Status::kNull || earlier.m_status == Status::kNull) {
        return CHighResSpan(Status::kNull, 0);
    }
    if (later.m_status == Status::kInvalid || earlier.m_status == Status::kInvalid) {
        return CHighResSpan(Status::kInvalid, 0);
    }
    std::int64_t difference = 0;
    if (__builtin_sub_overflow(later.m_count, earlier.m_count, &difference)) {
        return CHighResSpan(Status::kInvalid, 0);
    }
    return CHighResSpan(Status::kValid, difference);
}
