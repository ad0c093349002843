// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CWaveBuffer.h"

#include <algorithm>
#include <cstring>
#include <new>

CWaveBuffer::~CWaveBuffer() {
    m_numSamples = 0;
    delete[] m_data;
}

void CWaveBuffer::SetNumSamples(std::uint32_t count, std::uint32_t sampleSize) {
    delete[] m_data;
    const std::uint64_t bytes = std::uint64_t{count} * sampleSize;
    m_data = new (std::nothrow) char[bytes == 0 ? 1 : bytes];
    m_numSamples = m_data != nullptr ? count : 0;
    m_sampleSize = sampleSize;
}

void CWaveBuffer::CopyBuffer(const void* data, std::uint32_t count, std::uint32_t sampleSize) {
    if (m_data == nullptr) {
        SetNumSamples(count, sampleSize);
        if (m_data == nullptr) {
            return;
        }
    }
    const std::uint64_t held = std::uint64_t{m_sampleSize} * m_numSamples;
    std::memset(m_data, 0, held);
    const std::uint64_t wanted = std::uint64_t{std::min(m_numSamples, count)} * sampleSize;
    if (data != nullptr) {
        std::memcpy(m_data, data, std::min(held, wanted));
    }
}

void CWaveBuffer::SetBuffer(char* data, std::uint32_t count, std::uint32_t sampleSize) {
    if (data == m_data) {
        m_numSamples = count;
        m_sampleSize = sampleSize;
        return;
    }
    delete[] m_data;
    m_data = data;
    m_numSamples = count;
    m_sampleSize = sampleSize;
}
