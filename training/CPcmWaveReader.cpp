// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CPcmWaveReader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

constexpr std::uint16_t kFormatPcm = 1;
constexpr std::uint16_t kFormatExtensible = 0xFFFE;
constexpr std::size_t kExtensibleSubFormatAt = 24;  // in the fmt chunk

std::uint32_t Little(const unsigned char* bytes, int count) {
    std::uint32_t value = 0;
    for (int i = count - 1; i >= 0; --i) {
        value = (value << 8) | bytes[i];
    }
    return value;
}

}  // namespace

CPcmWaveReader::CPcmWaveReader(const std::string& fileName)
    : m_file(std::fopen(fileName.c_str(), "rb")) {
    if (!m_file) {
        m_error = "cannot open " + fileName + ": " + std::strerror(errno);
        return;
    }
    if (ReadHeader() && m_frames == 0) {
        m_error = "empty: the file holds no samples";
    }
    if (!m_error.empty()) {
        m_file.reset();
    }
}

bool CPcmWaveReader::ReadHeader() {
    std::FILE* file = m_file.get();
    unsigned char riff[12];
    if (std::fread(riff, 1, sizeof riff, file) != sizeof riff ||
        std::memcmp(riff, "RIFF", 4) != 0 || std::memcmp(riff + 8, "WAVE", 4) != 0) {
        m_error = "not a WAV file";
        return false;
    }
    bool haveFormat = false;
    for (;;) {
        unsigned char chunk[8];
        if (std::fread(chunk, 1, sizeof chunk, file) != sizeof chunk) {
            m_error = haveFormat ? "empty: the file holds no samples" : "not a WAV file: no format";
            return false;
        }
        const std::uint32_t size = Little(chunk + 4, 4);
        if (std::memcmp(chunk, "fmt ", 4) == 0) {
            unsigned char format[40] = {};
            const std::size_t wanted = std::min<std::size_t>(size, sizeof format);
            if (size < 16 || std::fread(format, 1, wanted, file) != wanted ||
                std::fseek(file, static_cast<long>(size - wanted + (size & 1)), SEEK_CUR) != 0) {
                m_error = "not a WAV file: a damaged format";
                return false;
            }
            auto tag = static_cast<std::uint16_t>(Little(format, 2));
            if (tag == kFormatExtensible && size >= kExtensibleSubFormatAt + 2) {
                tag = static_cast<std::uint16_t>(Little(format + kExtensibleSubFormatAt, 2));
            }
            m_channels = static_cast<std::uint16_t>(Little(format + 2, 2));
            m_sampleRate = Little(format + 4, 4);
            const auto bits = static_cast<std::uint16_t>(Little(format + 14, 2));
            if (tag != kFormatPcm) {
                m_error = "not PCM (format " + std::to_string(tag) + ")";
                return false;
            }
            if (m_channels == 0 || m_sampleRate == 0 || bits == 0 || bits > 32 || bits % 8 != 0) {
                m_error = "not a PCM format that can be read (" + std::to_string(m_channels) +
                          " channels, " + std::to_string(bits) + " bits, " +
                          std::to_string(m_sampleRate) + " Hz)";
                return false;
            }
            m_bytesPerSample = static_cast<std::uint16_t>(bits / 8);
            haveFormat = true;
        } else if (std::memcmp(chunk, "data", 4) == 0 && haveFormat) {
            // A header that claims more than the file holds is read to the end of the file.
            const long at = std::ftell(file);
            std::uint64_t bytes = size;
            if (at >= 0 && std::fseek(file, 0, SEEK_END) == 0) {
                const long end = std::ftell(file);
                if (end >= at) {
                    bytes = std::min<std::uint64_t>(bytes, static_cast<std::uint64_t>(end - at));
                }
                std::fseek(file, at, SEEK_SET);
            }
            const std::uint64_t frameBytes = std::uint64_t{m_channels} * m_bytesPerSample;
            m_frames = bytes / frameBytes;
            m_left = m_frames * frameBytes;
            return true;
        } else if (std::fseek(file, static_cast<long>(size + (size & 1)), SEEK_CUR) != 0) {
            m_error = "not a WAV file: a damaged chunk";
            return false;
        }
    }
}

std::size_t CPcmWaveReader::Read(std::span<float> out) {
    if (!m_file || m_left == 0 || out.empty()) {
        return 0;
    }
    const std::size_t frameBytes = std::size_t{m_channels} * m_bytesPerSample;
    const std::size_t frames = std::min<std::uint64_t>(out.size(), m_left / frameBytes);
    m_bytes.resize(frames * frameBytes);
    const std::size_t got =
        std::fread(m_bytes.data(), 1, m_bytes.size(), m_file.get()) / frameBytes;
    if (got < frames && std::ferror(m_file.get())) {
        m_error = std::string("read error: ") + std::strerror(errno);
    }
    m_left = got < frames ? 0 : m_left - got * frameBytes;
    const int bits = 8 * m_bytesPerSample;
    const double scale = 1.0 / static_cast<double>(std::uint64_t{1} << (bits - 1)) / m_channels;
    const unsigned char* bytes = m_bytes.data();
    for (std::size_t f = 0; f < got; ++f) {
        double sum = 0.0;
        for (std::uint16_t c = 0; c < m_channels; ++c, bytes += m_bytesPerSample) {
            const std::uint32_t raw = Little(bytes, m_bytesPerSample);
            std::int64_t value = 0;
            if (bits == 8) {
                value = static_cast<std::int64_t>(raw) - 128;  // 8-bit PCM is unsigned
            } else {
                const std::uint32_t sign = std::uint32_t{1} << (bits - 1);
                value = static_cast<std::int64_t>(raw) -
                        ((raw & sign) != 0 ? 2 * std::int64_t{sign} : 0);
            }
            sum += static_cast<double>(value);
        }
        out[f] = static_cast<float>(sum * scale);
    }
    return got;
}
