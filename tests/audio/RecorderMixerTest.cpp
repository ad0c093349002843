// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/Beep.h"
#include "audio/CClipPlayer.h"
#include "audio/CPomelSyncPlay.h"
#include "audio/CSoundMixer.h"
#include "audio/CWaveDevice.h"
#include "audio/CWaveIn.h"
#include "audio/CWaveOut.h"

#include "FakeSlider.h"
#include "SinkRecorder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <numbers>
#include <string>
#include <thread>

namespace {

using namespace std::chrono_literals;

std::string RunCommand(const std::string& command) {
    std::string output;
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    if (!pipe) {
        return output;
    }
    char chunk[256];
    while (std::fgets(chunk, sizeof chunk, pipe.get()) != nullptr) {
        output += chunk;
    }
    return output;
}

/// Crossings of zero per second / 2 over 16-bit mono samples.
double PitchOf(const std::int16_t* samples, std::size_t count, double rate) {
    std::size_t crossings = 0;
    for (std::size_t i = 1; i < count; ++i) {
        if ((samples[i - 1] < 0) != (samples[i] < 0)) {
            ++crossings;
        }
    }
    return crossings / 2.0 / (static_cast<double>(count) / rate);
}

TEST(WaveDevice, FormatQueryAnswersWhatCanBeOpened) {
    CWave wave;
    wave.BuildFormat(1, 44100, 16);
    CWaveDevice device;
    EXPECT_TRUE(device.IsInputFormat(wave));
    EXPECT_TRUE(device.IsOutputFormat(wave));
    CWave odd;
    odd.BuildFormat(1, 44100, 24);
    EXPECT_FALSE(device.IsOutputFormat(odd));
    EXPECT_FALSE(device.IsInputFormat(odd));
    EXPECT_GT(WaveOutGetNumDevs(), 0u);
    EXPECT_FALSE(CWaveDevice::GetOutputName(0).empty());
    EXPECT_EQ(CWaveDevice::GetOutputName(999), "");
    EXPECT_FALSE(CWaveDevice(999).IsOutputFormat(wave));
}

TEST(WaveIn, RecordsOneSecondOfAToneAndSavesIt) {
    CWave wave;
    wave.BuildFormat(1, 44100, 16);
    CWaveDevice device;
    ASSERT_TRUE(device.IsInputFormat(wave));
    CWaveIn recorder(wave.GetFormat(), device);
    EXPECT_TRUE(recorder.Close());  // never opened: nothing to do
    ASSERT_TRUE(recorder.Open()) << recorder.GetError();
    EXPECT_EQ(recorder.GetError(), "");
    ASSERT_TRUE(recorder.Record(4096)) << recorder.GetError();
    EXPECT_TRUE(recorder.IsRecording());

    std::thread tone([] {
        CPomelSyncPlay player;
        player.OpenDevice();
        player.PlayTone(1000.0, 0.6);
        player.CloseDevice();
    });
    std::this_thread::sleep_for(1s);
    EXPECT_GE(recorder.GetPosition(), 0);
    tone.join();
    ASSERT_TRUE(recorder.Close()) << recorder.GetError();
    CWave& recording = recorder.GetWave();
    const std::uint32_t samples = recording.GetNumSamples();
    // One second and the tone's tail, give or take the start of the stream.
    EXPECT_GT(samples, 44100u * 8 / 10);
    EXPECT_LT(samples, 44100u * 3);

    const std::string path = (std::filesystem::temp_directory_path() / "tonwerk-rec.wav").string();
    ASSERT_TRUE(recording.Save(path));
    EXPECT_EQ(std::filesystem::file_size(path), std::uintmax_t{samples} * 2 + 44);
    CWave loaded;
    ASSERT_TRUE(loaded.Load(path));
    EXPECT_EQ(loaded.GetFormat().samplesPerSec, 44100u);
    EXPECT_EQ(loaded.GetFormat().bitsPerSample, 16);
    EXPECT_EQ(loaded.GetFormat().channels, 1);
    std::remove(path.c_str());

    // The tone is in it: find the loud part and measure its pitch.
    const auto* pcm = reinterpret_cast<const std::int16_t*>(recording.GetBuffer());
    std::size_t first = 0;
    while (first < samples && std::abs(pcm[first]) < 3000) {
        ++first;
    }
    ASSERT_LT(first + 22050, samples) << "no tone recorded";
    EXPECT_NEAR(PitchOf(pcm + first + 1000, 20000, 44100.0), 1000.0, 10.0);
}

TEST(SoundMixer, FindsMasterAndSetsTheServersVolume) {
    FakeSlider slider;
    CSoundMixer mixer;
    EXPECT_EQ(mixer.SetVolume(100), 0);  // before Initialize: no handle
    mixer.AttachSlider(&slider);
    mixer.Initialize();
    EXPECT_TRUE(slider.m_enabled);
    EXPECT_EQ(mixer.GetLineName(), "Master");
    EXPECT_EQ(slider.m_minimum, 0);
    EXPECT_EQ(slider.m_maximum, 65536);
    EXPECT_EQ(mixer.GetMaximum(), 65536u);
    EXPECT_GE(slider.m_position, 0);
    EXPECT_TRUE(slider.m_redrawn);

    ASSERT_EQ(mixer.SetVolume(32768), 1);
    const std::string reported = RunCommand("pactl get-sink-volume nullsink 2>&1");
    EXPECT_NE(reported.find("32768"), std::string::npos) << reported;
    std::uint32_t value = 0;
    ASSERT_EQ(mixer.GetVolume(value), 1);
    EXPECT_EQ(value, 32768u);
    ASSERT_EQ(mixer.SetVolume(65536), 1);
    EXPECT_NE(RunCommand("pactl get-sink-volume nullsink 2>&1").find("65536"), std::string::npos);
    EXPECT_EQ(mixer.QueryControl(), 1);
    EXPECT_EQ(mixer.CloseMixer(), 1);
    EXPECT_EQ(mixer.SetVolume(1000), 0);
}

std::vector<char> ToneClip(double frequency, double seconds) {
    CWave wave;
    wave.BuildFormat(1, 22050, 16);
    const auto count = static_cast<std::uint32_t>(22050 * seconds);
    std::vector<std::int16_t> samples(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        samples[i] = static_cast<std::int16_t>(
            16000 * std::sin(2 * std::numbers::pi * frequency * i / 22050));
    }
    wave.SetBuffer(reinterpret_cast<char*>(samples.data()), count, true);
    const std::string path = (std::filesystem::temp_directory_path() / "tonwerk-clip.wav").string();
    wave.Save(path);
    std::ifstream file(path, std::ios::binary);
    std::vector<char> image{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::remove(path.c_str());
    return image;
}

TEST(ClipPlayer, PlaysWithoutWaitingAndANewClipCutsOffTheLast) {
    const std::vector<char> low = ToneClip(500.0, 0.6);
    const std::vector<char> high = ToneClip(1500.0, 0.2);
    SinkRecorder recorder;
    ASSERT_TRUE(recorder.Running());
    CClipPlayer clips;
    ASSERT_TRUE(clips.Play(low.data(), low.size()));
    const auto started = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(200ms);
    ASSERT_TRUE(clips.Play(high.data(), high.size()));
    EXPECT_LT(std::chrono::steady_clock::now() - started, 400ms);
    EXPECT_TRUE(clips.IsPlaying());
    std::this_thread::sleep_for(500ms);
    EXPECT_FALSE(clips.IsPlaying());
    const auto tones = SinkRecorder::FindTones(recorder.Stop());
    ASSERT_FALSE(tones.empty());
    // The low clip was cut off well before its 600 ms, and the high one followed.
    double lowMs = 0.0;
    double highMs = 0.0;
    for (const HeardTone& tone : tones) {
        (tone.frequency < 1000.0 ? lowMs : highMs) += tone.lengthMs;
    }
    EXPECT_GT(lowMs, 100.0);
    EXPECT_LT(lowMs, 350.0);
    EXPECT_NEAR(highMs, 200.0, 20.0);
    EXPECT_FALSE(clips.Play("junk", 4));
}

TEST(Beep, SoundsForItsLengthAndRefusesOddFrequencies) {
    CBeeper beeper;
    EXPECT_FALSE(beeper.Beep(20, 100));
    EXPECT_FALSE(beeper.Beep(40000, 100));
    SinkRecorder recorder;
    ASSERT_TRUE(recorder.Running());
    const auto start = std::chrono::steady_clock::now();
    // Without an output opened beforehand the tone opens one.
    EXPECT_TRUE(beeper.Beep(880, 250));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 240ms);
    const auto tones = SinkRecorder::FindTones(recorder.Stop());
    ASSERT_EQ(tones.size(), 1u);
    EXPECT_NEAR(tones[0].lengthMs, 250.0, 1.0);
    EXPECT_NEAR(tones[0].frequency, 880.0, 10.0);
}

TEST(Beep, AnOpenedBeeperKeepsItsOutputBetweenTones) {
    CBeeper beeper;
    ASSERT_TRUE(beeper.Open());
    SinkRecorder recorder;
    ASSERT_TRUE(recorder.Running());
    EXPECT_TRUE(beeper.Beep(600, 120));
    EXPECT_TRUE(beeper.IsOpen());
    std::this_thread::sleep_for(100ms);
    EXPECT_TRUE(beeper.Beep(900, 60));
    beeper.Close();
    EXPECT_FALSE(beeper.IsOpen());
    const auto tones = SinkRecorder::FindTones(recorder.Stop());
    ASSERT_EQ(tones.size(), 2u);
    const double lengths[] = {120.0, 60.0};
    const double pitches[] = {600.0, 900.0};
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_NEAR(tones[i].lengthMs, lengths[i], 1.0) << i;
        EXPECT_NEAR(tones[i].frequency, pitches[i], 10.0) << i;
    }
}

