// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CHighResDateTime.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <thread>

namespace {

using Status = CHighResSpan::Status;

// The low 16 bits as a signed value, widened: what the straight key hands to the beep.
std::int32_t Low16(std::int64_t milliseconds) {
    return static_cast<std::int16_t>(static_cast<std::uint16_t>(milliseconds & 0xFFFF));
}

TEST(HighResDateTimeTest, DefaultIsValidZero) {
    const CHighResDateTime time;
    EXPECT_EQ(time.GetStatus(), Status::kValid);
    EXPECT_EQ(time.Count(), 0);
    EXPECT_EQ(time.Format("%Y-%m-%d %H:%M:%S:%s"), "1601-01-01 00:00:00:000");
}

TEST(HighResDateTimeTest, FromLocalCountsHundredNanoseconds) {
    EXPECT_EQ(CHighResDateTime::FromLocal(1601, 1, 1, 0, 0, 0).Count(), 0);
    EXPECT_EQ(CHighResDateTime::FromLocal(1601, 1, 1, 0, 0, 1).Count(), 10'000'000);
    EXPECT_EQ(CHighResDateTime::FromLocal(1601, 1, 1, 0, 0, 0, 1).Count(), 10'000);
    // The Unix epoch is 11644473600 seconds after the origin.
    EXPECT_EQ(CHighResDateTime::FromLocal(1970, 1, 1, 0, 0, 0).Count(),
              11'644'473'600LL * 10'000'000);
}

TEST(HighResDateTimeTest, FormatsHoursToMilliseconds) {
    const CHighResDateTime time = CHighResDateTime::FromLocal(2024, 2, 29, 13, 5, 9, 42);
    EXPECT_EQ(time.Format("%H:%M:%S:%s"), "13:05:09:042");
    EXPECT_EQ(time.Format("%Y-%m-%d"), "2024-02-29");
    EXPECT_EQ(time.Format("100%% at %H%q"), "100% at 13%q");
    EXPECT_EQ(time.Format("trailing %"), "trailing %");
    EXPECT_EQ(time.Format(""), "");
}

TEST(HighResDateTimeTest, OutOfRangeFieldsAreInvalid) {
    EXPECT_EQ(CHighResDateTime::FromLocal(2023, 2, 29, 0, 0, 0).GetStatus(), Status::kInvalid);
    EXPECT_EQ(CHighResDateTime::FromLocal(1900, 2, 29, 0, 0, 0).GetStatus(), Status::kInvalid);
    EXPECT_EQ(CHighResDateTime::FromLocal(2000, 2, 29, 0, 0, 0).GetStatus(), Status::kValid);
    EXPECT_EQ(CHighResDateTime::FromLocal(2024, 13, 1, 0, 0, 0).GetStatus(), Status::kInvalid);
    EXPECT_EQ(CHighResDateTime::FromLocal(2024, 1, 1, 24, 0, 0).GetStatus(), Status::kInvalid);
    EXPECT_EQ(CHighResDateTime::FromLocal(2024, 1, 1, 0, 0, 0, 1000).GetStatus(), Status::kInvalid);
    EXPECT_EQ(CHighResDateTime::FromLocal(1600, 12, 31, 0, 0, 0).GetStatus(), Status::kInvalid);
    EXPECT_EQ(CHighResDateTime::FromLocal(2024, 1, 1, 0, 0, 0).Format("x"), "x");
    EXPECT_EQ(CHighResDateTime(5, Status::kInvalid).Format("%H"), "");
}

TEST(HighResDateTimeTest, SpanStatusRules) {
    const CHighResDateTime valid(50'000'000);
    const CHighResDateTime earlier(47'500'000);
    const CHighResDateTime invalid(7, Status::kInvalid);
    const CHighResDateTime null(9, Status::kNull);

    const CHighResSpan span = valid - earlier;
    EXPECT_EQ(span.GetStatus(), Status::kValid);
    EXPECT_EQ(span.Count(), 2'500'000);
    EXPECT_EQ(span.TotalMilliseconds(), 250);

    EXPECT_EQ((valid - invalid).GetStatus(), Status::kInvalid);
    EXPECT_EQ((valid - invalid).Count(), 0);
    EXPECT_EQ((null - valid).GetStatus(), Status::kNull);
    // Null wins over invalid.
    EXPECT_EQ((invalid - null).GetStatus(), Status::kNull);
    EXPECT_EQ((invalid - null).Count(), 0);
    // A difference that does not fit is invalid rather than wrapped.
    const CHighResDateTime hugeValue(std::numeric_limits<std::int64_t>::max());
    const CHighResDateTime negative(-10);
    EXPECT_EQ((hugeValue - negative).GetStatus(), Status::kInvalid);
}

TEST(HighResDateTimeTest, MillisecondsTruncateTowardZero) {
    EXPECT_EQ(CHighResSpan(Status::kValid, 19'999).TotalMilliseconds(), 1);
    EXPECT_EQ(CHighResSpan(Status::kValid, -19'999).TotalMilliseconds(), -1);
    EXPECT_EQ(CHighResSpan(Status::kInvalid, 123'456).Count(), 0);
}

TEST(HighResDateTimeTest, LongHoldsCutToSixteenBits) {
    const CHighResDateTime down = CHighResDateTime::FromLocal(2024, 1, 1, 10, 0, 0);
    EXPECT_EQ(
        Low16((CHighResDateTime::FromLocal(2024, 1, 1, 10, 0, 0, 250) - down).TotalMilliseconds()),
        250);
    EXPECT_EQ(
        Low16((CHighResDateTime::FromLocal(2024, 1, 1, 10, 0, 40) - down).TotalMilliseconds()),
        -25536);
    EXPECT_EQ(static_cast<std::uint32_t>(Low16(40000)), 4294941760u);
}

TEST(HighResDateTimeTest, NowIsWholeMillisecondsAndMovesOn) {
    const CHighResDateTime first = CHighResDateTime::Now();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const CHighResDateTime second = CHighResDateTime::Now();
    EXPECT_EQ(first.GetStatus(), Status::kValid);
    EXPECT_EQ(first.Count() % CHighResSpan::kTicksPerMillisecond, 0);
    const std::int64_t elapsed = (second - first).TotalMilliseconds();
    EXPECT_GE(elapsed, 19);
    EXPECT_LT(elapsed, 5000);
    EXPECT_EQ(first.Format("%H:%M:%S:%s").size(), 12u);
}

}  // namespace
