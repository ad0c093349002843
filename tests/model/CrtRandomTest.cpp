// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CCrtRandom.h"

#include <gtest/gtest.h>

namespace {

TEST(CrtRandom, ReproducesTheRuntimeSequence) {
    CCrtRandom rng;
    EXPECT_EQ(rng.Next(), 41);
    EXPECT_EQ(rng.Next(), 18467);
    EXPECT_EQ(rng.Next(), 6334);
    EXPECT_EQ(rng.Next(), 26500);
    EXPECT_EQ(rng.Next(), 19169);
    rng.Seed(1);
    EXPECT_EQ(rng.Next(), 41);
    rng.Seed(0);
    EXPECT_EQ(rng.Next(), 38);
}

TEST(CrtRandom, StaysWithinRange) {
    CCrtRandom rng(0xFFFFFFFFu);
    int highest = 0;
    for (int i = 0; i < 200000; ++i) {
        const int value = rng.Next();
        ASSERT_GE(value, 0);
        ASSERT_LE(value, CCrtRandom::kRandMax);
        highest = std::max(highest, value);
    }
    EXPECT_GT(highest, 32700);
}

}  // namespace
