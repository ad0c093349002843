// SPDX-License-Identifier: GPL-3.0-or-later
// The sound server dies while a tone plays and comes back later.
#include "audio/CPomelSyncPlay.h"
#include "audio/CWaveIn.h"

#include "../support/PulseServer.h"
#include "RecordingTarget.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

TEST(ServerLoss, CallsReturnWhenTheServerDiesAndOpenWorksAfterItIsBack) {
    RecordingTarget owner;
    CPomelSyncPlay player;
    player.m_ownerWindow = &owner;
    player.OpenDevice();
    ASSERT_EQ(player.GetLastResult(), kMmNoError);
    ASSERT_EQ(player.PlayTone(600.0, 0.1), 1);

    std::thread killer([] {
        std::this_thread::sleep_for(300ms);
        pulse_server::Kill();
    });
    auto start = Clock::now();
    const int during = player.PlayTone(600.0, 1.0);
    killer.join();
    EXPECT_LT(Clock::now() - start, 2s) << "the tone's length plus 1 s";
    EXPECT_TRUE(during == 0 || during == 1);
    // Every later call fails, each within a second.
    for (int i = 0; i < 3; ++i) {
        start = Clock::now();
        EXPECT_EQ(player.PlayTone(600.0, 0.2), 0);
        EXPECT_LT(Clock::now() - start, 1200ms);
    }
    start = Clock::now();
    player.CloseDevice();
    EXPECT_LT(Clock::now() - start, 1s);

    start = Clock::now();
    CPomelSyncPlay orphan;
    orphan.OpenDevice();
    EXPECT_NE(orphan.GetLastResult(), kMmNoError);
    EXPECT_EQ(orphan.PlayTone(600.0, 0.1), 0);
    EXPECT_LT(Clock::now() - start, 1s);

    pulse_server::Restart();
    CPomelSyncPlay fresh;
    fresh.OpenDevice();
    ASSERT_EQ(fresh.GetLastResult(), kMmNoError);
    EXPECT_EQ(fresh.PlayTone(600.0, 0.1), 1);
    fresh.CloseDevice();
    EXPECT_EQ(fresh.GetLastResult(), kMmNoError);
}

TEST(ServerLoss, RecorderStopsWhenTheServerDies) {
    WaveFormat format{kWaveFormatPcm, 1, 44100, 88200, 2, 16, 0};
    CWaveIn recorder(format, CWaveDevice());
    ASSERT_TRUE(recorder.Open()) << recorder.GetError();
    ASSERT_TRUE(recorder.Record(4096));
    std::this_thread::sleep_for(300ms);
    pulse_server::Kill();
    std::this_thread::sleep_for(1500ms);
    const auto start = Clock::now();
    recorder.Close();
    EXPECT_LT(Clock::now() - start, 2s);
    EXPECT_GT(recorder.GetWave().GetNumSamples(), 0u);
    pulse_server::Restart();
}

}  // namespace
