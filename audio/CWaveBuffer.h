// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// An owned array of samples of one size in bytes.
class CWaveBuffer {
public:
    CWaveBuffer() = default;
    virtual ~CWaveBuffer();
    CWaveBuffer(const CWaveBuffer&) = delete;
    CWaveBuffer& operator=(const CWaveBuffer&) = delete;

    /// Replaces the data by an uninitialised array of count x sampleSize bytes.
    void SetNumSamples(std::uint32_t count, std::uint32_t sampleSize);
    /// Allocates count x sampleSize bytes first when empty; then zeroes the held bytes and copies
    /// min(held count, count) x sampleSize bytes (never more than it holds).
    void CopyBuffer(const void* data, std::uint32_t count, std::uint32_t sampleSize);
    /// Takes ownership of data, an array made with new char[].
    void SetBuffer(char* data, std::uint32_t count, std::uint32_t sampleSize);

    char* GetBuffer() const { return m_data; }
    std::uint32_t GetNumSamples() const { return m_numSamples; }
    std::uint32_t GetSampleSize() const { return m_sampleSize; }

private:
    std::uint32_t m_sampleSize = 0;
    char* m_data = nullptr;
    std::uint32_t m_numSamples = 0;
};
