// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CWaveOut.h"

#include <algorithm>

namespace {
constexpr unsigned kErrorTextLength = 256;
constexpr int kChunksAhead = 3;
} // namespace

CWaveOut::CWaveOut() = default;

CWaveOut::CWaveOut(const CWave& wave, const CWaveDevice& device)
    : m_header(2), m_wave(wave), m_device(device) {}

CWaveOut::~CWaveOut() {
    if (m_handle != nullptr) {
        m_end = m_current.load();
        WaveOutReset(m_handle);
        WaveOutClose(m_handle);
    }
}

bool CWaveOut::Open() {
    m_lastResult = WaveOutOpen(&m_handle, m_device.GetDevice(), &m_wave.GetFormat(), &Callback,
                               reinterpret_cast<std::uintptr_t>(this), kWaveCallbackFunction);
    if (m_lastResult != kMmNoError) {
        m_handle = nullptr;
    }
    return m_lastResult == kMmNoError;
}

void CWaveOut::SetRange(std::uint32_t first, std::uint32_t last) {
    const std::uint32_t blockAlign = m_wave.GetFormat().blockAlign;
    const std::uint32_t length = m_wave.GetBufferLength();
    m_current = first == kEndOfWave ? 0 : first * blockAlign;
    // Bytes and samples are mixed in the comparison, as this player always did.
    if (last == kEndOfWave) {
        m_end = length;
    } else if (length < last) {
        m_end = blockAlign * length;
    } else {
        m_end = blockAlign * last;
    }
    m_end = std::min(m_end.load(), length);
}

bool CWaveOut::Play(std::uint32_t first, std::uint32_t last) {
    if (m_handle == nullptr) {
        m_lastResult = kMmInvalidHandle;
        return false;
    }
    WaveOutReset(m_handle);
    SetRange(first, last);
    m_header = 2;
    for (int i = 0; i < kChunksAhead; ++i) {
        if (!WriteNextChunk()) {
            return false;
        }
    }
    return true;
}

bool CWaveOut::WriteNextChunk() {
    const std::uint32_t current = m_current.load();
    const std::uint32_t end = m_end.load();
    if (current >= end) {
        return false;
    }
    const int index = (m_header.load() + 1) % kChunksAhead;
    m_header = index;
    WaveHeader& header = m_headers[index];
    WaveOutUnprepareHeader(m_handle, &header, sizeof header);
    header.Clear();
    header.data = m_wave.GetBuffer() + current;
    header.bufferLength = std::min(m_chunkSize, end - current);
    header.user = reinterpret_cast<std::uintptr_t>(this);
    m_current = current + header.bufferLength;
    m_lastResult = WaveOutPrepareHeader(m_handle, &header, sizeof header);
    if (m_lastResult != kMmNoError) {
        return false;
    }
    m_lastResult = WaveOutWrite(m_handle, &header, sizeof header);
    return m_lastResult == kMmNoError;
}

bool CWaveOut::PlayLooped(std::uint32_t first, std::uint32_t last, std::uint32_t loops) {
    if (m_handle == nullptr) {
        m_lastResult = kMmInvalidHandle;
        return false;
    }
    WaveOutReset(m_handle);
    SetRange(first, last);
    WaveHeader& header = m_headers[0];
    WaveOutUnprepareHeader(m_handle, &header, sizeof header);
    header.Clear();
    header.data = m_wave.GetBuffer() + m_current.load();
    header.bufferLength = m_end.load() - m_current.load();
    header.flags = kWaveHeaderBeginLoop | kWaveHeaderEndLoop;
    header.loops = loops;
    m_current = m_end.load();
    m_lastResult = WaveOutPrepareHeader(m_handle, &header, sizeof header);
    if (m_lastResult == kMmNoError) {
        m_lastResult = WaveOutWrite(m_handle, &header, sizeof header);
    }
    return m_lastResult == kMmNoError;
}

void CWaveOut::Callback(WaveOutHandle device, unsigned message, std::uintptr_t instance,
                        WaveHeader* header) {
    if (message != kWaveOutDone || device == nullptr || instance == 0 || header == nullptr) {
        return;
    }
    auto* self = reinterpret_cast<CWaveOut*>(instance);
    WaveOutUnprepareHeader(device, header, sizeof *header);
    if (self->m_current.load() < self->m_end.load()) {
        self->WriteNextChunk();
    }
}

bool CWaveOut::Stop() {
    m_end = m_current.load();
    m_lastResult = WaveOutReset(m_handle);
    return m_lastResult == kMmNoError;
}

bool CWaveOut::Restart() {
    m_lastResult = WaveOutRestart(m_handle);
    return m_lastResult == kMmNoError;
}

bool CWaveOut::Close() {
    if (m_handle == nullptr) {
        return true;
    }
    m_end = m_current.load();
    m_lastResult = WaveOutReset(m_handle);
    if (m_lastResult != kMmNoError) {
        return false;
    }
    m_lastResult = WaveOutClose(m_handle);
    if (m_lastResult != kMmNoError) {
        return false;
    }
    m_handle = nullptr;
    return true;
}

long CWaveOut::GetPosition() {
    if (m_handle == nullptr) {
        return -1;
    }
    std::uint32_t samples = 0;
    m_lastResult = WaveOutGetPosition(m_handle, &samples);
    return m_lastResult == kMmNoError ? static_cast<long>(samples) : -1;
}

std::string CWaveOut::GetError() const {
    if (m_lastResult == kMmNoError) {
        return {};
    }
    char text[kErrorTextLength] = {};
    if (WaveOutGetErrorText(m_lastResult, text, kErrorTextLength) != kMmNoError) {
        return {};
    }
    return text;
}

bool CWaveOut::IsPlaying() const {
    const std::uint32_t flags = m_headers[m_header.load()].flags.load();
    return flags != 0 && (flags & kWaveHeaderDone) == 0;
}