/// A wave of a 600 Hz tone, whole periods long so that copies of it join without a click.
CWave ToneWave(std::uint32_t count) {
    CWave wave;
    wave.BuildFormat(1, 48000, 16);
    std::vector<std::int16_t> samples(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        samples[i] =
            static_cast<std::int16_t>(12000 * std::sin(2 * std::numbers::pi * 600.0 * i / 48000));
    }
    wave.SetBuffer(reinterpret_cast<char*>(samples.data()), count, true);
    return wave;
}

TEST(WaveOut, PlaysAWaveInChunksToTheEnd) {
    const std::uint32_t count = 48000 * 3 / 10;
    const CWave wave = ToneWave(count);
    SinkRecorder recorder;
    ASSERT_TRUE(recorder.Running());
    CWaveOut output(wave, CWaveDevice());
    ASSERT_TRUE(output.Open()) << output.GetError();
    ASSERT_TRUE(output.Play());
    std::this_thread::sleep_for(600ms);
    EXPECT_EQ(output.GetPosition(), static_cast<long>(count));
    EXPECT_TRUE(output.Close());
    EXPECT_EQ(output.GetError(), "");
    const auto tones = SinkRecorder::FindTones(recorder.Stop());
    ASSERT_EQ(tones.size(), 1u);
    EXPECT_NEAR(tones[0].lengthMs, 300.0, 1.0);
}

TEST(WaveOut, PlaysALoopedRangeAsOneUnbrokenTone) {
    const std::uint32_t count = 48000 / 20;  // 50 ms, 30 whole periods
    const CWave wave = ToneWave(count);
    SinkRecorder recorder;
    ASSERT_TRUE(recorder.Running());
    CWaveOut output(wave, CWaveDevice());
    ASSERT_TRUE(output.Open()) << output.GetError();
    ASSERT_TRUE(output.PlayLooped(0, 0xFFFFFFFFu, 4));
    std::this_thread::sleep_for(500ms);
    EXPECT_TRUE(output.Close());
    const auto tones = SinkRecorder::FindTones(recorder.Stop());
    ASSERT_EQ(tones.size(), 1u);
    EXPECT_NEAR(tones[0].lengthMs, 200.0, 1.0);
}

}  // namespace
