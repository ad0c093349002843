// SPDX-License-Identifier: GPL-3.0-or-later
// Run with the client pointed at a sound server socket that does not exist.
#include "audio/Beep.h"
#include "audio/CClipPlayer.h"
#include "audio/CPomelAsyncPlay.h"
#include "audio/CPomelSyncPlay.h"
#include "audio/CSoundMixer.h"
#include "audio/CWaveDevice.h"
#include "audio/CWaveIn.h"
#include "audio/MidiAudio.h"

#include "FakeSlider.h"
#include "RecordingTarget.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>

namespace {

using Clock = std::chrono::steady_clock;

// The sanitizers slow the sound stack's device probing several times over.
#if defined(__SANITIZE_THREAD__)
constexpr int kSlowdown = 5;
#elif defined(__SANITIZE_ADDRESS__)
constexpr int kSlowdown = 2;
#else
constexpr int kSlowdown = 1;
#endif

/// Runs the call and checks it returned within a second.
void WithinASecond(const char* what, const std::function<void()>& call) {
    const auto start = Clock::now();
    call();
    EXPECT_LT(Clock::now() - start, kSlowdown * std::chrono::seconds(1)) << what;
}

TEST(NoServer, TonePlayerFailsToOpenAndStaysSilent) {
    RecordingTarget owner;
    CPomelSyncPlay player;
    player.m_ownerWindow = &owner;
    WithinASecond("OpenDevice", [&] { player.OpenDevice(); });
    EXPECT_NE(player.GetLastResult(), kMmNoError);
    WithinASecond("PlayTone", [&] { EXPECT_EQ(player.PlayTone(750.0, 0.1), 0); });
    EXPECT_EQ(player.GetToneSampleCount(), 9600u);
    EXPECT_TRUE(owner.Messages().empty());
    WithinASecond("CloseDevice", [&] { player.CloseDevice(); });
    EXPECT_EQ(player.GetLastResult(), kMmInvalidHandle);
}

TEST(NoServer, RecorderFailsToOpenWithAText) {
    CWave wave;
    wave.BuildFormat(1, 44100, 16);
    CWaveDevice device;
    WithinASecond("IsInputFormat", [&] { EXPECT_FALSE(device.IsInputFormat(wave)); });
    CWaveIn recorder(wave.GetFormat(), device);
    WithinASecond("Open", [&] { EXPECT_FALSE(recorder.Open()); });
    EXPECT_FALSE(recorder.GetError().empty());
    EXPECT_EQ(recorder.GetPosition(), -1);
    EXPECT_TRUE(recorder.Close());
    EXPECT_EQ(WaveInGetNumDevs(), 0u);
    EXPECT_EQ(WaveOutGetNumDevs(), 0u);
    EXPECT_EQ(CWaveDevice::GetOutputName(0), "");
}

TEST(NoServer, MixerDisablesTheSlider) {
    FakeSlider slider;
    CSoundMixer mixer;
    mixer.AttachSlider(&slider);
    WithinASecond("Initialize", [&] { mixer.Initialize(); });
    EXPECT_FALSE(slider.m_enabled);
    EXPECT_EQ(mixer.SetVolume(32768), 0);
    EXPECT_EQ(mixer.OpenMixer(), 1);  // no mixer device at all
    EXPECT_EQ(mixer.CloseMixer(), 1);
}

TEST(NoServer, NoMidiOutputsAndNoSound) {
    WithinASecond("MidiOutGetNumDevs", [] { EXPECT_EQ(MidiOutGetNumDevs(), 0u); });
    CBeeper beeper;
    WithinASecond("Open", [&] { EXPECT_FALSE(beeper.Open()); });
    WithinASecond("Beep", [&] { EXPECT_FALSE(beeper.Beep(750, 200)); });
    CClipPlayer clips;
    const char image[] =
        "RIFF\x28\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x22\x56\0\0\x44\xac\0\0"
        "\x02\0\x10\0data\x04\0\0\0\x10\0\x20\0";
    CWave wave;
    ASSERT_TRUE(wave.LoadFromMemory(image, sizeof image - 1));
    EXPECT_EQ(wave.GetNumSamples(), 2u);
    WithinASecond("clip", [&] { EXPECT_FALSE(clips.Play(image, sizeof image - 1)); });
}

TEST(NoServer, QueuedPlayerRefusesTones) {
    WithinASecond("queued player", [] {
        CPomelAsyncPlay player;
        EXPECT_FALSE(player.IsOpen());
        EXPECT_EQ(player.AddTone(750, 0.2), 0);
    });
}

}  // namespace
