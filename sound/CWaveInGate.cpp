// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/CWaveInGate.h"

#include <limits>

CWaveInGate::~CWaveInGate() {
    if (m_device != nullptr) {
        WaveInReset(m_device);
        WaveInUnprepareHeader(m_device, &m_header, kHeaderSize);
        WaveInClose(m_device);
    }
}

unsigned CWaveInGate::Open(const RecordingFormat& format) {
    if (m_device != nullptr) {
        // Left open by an earlier generation whose buffer was refused.
        WaveInReset(m_device);
        WaveInUnprepareHeader(m_device, &m_header, kHeaderSize);
        WaveInClose(m_device);
        m_device = nullptr;
    }
    WaveFormat wave;
    wave.formatTag = format.formatTag;
    wave.channels = format.channels;
    wave.samplesPerSec = format.samplesPerSec;
    wave.avgBytesPerSec = format.avgBytesPerSec;
    wave.blockAlign = format.blockAlign;
    wave.bitsPerSample = format.bitsPerSample;
    wave.cbSize = format.extraSize;
    WaveInHandle device = nullptr;
    const MmResult result = WaveInOpen(&device, kWaveMapper, &wave, nullptr, 0, kWaveCallbackNull);
    m_device = result == kMmNoError ? device : nullptr;
    return result;
}

unsigned CWaveInGate::PrepareHeader(std::byte* data, std::size_t size) {
    m_header.Clear();
    m_header.data = reinterpret_cast<char*>(data);
    m_header.bufferLength = static_cast<std::uint32_t>(
        std::min<std::size_t>(size, std::numeric_limits<std::uint32_t>::max()));
    return WaveInPrepareHeader(m_device, &m_header, kHeaderSize);
}

unsigned CWaveInGate::AddBuffer() {
    return WaveInAddBuffer(m_device, &m_header, kHeaderSize);
}

unsigned CWaveInGate::UnprepareHeader() {
    // The input never started, so the buffer is still queued: take it back first.
    if (m_device != nullptr) {
        WaveInReset(m_device);
    }
    return WaveInUnprepareHeader(m_device, &m_header, kHeaderSize);
}

unsigned CWaveInGate::Close() {
    const MmResult result = WaveInClose(m_device);
    if (result == kMmNoError) {
        m_device = nullptr;
    }
    return result;
}
