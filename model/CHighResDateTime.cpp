// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CHighResDateTime.h"

#include <chrono>
#include <cstdio>
#include <ctime>

namespace {

constexpr std::int64_t kTicksPerSecond = 10'000'000;

}  // namespace

CHighResDateTime CHighResDateTime::Now() {
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::int64_t milliseconds =
        duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count();
    const std::time_t seconds = system_clock::to_time_t(now);
    std::tm local{};
    localtime_r(&seconds, &local);
    const std::int64_t offset = local.tm_gmtoff;
    return {TimeStatus::Valid,
            (milliseconds + offset * 1000) * CHighResSpan::kTicksPerMillisecond};
}

std::string CHighResDateTime::Format(std::string_view pattern) const {
    const std::int64_t totalMilliseconds = count / CHighResSpan::kTicksPerMillisecond;
    const std::int64_t secondsOfDay = (count / kTicksPerSecond % 86400 + 86400) % 86400;
    const long fields[] = {static_cast<long>(secondsOfDay / 3600),
                           static_cast<long>(secondsOfDay / 60 % 60),
                           static_cast<long>(secondsOfDay % 60),
                           static_cast<long>((totalMilliseconds % 1000 + 1000) % 1000)};
    std::string text;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char next = i + 1 < pattern.size() ? pattern[i + 1] : '\0';
        const int field = next == 'H' ? 0 : next == 'M' ? 1 : next == 'S' ? 2 : next == 's' ? 3 : -1;
        if (pattern[i] != '%' || field < 0) {
            text += pattern[i];
            continue;
        }
        char digits[24];
        std::snprintf(digits, sizeof digits, field == 3 ? "%03ld" : "%02ld", fields[field]);
        text += digits;
        ++i;
    }
    return text;
}

CHighResSpan operator-(const CHighResDateTime& later, const CHighResDateTime& earlier) {
    if (later.status == TimeStatus::Null || earlier.status == TimeStatus::Null) {
        return {TimeStatus::Null, 0};
    }
    if (later.status == TimeStatus::Invalid || earlier.status == TimeStatus::Invalid) {
        return {TimeStatus::Invalid, 0};
    }
    return {TimeStatus::Valid, later.count - earlier.count};
}
