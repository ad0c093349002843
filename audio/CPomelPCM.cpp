// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CPomelPCM.h"

#include <cmath>
#include <cstring>
#include <new>

namespace {
/// 6.2832 / 44100: this player's own approximation of 2 pi, kept.
constexpr double kPhaseStep = 0.00014247619047619048;
constexpr int kRate = 44100;
} // namespace

CPomelPCM::CPomelPCM() {
    m_buffer = new (std::nothrow) unsigned char[kBufferBytes];
    if (m_buffer != nullptr) {
        m_bufferSize = kBufferBytes;
        std::memset(m_buffer, 0, 4);
    }
}

CPomelPCM::~CPomelPCM() { delete[] m_buffer; }

int CPomelPCM::Allocate(std::uint32_t size) {
    delete[] m_buffer;
    m_frequency = 0;
    m_duration = 0.0;
    m_buffer = new (std::nothrow) unsigned char[size == 0 ? 1 : size];
    m_bufferSize = m_buffer != nullptr ? size : 0;
    if (m_buffer == nullptr) {
        return 0;
    }
    std::memset(m_buffer, 0, size);
    return 1;
}

void CPomelPCM::WriteTone(unsigned char* samples, std::uint32_t count, int frequency) {
    for (std::uint32_t i = 0; i < count; ++i) {
        const double wave = std::cos(static_cast<double>(i) * kPhaseStep * frequency);
        samples[i] = static_cast<unsigned char>(static_cast<int>(wave * 125.0 + 127.0));
    }
}

int CPomelPCM::FillTone() {
    const auto count = static_cast<std::uint32_t>(m_duration * kRate);
    if (m_buffer == nullptr || count > m_bufferSize) {
        return 0;
    }
    WriteTone(m_buffer, count, m_frequency);
    m_header.data = reinterpret_cast<char*>(m_buffer);
    m_header.bufferLength = count;
    m_state = kQueued;
    return 1;
}
