// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

/// Reads the samples of a PCM WAV file (8, 16, 24 or 32 bits, any number of channels) piece by
/// piece, mixed down to mono in full scale ±1, so a file of any length is read in flat memory.
/// Chunks other than "fmt " and "data" are skipped; a data chunk longer than the file (as
/// recorders leave it when they are stopped hard) is read to the end of the file.
class CPcmWaveReader {
public:
    /// Opens the file and reads its header; Error() says why when it cannot be read.
    explicit CPcmWaveReader(const std::string& fileName);

    /// Why the file cannot be read, as one line ("not a WAV file", "not PCM (format 3)", ...);
    /// empty when it can.
    const std::string& Error() const { return m_error; }

    std::uint32_t SampleRate() const { return m_sampleRate; }

    /// Sample frames in the data chunk as its header gives them.
    std::uint64_t Frames() const { return m_frames; }

    /// Reads up to out.size() frames; 0 at the end of the data (or after a read error, which
    /// Error() then names).
    std::size_t Read(std::span<float> out);

private:
    bool ReadHeader();

    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Closer> m_file;
    std::string m_error;
    std::uint32_t m_sampleRate = 0;
    std::uint16_t m_channels = 0;
    std::uint16_t m_bytesPerSample = 0;
    std::uint64_t m_frames = 0;
    std::uint64_t m_left = 0;  ///< data bytes not yet read
    std::vector<unsigned char> m_bytes;
};
