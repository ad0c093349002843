// SPDX-License-Identifier: GPL-3.0-or-later
// The sound server dies while a tone plays and comes back later.
#include "audio/CPomelAsyncPlay.h"
#include "audio/CPomelSyncPlay.h"
#include "audio/CWaveIn.h"
#include "sound/CWaveOutPcmOutput.h"
#include "sound/Player.h"

#include "../support/PulseServer.h"
#include "RecordingTarget.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

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

TEST(ServerLoss, AQueuedPlayerWhoseWritesFailStopsAndIsDestroyed) {
    const auto start = Clock::now();
    {
        CPomelAsyncPlay player;
        ASSERT_TRUE(player.IsOpen());
        ASSERT_EQ(player.AddTone(600, 0.5), 1);
        std::this_thread::sleep_for(200ms);
        pulse_server::Kill();
        // Tones keep coming until the player finds its writes failing.
        for (int i = 0; i < 400 && player.IsOpen(); ++i) {
            player.AddTone(600, 0.5);
            std::this_thread::sleep_for(10ms);
        }
        EXPECT_FALSE(player.IsOpen());
        EXPECT_EQ(player.StopThreadWait(), 0u);
    }
    EXPECT_LT(Clock::now() - start, 10s) << "not the 60 s wait for slots that never return";
    pulse_server::Restart();
}

TEST(ServerLoss, ABufferPlayerTellsThatItsDeviceWentAway) {
    CWaveOutPcmOutput output;
    Player player(output);
    ASSERT_EQ(player.Open(), Player::kOk);
    ASSERT_TRUE(player.CreateBuffer(1, 48000, 16, 2, 9600, 0));
    const std::vector<std::int16_t> tone(4800, 8000);
    player.Write(0, tone.data(), 9600);
    ASSERT_EQ(player.Play(1), Player::kOk);
    std::this_thread::sleep_for(300ms);
    ASSERT_TRUE(player.IsPlaying());
    pulse_server::Kill();
    const auto start = Clock::now();
    while (player.IsPlaying() && Clock::now() - start < 3s) {
        std::this_thread::sleep_for(10ms);
    }
    EXPECT_FALSE(player.IsPlaying());
    EXPECT_EQ(player.Status(), Player::kErrBufferLost);
    EXPECT_EQ(player.Play(1), Player::kErrBufferLost);
    pulse_server::Restart();
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
