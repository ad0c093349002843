// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CPomelPCM.h"
#include "audio/CWave.h"
#include "audio/CWaveBuffer.h"
#include "audio/INotifyTarget.h"
#include "audio/MidiAudio.h"
#include "audio/PortAudioDevice.h"
#include "audio/WaveAudio.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <thread>
#include <vector>

namespace {

std::vector<unsigned char> ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::uint32_t U32At(const std::vector<unsigned char>& bytes, std::size_t at) {
    return bytes[at] | (bytes[at + 1] << 8) | (bytes[at + 2] << 16) |
           (static_cast<std::uint32_t>(bytes[at + 3]) << 24);
}

std::string TempPath(const char* name) {
    return (std::filesystem::temp_directory_path() / name).string();
}

TEST(WaveBuffer, CopyBufferAllocatesWhenEmptyAndCopiesNoMoreThanItHolds) {
    CWaveBuffer buffer;
    const char source[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    buffer.CopyBuffer(source, 2, 2);
    ASSERT_NE(buffer.GetBuffer(), nullptr);
    EXPECT_EQ(buffer.GetNumSamples(), 2u);
    EXPECT_EQ(buffer.GetSampleSize(), 2u);
    EXPECT_EQ(std::memcmp(buffer.GetBuffer(), source, 4), 0);
    // A longer copy into the held array is cut to what it holds.
    buffer.CopyBuffer(source, 4, 2);
    EXPECT_EQ(buffer.GetNumSamples(), 2u);
    EXPECT_EQ(buffer.GetBuffer()[3], 4);
}

TEST(Wave, BuildFormatDerivesRateAndAlign) {
    CWave wave;
    EXPECT_EQ(wave.GetFormat().formatTag, 1);
    EXPECT_EQ(wave.GetFormat().channels, 0);
    wave.BuildFormat(1, 44100, 16);
    EXPECT_EQ(wave.GetFormat().avgBytesPerSec, 88200u);
    EXPECT_EQ(wave.GetFormat().blockAlign, 2);
    EXPECT_EQ(wave.GetNumSamples(), 0u);
    wave.BuildFormat(2, 96000, 8);
    EXPECT_EQ(wave.GetFormat().avgBytesPerSec, 192000u);
    EXPECT_EQ(wave.GetFormat().blockAlign, 2);
}

TEST(Wave, SaveWritesTheFortyFourByteHeaderAndLoadReadsItBack) {
    CWave wave;
    wave.BuildFormat(1, 44100, 16);
    std::vector<std::int16_t> samples(1000);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<std::int16_t>(i * 31 - 9000);
    }
    wave.SetBuffer(reinterpret_cast<char*>(samples.data()), 1000, true);
    const std::string path = TempPath("tonwerk-wave-test.wav");
    ASSERT_TRUE(wave.Save(path));
    const auto bytes = ReadFile(path);
    ASSERT_EQ(bytes.size(), 1000u * 2 + 44);
    EXPECT_EQ(std::memcmp(bytes.data(), "RIFF", 4), 0);
    EXPECT_EQ(U32At(bytes, 4), 1000u * 2 + 36);
    EXPECT_EQ(std::memcmp(bytes.data() + 8, "WAVEfmt ", 8), 0);
    EXPECT_EQ(U32At(bytes, 16), 16u);
    EXPECT_EQ(bytes[20] | (bytes[21] << 8), 1);
    EXPECT_EQ(bytes[22] | (bytes[23] << 8), 1);
    EXPECT_EQ(U32At(bytes, 24), 44100u);
    EXPECT_EQ(U32At(bytes, 28), 88200u);
    EXPECT_EQ(bytes[32] | (bytes[33] << 8), 2);
    EXPECT_EQ(bytes[34] | (bytes[35] << 8), 16);
    EXPECT_EQ(std::memcmp(bytes.data() + 36, "data", 4), 0);
    EXPECT_EQ(U32At(bytes, 40), 2000u);

    CWave loaded;
    ASSERT_TRUE(loaded.Load(path));
    EXPECT_EQ(loaded.GetFormat().samplesPerSec, 44100u);
    EXPECT_EQ(loaded.GetFormat().blockAlign, 2);
    ASSERT_EQ(loaded.GetNumSamples(), 1000u);
    EXPECT_EQ(std::memcmp(loaded.GetBuffer(), samples.data(), 2000), 0);
    std::remove(path.c_str());
}

TEST(Wave, CopiesAreDeepAndLoadRejectsWhatIsNoWave) {
    CWave wave;
    wave.BuildFormat(1, 8000, 8);
    char data[3] = {10, 20, 30};
    wave.SetBuffer(data, 3, true);
    CWave copy(wave);
    CWave assigned;
    assigned = wave;
    assigned = assigned;
    data[0] = 99;
    wave.GetBuffer()[1] = 77;
    EXPECT_EQ(copy.GetBuffer()[1], 20);
    EXPECT_EQ(assigned.GetBuffer()[0], 10);
    EXPECT_EQ(assigned.GetNumSamples(), 3u);

    const char garbage[] = "RIFF\x04\0\0\0WAVEdata\x10\0\0\0";
    EXPECT_FALSE(copy.LoadFromMemory(garbage, sizeof garbage - 1));
    EXPECT_FALSE(copy.LoadFromMemory("nothing", 7));
    EXPECT_FALSE(copy.LoadFromMemory(nullptr, 100));
    EXPECT_FALSE(copy.Load(TempPath("tonwerk-no-such-file.wav")));
    EXPECT_EQ(copy.GetNumSamples(), 3u);
}

TEST(WaveResults, TextsForTheCodesAndNoneForSuccess) {
    EXPECT_EQ(WaveGetErrorText(kMmNoError), "");
    EXPECT_EQ(WaveGetErrorText(12345), "");
    for (MmResult code : {kMmBadDeviceId, kMmAllocated, kMmInvalidHandle, kMmNoDriver, kMmNoMemory,
                          kWaveBadFormat}) {
        EXPECT_FALSE(WaveGetErrorText(code).empty()) << code;
    }
    char text[8];
    EXPECT_EQ(WaveInGetErrorText(kMmNoDriver, text, sizeof text), kMmNoError);
    EXPECT_EQ(std::strlen(text), 7u);
    EXPECT_EQ(WaveInGetErrorText(kMmNoDriver, nullptr, 10), kMmInvalidParam);
    EXPECT_EQ(WaveOutGetErrorText(777, text, sizeof text), kMmBadDeviceId);
}

TEST(WaveFormats, OnlyConsistentPcmFormatsAreOpenable) {
    WaveFormat live{kWaveFormatPcm, 1, 96000, 96000, 1, 8, 0};
    EXPECT_TRUE(IsOpenableWaveFormat(live));
    WaveFormat recording{kWaveFormatPcm, 1, 44100, 88200, 2, 16, 0};
    EXPECT_TRUE(IsOpenableWaveFormat(recording));
    WaveFormat wrong = recording;
    wrong.bitsPerSample = 24;
    EXPECT_FALSE(IsOpenableWaveFormat(wrong));
    wrong = recording;
    wrong.blockAlign = 4;
    EXPECT_FALSE(IsOpenableWaveFormat(wrong));
    wrong = recording;
    wrong.formatTag = 3;
    EXPECT_FALSE(IsOpenableWaveFormat(wrong));
    wrong = recording;
    wrong.channels = 0;
    EXPECT_FALSE(IsOpenableWaveFormat(wrong));
    wrong = live;
    wrong.samplesPerSec = 500000;
    wrong.avgBytesPerSec = 500000;
    EXPECT_FALSE(IsOpenableWaveFormat(wrong));
}

TEST(PomelPCM, SlotStartsFreeAndFillsItsTone) {
    CPomelPCM slot;
    EXPECT_EQ(slot.m_state.load(), CPomelPCM::kFree);
    EXPECT_EQ(slot.m_index, -1);
    ASSERT_NE(slot.m_buffer, nullptr);
    slot.m_frequency = 441;
    slot.m_duration = 0.5;
    ASSERT_EQ(slot.FillTone(), 1);
    EXPECT_EQ(slot.m_state.load(), CPomelPCM::kQueued);
    EXPECT_EQ(slot.m_header.bufferLength, 22050u);
    EXPECT_EQ(slot.m_buffer[0], 252);  // a cosine starts at its crest
    EXPECT_EQ(slot.Allocate(100), 1);
    EXPECT_EQ(slot.m_duration, 0.0);
    slot.m_duration = 1.0;
    EXPECT_EQ(slot.FillTone(), 0);  // more than the buffer holds
}

// The recorder's ring, full while the layer thread lags: what does not fit is dropped a whole
// frame at a time, so the recording read back never slips by part of a sample.
TEST(RecorderRing, AnOverflowDropsWholeFramesOnly) {
    struct Case {
        std::size_t blockAlign;
        std::size_t framesOffered;
        std::size_t framesTaken;  // the ring holds 15 bytes
    };
    const Case cases[] = {{2, 5, 5}, {2, 9, 7}, {4, 4, 3}, {3, 6, 5}, {1, 20, 15}};
    for (const Case& c : cases) {
        portaudio_backend::SpscRing<unsigned char, 16> ring;
        std::vector<unsigned char> frames(c.framesOffered * c.blockAlign);
        for (std::size_t i = 0; i < frames.size(); ++i) {
            frames[i] = static_cast<unsigned char>(i);
        }
        EXPECT_EQ(
            portaudio_backend::PushWholeFrames(ring, frames.data(), c.framesOffered, c.blockAlign),
            c.framesTaken)
            << c.blockAlign << " x " << c.framesOffered;
        // Full now: the next period is dropped whole, and what was taken reads back in order.
        EXPECT_EQ(portaudio_backend::PushWholeFrames(ring, frames.data(), 1, c.blockAlign),
                  c.framesTaken < c.framesOffered ? 0u : 1u);
        unsigned char byte = 0;
        std::size_t read = 0;
        while (ring.Pop(byte)) {
            const std::size_t taken = c.framesTaken * c.blockAlign;
            EXPECT_EQ(static_cast<std::size_t>(byte), read < taken ? read : read - taken);
            ++read;
        }
        EXPECT_EQ(read % c.blockAlign, 0u);
    }
}

TEST(RegisteredMessages, SameNameSameNumberAcrossThreads) {
    const unsigned finished = RegisterWindowMessage("CCodeSoundGen_WM_WORK_FINISHED");
    EXPECT_GE(finished, 0xC000u);
    EXPECT_LE(finished, 0xFFFFu);
    EXPECT_EQ(RegisterWindowMessage("CCodeSoundGen_WM_WORK_FINISHED"), finished);
    EXPECT_EQ(RegisterWindowMessage(""), 0u);
    std::vector<unsigned> seen(8);
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&seen, t] {
            for (int i = 0; i < 50; ++i) {
                seen[t] = RegisterWindowMessage("message " + std::to_string(i));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (unsigned number : seen) {
        EXPECT_EQ(number, seen[0]);
    }
    std::set<unsigned> distinct;
    for (int i = 0; i < 50; ++i) {
        distinct.insert(RegisterWindowMessage("message " + std::to_string(i)));
    }
    EXPECT_EQ(distinct.size(), 50u);
    EXPECT_EQ(distinct.count(finished), 0u);
}

class FakeMidi final : public IMidiOutputEnumerator {
public:
    FakeMidi(unsigned count, MmResult answer) : m_count(count), m_answer(answer) {}
    unsigned Count() override { return m_count; }
    MmResult Capabilities(unsigned, MidiOutCaps& caps) override {
        std::strcpy(caps.productName, "Fake Synth");
        return m_answer;
    }

private:
    unsigned m_count;
    MmResult m_answer;
};

TEST(MidiOutputs, CountAndCapabilitiesComeFromTheEnumerator) {
    SetMidiOutputEnumerator(std::make_unique<FakeMidi>(0, kMmNoError));
    EXPECT_EQ(MidiOutGetNumDevs(), 0u);
    MidiOutCaps caps;
    EXPECT_EQ(MidiOutGetDevCaps(0, &caps, sizeof caps), kMmBadDeviceId);

    SetMidiOutputEnumerator(std::make_unique<FakeMidi>(1, kMmNoError));
    EXPECT_EQ(MidiOutGetNumDevs(), 1u);
    ASSERT_EQ(MidiOutGetDevCaps(0, &caps, sizeof caps), kMmNoError);
    EXPECT_STREQ(caps.productName, "Fake Synth");

    SetMidiOutputEnumerator(std::make_unique<FakeMidi>(1, kMmNoDriver));
    EXPECT_EQ(MidiOutGetDevCaps(0, &caps, sizeof caps), kMmNoDriver);
    char text[80];
    EXPECT_EQ(MidiOutGetErrorText(kMmNoDriver, text, sizeof text), kMmNoError);
    EXPECT_GT(std::strlen(text), 0u);

    // No sequencer device on this machine: the system's enumerator counts none.
    SetMidiOutputEnumerator(nullptr);
    EXPECT_EQ(MidiOutGetNumDevs(), 0u);
}

}  // namespace
