// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CStraightKey.h"

#include <gtest/gtest.h>

namespace {

constexpr std::int64_t kTicksPerMs = CHighResSpan::kTicksPerMillisecond;

CHighResDateTime At(std::int64_t milliseconds) {
    return {TimeStatus::Valid, milliseconds * kTicksPerMs};
}

TEST(StraightKey, ToneLastsAsLongAsTheKeyWasHeld) {
    CStraightKey key;
    key.KeyDown(At(1'000'000));
    EXPECT_TRUE(key.IsDown());
    key.KeyDown(At(1'000'100));  // auto-repeat
    key.KeyDown(At(1'000'200));
    EXPECT_EQ(key.KeyDownTime().count, At(1'000'000).count);
    EXPECT_EQ(key.KeyUp(At(1'000'250)), 250u);
    EXPECT_FALSE(key.IsDown());
}

TEST(StraightKey, SixteenBitCutOfTheDuration) {
    CStraightKey key;
    key.KeyDown(At(0));
    EXPECT_EQ(key.KeyUp(At(32767)), 32767u);
    key.KeyDown(At(0));
    EXPECT_EQ(key.KeyUp(At(40000)), 4294941760u);
    key.KeyDown(At(0));
    EXPECT_EQ(key.KeyUp(At(65536 + 20)), 20u);
    // Sub-millisecond parts truncate toward zero.
    key.KeyDown({TimeStatus::Valid, 0});
    EXPECT_EQ(key.KeyUp({TimeStatus::Valid, 2 * kTicksPerMs - 1}), 1u);
}

TEST(StraightKey, KeyUpWithoutPressMeasuresFromTheLastPressOrTheOrigin) {
    CStraightKey fresh;
    EXPECT_EQ(fresh.KeyUp(At(70'000)), static_cast<std::uint32_t>(70'000 - 65'536));
    CStraightKey key;
    key.KeyDown(At(500));
    key.KeyUp(At(600));
    EXPECT_EQ(key.KeyUp(At(800)), 300u);
}

TEST(HighResSpan, NullAndInvalidStatusGiveZero) {
    const CHighResDateTime null{TimeStatus::Null, 99};
    const CHighResDateTime invalid{TimeStatus::Invalid, 99};
    const CHighResDateTime valid = At(5);
    EXPECT_EQ((valid - null).status, TimeStatus::Null);
    EXPECT_EQ((invalid - null).status, TimeStatus::Null);
    EXPECT_EQ((valid - invalid).status, TimeStatus::Invalid);
    EXPECT_EQ((valid - invalid).count, 0);
    EXPECT_EQ((valid - At(2)).TotalMilliseconds(), 3);
    EXPECT_EQ((At(2) - valid).TotalMilliseconds(), -3);
    EXPECT_EQ(CStraightKey::BeepMilliseconds({TimeStatus::Null, 0}), 0u);
}

TEST(HighResDateTime, FormatsHoursMinutesSecondsMilliseconds) {
    const CHighResDateTime time = At(((13 * 60 + 5) * 60 + 9) * 1000 + 42 + 3 * 86'400'000LL);
    EXPECT_EQ(time.Format("%H:%M:%S:%s"), "13:05:09:042");
    EXPECT_EQ(time.Format("at %H%%"), "at 13%%");
    const CHighResDateTime now = CHighResDateTime::Now();
    EXPECT_EQ(now.status, TimeStatus::Valid);
    EXPECT_GT(now.count, At(1'600'000'000'000LL).count);  // after September 2020
}

}  // namespace
