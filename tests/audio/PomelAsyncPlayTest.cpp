// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CPomelAsyncPlay.h"

#include "SinkRecorder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

using namespace std::chrono_literals;

/// Adds the tone, retrying while the slots are busy, as callers of this player do.
int AddWithRetry(CPomelAsyncPlay& player, int frequency, double duration) {
    for (int attempt = 0; attempt < 3000; ++attempt) {
        if (player.AddTone(frequency, duration) == 1) {
            return 1;
        }
        if (!player.IsOpen()) {
            return 0;
        }
    }
    return 0;
}

TEST(PomelAsyncPlay, SlotRules) {
    CPomelAsyncPlay player;
    ASSERT_TRUE(player.IsOpen());
    EXPECT_EQ(player.FirstFreeSlot(), 0);
    EXPECT_EQ(player.AddTone(700, 1.5), 0);
    EXPECT_EQ(player.AddTone(700, 1.5), 0); // every time
    EXPECT_EQ(player.AddTone(700, -0.5), 0);

    // Three short tones: the first opens a current slot, the second brings it to exactly
    // 0.1 s (still current), the third makes it ready.
    ASSERT_EQ(player.AddTone(700, 0.05), 1);
    const int slot = player.GetCurrentSlot();
    ASSERT_GE(slot, 0);
    EXPECT_EQ(player.GetSlotState(slot), CPomelPCM::kFree);
    ASSERT_EQ(player.AddTone(700, 0.05), 1);
    EXPECT_EQ(player.GetCurrentSlot(), slot);
    EXPECT_DOUBLE_EQ(player.GetSlotDuration(slot), 0.1);
    ASSERT_EQ(player.AddTone(700, 0.05), 1);
    EXPECT_EQ(player.GetCurrentSlot(), -1);
    EXPECT_NEAR(player.GetSlotDuration(slot), 0.15, 1e-12);
    EXPECT_NE(player.GetSlotState(slot), CPomelPCM::kFree);

    // A full second is taken into a free slot of its own.
    ASSERT_EQ(player.AddTone(500, 1.0), 1);
    // Both slots are played and freed again by the device's done callback.
    for (int i = 0; i < 300 && !(player.QueuedCount() == 0 && player.FirstFreeSlot() == 0); ++i) {
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_EQ(player.QueuedCount(), 0);
    EXPECT_EQ(player.GetSlotState(slot), CPomelPCM::kFree);
    EXPECT_EQ(player.StopThread(), 1);
    EXPECT_EQ(player.QueuedCount(), 0);
}

TEST(PomelAsyncPlay, QueuedTonesAreHeardInOrder) {
    SinkRecorder recorder;
    ASSERT_TRUE(recorder.Running());
    {
        CPomelAsyncPlay player;
        ASSERT_TRUE(player.IsOpen());
        for (const int frequency : {500, 800, 1200, 1700}) {
            ASSERT_EQ(AddWithRetry(player, frequency, 0.2), 1);
        }
        std::this_thread::sleep_for(1500ms);
        EXPECT_EQ(player.StopThreadWait(), 0u);
    }
    const std::vector<std::int16_t> samples = recorder.Stop();
    const auto tones = SinkRecorder::FindTones(samples);
    ASSERT_FALSE(tones.empty());
    // Slots follow each other without a gap: one sound whose pitch steps up every 200 ms.
    double total = 0.0;
    for (const HeardTone& tone : tones) {
        total += tone.lengthMs;
    }
    EXPECT_NEAR(total, 800.0, 5.0);
    const auto first = static_cast<std::size_t>(tones.front().startMs * kSinkRate / 1000.0);
    const std::size_t step = kSinkRate / 5;
    const std::size_t window = kSinkRate / 10;
    ASSERT_LE(first + 4 * step, samples.size());
    const double expected[] = {500.0, 800.0, 1200.0, 1700.0};
    for (std::size_t part = 0; part < 4; ++part) {
        const std::size_t at = first + part * step + step / 4;
        EXPECT_NEAR(SinkRecorder::PitchOf(samples, at, window), expected[part], 15.0)
            << "part " << part;
    }
}

} // namespace
