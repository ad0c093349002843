// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CClipPlayer.h"

#include "audio/CWave.h"

#include <cstring>

namespace {

bool SameFormat(const WaveFormat& a, const WaveFormat& b) {
    return a.formatTag == b.formatTag && a.channels == b.channels &&
           a.samplesPerSec == b.samplesPerSec && a.bitsPerSample == b.bitsPerSample &&
           a.blockAlign == b.blockAlign;
}

}  // namespace

CClipPlayer::~CClipPlayer() {
    Close();
}

bool CClipPlayer::Play(const void* image, std::size_t size) {
    CWave wave;
    if (!wave.LoadFromMemory(image, size) || !IsOpenableWaveFormat(wave.GetFormat())) {
        return false;
    }
    if (m_handle != nullptr && !SameFormat(m_format, wave.GetFormat())) {
        Close();
    }
    if (m_handle != nullptr) {
        WaveOutReset(m_handle);
        WaveOutUnprepareHeader(m_handle, &m_header, sizeof m_header);
    } else {
        m_format = wave.GetFormat();
        if (WaveOutOpen(&m_handle, kWaveMapper, &m_format, nullptr, 0, kWaveCallbackNull) !=
            kMmNoError) {
            m_handle = nullptr;
            return false;
        }
    }
    m_samples.assign(wave.GetBuffer(), wave.GetBuffer() + wave.GetBufferLength());
    if (m_samples.empty()) {
        return true;
    }
    m_header.Clear();
    m_header.data = m_samples.data();
    m_header.bufferLength = static_cast<std::uint32_t>(m_samples.size());
    if (WaveOutPrepareHeader(m_handle, &m_header, sizeof m_header) != kMmNoError ||
        WaveOutWrite(m_handle, &m_header, sizeof m_header) != kMmNoError) {
        // The output has gone; the next clip opens a fresh one.
        Close();
        return false;
    }
    return true;
}

void CClipPlayer::Stop() {
    if (m_handle != nullptr) {
        WaveOutReset(m_handle);
    }
}

bool CClipPlayer::IsPlaying() const {
    const std::uint32_t flags = m_header.flags.load();
    return m_handle != nullptr && (flags & kWaveHeaderInQueue) != 0;
}

void CClipPlayer::Close() {
    if (m_handle == nullptr) {
        return;
    }
    WaveOutReset(m_handle);
    WaveOutUnprepareHeader(m_handle, &m_header, sizeof m_header);
    WaveOutClose(m_handle);
    m_handle = nullptr;
}
