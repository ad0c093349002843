// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CWave.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <new>
#include <vector>

namespace {

constexpr std::uint32_t kHeaderRest = 36;
constexpr std::uint32_t kFormatChunkSize = 16;

void PutU16(std::vector<char>& out, std::uint16_t value) {
    out.push_back(static_cast<char>(value & 0xFF));
    out.push_back(static_cast<char>(value >> 8));
}

void PutU32(std::vector<char>& out, std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) {
        out.push_back(static_cast<char>((value >> shift) & 0xFF));
    }
}

std::uint16_t GetU16(const unsigned char* at) {
    return static_cast<std::uint16_t>(at[0] | (at[1] << 8));
}

std::uint32_t GetU32(const unsigned char* at) {
    return std::uint32_t{at[0]} | (std::uint32_t{at[1]} << 8) | (std::uint32_t{at[2]} << 16) |
           (std::uint32_t{at[3]} << 24);
}

} // namespace

CWave::CWave() { m_format = WaveFormat{kWaveFormatPcm, 0, 0, 0, 0, 0, 0}; }

CWave::~CWave() = default;

CWave::CWave(const CWave& other) : m_format(other.m_format) {
    m_buffer.CopyBuffer(other.GetBuffer(), other.GetNumSamples(), other.m_format.blockAlign);
}

CWave& CWave::operator=(const CWave& other) {
    if (this != &other) {
        m_format = other.m_format;
        m_buffer.SetBuffer(nullptr, 0, other.m_format.blockAlign);
        m_buffer.CopyBuffer(other.GetBuffer(), other.GetNumSamples(), other.m_format.blockAlign);
    }
    return *this;
}

void CWave::BuildFormat(std::uint16_t channels, std::uint32_t samplesPerSec,
                        std::uint16_t bitsPerSample) {
    m_format.formatTag = kWaveFormatPcm;
    m_format.channels = channels;
    m_format.samplesPerSec = samplesPerSec;
    m_format.bitsPerSample = bitsPerSample;
    m_format.avgBytesPerSec =
        static_cast<std::uint32_t>((std::uint64_t{channels} * bitsPerSample * samplesPerSec) / 8);
    m_format.blockAlign = static_cast<std::uint16_t>((channels * bitsPerSample) / 8);
    m_buffer.SetNumSamples(0, m_format.blockAlign);
}

void CWave::SetBuffer(char* data, std::uint32_t samples, bool copy) {
    if (copy) {
        m_buffer.SetBuffer(nullptr, 0, m_format.blockAlign);
        m_buffer.CopyBuffer(data, samples, m_format.blockAlign);
    } else {
        m_buffer.SetBuffer(data, samples, m_format.blockAlign);
    }
}

bool CWave::Save(const std::string& fileName) const {
    const std::uint32_t length = GetBufferLength();
    std::vector<char> header;
    header.reserve(44);
    header.insert(header.end(), {'R', 'I', 'F', 'F'});
    PutU32(header, length + kHeaderRest);
    header.insert(header.end(), {'W', 'A', 'V', 'E', 'f', 'm', 't', ' '});
    PutU32(header, kFormatChunkSize);
    PutU16(header, m_format.formatTag);
    PutU16(header, m_format.channels);
    PutU32(header, m_format.samplesPerSec);
    PutU32(header, m_format.avgBytesPerSec);
    PutU16(header, m_format.blockAlign);
    PutU16(header, m_format.bitsPerSample);
    header.insert(header.end(), {'d', 'a', 't', 'a'});
    PutU32(header, length);
    std::ofstream file(fileName, std::ios::binary | std::ios::trunc);
    if (!file) {
        return false;
    }
    file.write(header.data(), static_cast<std::streamsize>(header.size()));
    if (length > 0 && GetBuffer() != nullptr) {
        file.write(GetBuffer(), length);
    }
    return static_cast<bool>(file);
}

bool CWave::Load(const std::string& fileName) {
    std::ifstream file(fileName, std::ios::binary);
    if (!file) {
        return false;
    }
    const std::vector<char> image((std::istreambuf_iterator<char>(file)),
                                  std::istreambuf_iterator<char>());
    return LoadFromMemory(image.data(), image.size());
}

bool CWave::LoadFromMemory(const void* image, std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(image);
    if (bytes == nullptr || size < 12 || std::memcmp(bytes, "RIFF", 4) != 0 ||
        std::memcmp(bytes + 8, "WAVE", 4) != 0) {
        return false;
    }
    WaveFormat format;
    bool haveFormat = false;
    std::size_t at = 12;
    while (at + 8 <= size) {
        const std::uint32_t chunkSize = GetU32(bytes + at + 4);
        const unsigned char* body = bytes + at + 8;
        const std::size_t available = size - at - 8;
        if (std::memcmp(bytes + at, "fmt ", 4) == 0) {
            if (chunkSize < kFormatChunkSize || available < kFormatChunkSize) {
                return false;
            }
            format.formatTag = GetU16(body);
            format.channels = GetU16(body + 2);
            format.samplesPerSec = GetU32(body + 4);
            format.avgBytesPerSec = GetU32(body + 8);
            format.blockAlign = GetU16(body + 12);
            format.bitsPerSample = GetU16(body + 14);
            haveFormat = format.blockAlign != 0;
        } else if (std::memcmp(bytes + at, "data", 4) == 0) {
            if (!haveFormat) {
                return false;
            }
            // A truncated file keeps what it holds.
            const std::size_t length = std::min<std::size_t>(chunkSize, available);
            const auto samples = static_cast<std::uint32_t>(length / format.blockAlign);
            auto* data = new (std::nothrow) char[samples == 0 ? 1 : std::size_t{samples} * format.blockAlign];
            if (data == nullptr) {
                return false;
            }
            std::memcpy(data, body, std::size_t{samples} * format.blockAlign);
            m_format = format;
            m_buffer.SetBuffer(data, samples, format.blockAlign);
            return true;
        }
        at += 8 + std::size_t{chunkSize} + (chunkSize & 1u);
    }
    return false;
}
