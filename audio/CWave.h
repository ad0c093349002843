// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/CWaveBuffer.h"
#include "audio/WaveAudio.h"

#include <cstddef>
#include <cstdint>
#include <string>

/// A PCM format with its samples; saved as a WAV file with the 44-byte header.
class CWave {
public:
    CWave();
    virtual ~CWave();
    CWave(const CWave& other);
    CWave& operator=(const CWave& other);

    /// Tag 1, the given values, byte rate and block align derived; the samples become none.
    void BuildFormat(std::uint16_t channels, std::uint32_t samplesPerSec,
                     std::uint16_t bitsPerSample);
    const WaveFormat& GetFormat() const { return m_format; }

    char* GetBuffer() const { return m_buffer.GetBuffer(); }
    std::uint32_t GetNumSamples() const { return m_buffer.GetNumSamples(); }
    std::uint32_t GetBufferLength() const { return m_buffer.GetNumSamples() * m_format.blockAlign; }
    /// With copy, copies samples x block align bytes; without, takes ownership (new char[]).
    void SetBuffer(char* data, std::uint32_t samples, bool copy);

    /// Writes "RIFF", length + 36, "WAVEfmt ", 16, the format, "data", length, the samples.
    bool Save(const std::string& fileName) const;
    /// Reads a file as Save writes it (other chunks are skipped); false for anything else.
    bool Load(const std::string& fileName);
    /// The same from a file image in memory.
    bool LoadFromMemory(const void* image, std::size_t size);

private:
    CWaveBuffer m_buffer;
    WaveFormat m_format;
};
