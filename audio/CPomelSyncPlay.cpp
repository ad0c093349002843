// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CPomelSyncPlay.h"

#include <chrono>
#include <cmath>
#include <mutex>
#include <new>
#include <thread>
#include <vector>

namespace {

constexpr std::uintptr_t kCallbackInstance = 0x12345;
constexpr unsigned kCapsRecordBytes = 52;
constexpr unsigned kCapsQuerySize = 4;
constexpr double kTwoPi = 6.283185307179586;
constexpr std::uint32_t kDonePollMicroseconds = 1000;

void IgnoreDeviceMessages(WaveOutHandle, unsigned, std::uintptr_t, WaveHeader*) {}

/// Every capability record OpenDevice ever asked for. They are never read nor released, by
/// design; holding them here keeps them reachable for leak checkers.
std::vector<unsigned char*>& CapabilityRecords() {
    static auto* records = new std::vector<unsigned char*>;
    return *records;
}

} // namespace

CPomelSyncPlay::CPomelSyncPlay() {
    m_format.formatTag = kWaveFormatPcm;
    m_format.channels = 1;
    m_format.samplesPerSec = 96000;
    m_format.avgBytesPerSec = 96000;
    m_format.blockAlign = 1;
    m_format.bitsPerSample = 8;
    m_format.cbSize = 0;
}

CPomelSyncPlay::~CPomelSyncPlay() = default;

void CPomelSyncPlay::SynthesizeTone(unsigned char* samples, std::size_t count, double frequency,
                                    int sampleRate) {
    for (std::size_t i = 0; i < count; ++i) {
        const double wave = std::sin(static_cast<double>(i) * (kTwoPi / sampleRate) * frequency);
        samples[i] = static_cast<unsigned char>(static_cast<int>(wave * 125.0 + 127.0));
    }
}

void CPomelSyncPlay::OpenDevice() {
    static std::mutex recordsLock;
    const unsigned count = WaveOutGetNumDevs();
    for (unsigned device = 0; device < count; ++device) {
        auto* record = new (std::nothrow) unsigned char[kCapsRecordBytes]();
        if (record == nullptr) {
            continue;
        }
        {
            std::lock_guard guard(recordsLock);
            CapabilityRecords().push_back(record);
        }
        WaveOutGetDevCaps(device, reinterpret_cast<WaveOutCaps*>(record), kCapsQuerySize);
    }
    m_lastResult = WaveOutOpen(&m_device, kWaveMapper, &m_format, &IgnoreDeviceMessages,
                               kCallbackInstance, kWaveCallbackFunction);
    if (m_lastResult != kMmNoError) {
        m_device = nullptr;
    }
}

int CPomelSyncPlay::PlayTone(double frequency, double duration) {
    if (frequency <= -1.0) {
        std::this_thread::sleep_for(
            std::chrono::milliseconds(static_cast<long long>(m_duration * 1000)));
        return 1;
    }
    m_frequency = frequency;
    m_duration = duration;
    const double wanted = m_sampleRate * duration;
    const auto count =
        wanted > 0.0 && wanted < 4294967295.0 ? static_cast<std::size_t>(wanted) : std::size_t{0};
    m_toneSamples = count;
    delete[] m_samples;
    m_samples = new (std::nothrow) unsigned char[count == 0 ? 1 : count];
    if (m_samples == nullptr) {
        return 0;
    }
    m_format.avgBytesPerSec = static_cast<std::uint32_t>(m_sampleRate);
    m_format.blockAlign = 1;
    m_format.bitsPerSample = 8;
    m_header.Clear();
    SynthesizeTone(m_samples, count, frequency, m_sampleRate);
    return PlayHeldSamples();
}

int CPomelSyncPlay::PlayPrepared() {
    if (m_samples == nullptr) {
        return 0;
    }
    return PlayHeldSamples();
}

int CPomelSyncPlay::PlayHeldSamples() {
    if (m_lastResult != kMmNoError) {
        delete[] m_samples;
        m_samples = nullptr;
        return 0;
    }
    m_header.data = reinterpret_cast<char*>(m_samples);
    m_header.bufferLength = static_cast<std::uint32_t>(m_toneSamples);
    m_lastResult = WaveOutPrepareHeader(m_device, &m_header, sizeof m_header);
    if (m_lastResult != kMmNoError) {
        m_lastResult = WaveOutClose(m_device);
        if (m_lastResult == kMmNoError) {
            m_device = nullptr;
        }
        delete[] m_samples;
        m_samples = nullptr;
        return 0;
    }
    m_header.loops = 0;
    Post(kAppMessage + 4);
    m_lastResult = WaveOutWrite(m_device, &m_header, sizeof m_header);
    if (m_lastResult == kMmNoError) {
        // Looks at most every millisecond; a look ends early when the flag is set.
        while (!WaveHeaderWaitDone(&m_header, kDonePollMicroseconds)) {
        }
    }
    Post(kAppMessage + 3);
    m_lastResult = WaveOutUnprepareHeader(m_device, &m_header, sizeof m_header);
    delete[] m_samples;
    m_samples = nullptr;
    return 1;
}

void CPomelSyncPlay::CloseDevice() {
    m_lastResult = WaveOutClose(m_device);
    if (m_lastResult == kMmNoError) {
        m_device = nullptr;
    }
}

void CPomelSyncPlay::Post(unsigned message) {
    if (m_ownerWindow != nullptr) {
        m_ownerWindow->PostMessage(message, 1, 1);
    }
}
