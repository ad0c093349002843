// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/CCodeWaveGen.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <span>
#include <system_error>
#include <vector>

#include "audio/INotifyTarget.h"
#include "model/CodePatterns.h"
#include "model/CodeTiming.h"
#include "sound/CNoDeviceGate.h"
#include "sound/CSoundFileWriter.h"
#include "sound/IProgressCtrl.h"

namespace {

// Three cycles of a sine at 0.8 of full scale, starting ten samples into the period so that
// repeated blocks join without a jump.
constexpr std::array<std::int16_t, CCodeWaveGen::kBlockSamples> kToneBlock = {
    -10032, 5114,  18536, 25711, 24219, 14564, 0,      -14564, -24219, -25711, -18536,
    -5114,  10032, 21796, 26214, 21796, 10032, -5114,  -18536, -25711, -24219, -14564,
    0,      14564, 24219, 25711, 18536, 5114,  -10032, -21796, -26214, -21796};

constexpr double kSecondsPerBlockDivisor = 0.0046;

// Rendering goes to disk in pieces of this size, so memory stays flat for any text length.
constexpr std::size_t kPieceBytes = std::size_t{1} << 20;
// Tones are copied from a ready-made run of blocks rather than block by block.
constexpr std::int64_t kToneRunBlocks = 64;

// RIFF sizes are 32-bit: the data chunk may not pass this (a multiple of a block).
constexpr std::int64_t kMaxDataBytes = 0xFFFFFFC0;
constexpr std::size_t kHeaderBytes = 46;
constexpr std::uint32_t kFormatChunkBytes = 18;

const std::array<std::byte, kToneRunBlocks * CCodeWaveGen::kBlockBytes>& ToneRun() {
    static const auto run = [] {
        std::array<std::byte, kToneRunBlocks * CCodeWaveGen::kBlockBytes> bytes{};
        for (std::size_t i = 0; i < bytes.size() / 2; ++i) {
            const auto sample = static_cast<std::uint16_t>(kToneBlock[i % kToneBlock.size()]);
            bytes[2 * i] = static_cast<std::byte>(sample & 0xFF);
            bytes[2 * i + 1] = static_cast<std::byte>(sample >> 8);
        }
        return bytes;
    }();
    return run;
}

struct CountingSink {
    std::int64_t bytes = 0;
    void Tone(std::int64_t blocks) { bytes += blocks * CCodeWaveGen::kBlockBytes; }
    void Silence(std::int64_t count) { bytes += count; }
};

struct PointerSink {
    std::byte* dest;
    void Tone(std::int64_t blocks) {
        const auto& run = ToneRun();
        while (blocks > 0) {
            const std::int64_t n = std::min(blocks, kToneRunBlocks);
            const auto bytes = static_cast<std::size_t>(n * CCodeWaveGen::kBlockBytes);
            std::memcpy(dest, run.data(), bytes);
            dest += bytes;
            blocks -= n;
        }
    }
    void Silence(std::int64_t count) {
        std::memset(dest, 0, static_cast<std::size_t>(count));
        dest += count;
    }
};

/// Collects rendered bytes in one piece buffer and writes it out whenever it is full, to a file
/// or to an encoder; after the first failed write it only counts.
class FileSink {
public:
    FileSink(std::FILE* file, std::vector<std::byte>& piece, std::int64_t limit)
        : m_file(file), m_piece(piece), m_limit(limit) {}
    FileSink(CSoundFileWriter& encoder, std::vector<std::byte>& piece, std::int64_t limit)
        : m_encoder(&encoder), m_file(nullptr), m_piece(piece), m_limit(limit) {}

    void Tone(std::int64_t blocks) {
        const auto& run = ToneRun();
        while (blocks > 0 && Writing()) {
            const std::int64_t room = static_cast<std::int64_t>(Room()) / CCodeWaveGen::kBlockBytes;
            const std::int64_t n = std::min({blocks, kToneRunBlocks, room});
            const auto bytes = static_cast<std::size_t>(n * CCodeWaveGen::kBlockBytes);
            std::memcpy(m_piece.data() + m_fill, run.data(), bytes);
            Advance(bytes);
            blocks -= n;
        }
    }

    void Silence(std::int64_t count) {
        while (count > 0 && Writing()) {
            const auto n =
                static_cast<std::size_t>(std::min(count, static_cast<std::int64_t>(Room())));
            std::memset(m_piece.data() + m_fill, 0, n);
            Advance(n);
            count -= static_cast<std::int64_t>(n);
        }
    }

    /// Writes what is left; false when any write failed.
    bool Finish() {
        Flush();
        return !m_failed;
    }

    bool Writing() const { return !m_failed && m_taken < m_limit; }
    int Errno() const { return m_errno; }

private:
    std::size_t Room() const {
        const auto left = static_cast<std::size_t>(m_limit - m_taken);
        return std::min(m_piece.size() - m_fill, left);
    }

    void Advance(std::size_t bytes) {
        m_fill += bytes;
        m_taken += static_cast<std::int64_t>(bytes);
        if (m_fill == m_piece.size() || m_taken == m_limit) {
            Flush();
        }
    }

    void Flush() {
        if (m_fill > 0 && !m_failed && m_encoder != nullptr) {
            m_failed = !m_encoder->WriteLittleEndian(std::span(m_piece.data(), m_fill));
        } else if (m_fill > 0 && !m_failed) {
            errno = 0;
            if (std::fwrite(m_piece.data(), 1, m_fill, m_file) != m_fill) {
                m_failed = true;
                m_errno = errno;
            }
        }
        m_fill = 0;
    }

    CSoundFileWriter* m_encoder = nullptr;
    std::FILE* m_file;
    std::vector<std::byte>& m_piece;
    std::int64_t m_limit;
    std::int64_t m_taken = 0;
    std::size_t m_fill = 0;
    bool m_failed = false;
    int m_errno = 0;
};

void PutLittleEndian(std::byte*& out, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) {
        *out++ = static_cast<std::byte>((value >> (8 * i)) & 0xFF);
    }
}

void PutId(std::byte*& out, const char (&id)[5]) {
    for (int i = 0; i < 4; ++i) {
        *out++ = static_cast<std::byte>(id[i]);
    }
}

std::array<std::byte, kHeaderBytes> Header(const RecordingFormat& format, std::uint32_t dataBytes) {
    std::array<std::byte, kHeaderBytes> header{};
    std::byte* out = header.data();
    PutId(out, "RIFF");
    PutLittleEndian(out, static_cast<std::uint32_t>(kHeaderBytes - 8) + dataBytes, 4);
    PutId(out, "WAVE");
    PutId(out, "fmt ");
    PutLittleEndian(out, kFormatChunkBytes, 4);
    PutLittleEndian(out, format.formatTag, 2);
    PutLittleEndian(out, format.channels, 2);
    PutLittleEndian(out, format.samplesPerSec, 4);
    PutLittleEndian(out, format.avgBytesPerSec, 4);
    PutLittleEndian(out, format.blockAlign, 2);
    PutLittleEndian(out, format.bitsPerSample, 2);
    PutLittleEndian(out, format.extraSize, 2);
    PutId(out, "data");
    PutLittleEndian(out, dataBytes, 4);
    return header;
}

bool StopsGeneration(unsigned openResult) {
    switch (openResult) {
        case IRecordingGate::kBadDeviceId:
        case IRecordingGate::kAllocated:
        case IRecordingGate::kNoDriver:
        case IRecordingGate::kNoMem:
        case IRecordingGate::kBadFormat:
            return true;
        default:
            return false;
    }
}

}  // namespace

CCodeWaveGen::CCodeWaveGen() = default;
CCodeWaveGen::~CCodeWaveGen() = default;

void CCodeWaveGen::SetText(std::string_view text) {
    m_text = ToUpperAscii(text);
}
void CCodeWaveGen::SetWordsPerMinute(int wordsPerMinute) {
    m_wordsPerMinute = wordsPerMinute;
}
void CCodeWaveGen::SetPitch(int pitch) {
    m_pitch = pitch;
}
void CCodeWaveGen::SetFarnsworthFactor(int factor) {
    m_farnsworth = factor;
}
void CCodeWaveGen::SetProgressCtrl(IProgressCtrl* progress) {
    m_progress = progress;
}
void CCodeWaveGen::SetNotifyWindow(INotifyTarget* notify) {
    m_notify = notify;
}
void CCodeWaveGen::SetFileName(std::string_view fileName) {
    m_fileName = fileName;
}
void CCodeWaveGen::SetFolder(std::string_view folder) {
    m_folder = folder;
}
void CCodeWaveGen::SetRecordingGate(IRecordingGate* gate) {
    m_gate = gate;
}

std::uint32_t CCodeWaveGen::SetSamplesPerSec(std::uint32_t value) {
    return m_samplesPerSec = value;
}
std::uint32_t CCodeWaveGen::SetAvgBytesPerSec(std::uint32_t value) {
    return m_avgBytesPerSec = value;
}
std::uint16_t CCodeWaveGen::SetBlockAlign(std::uint16_t value) {
    return m_blockAlign = value;
}
std::uint16_t CCodeWaveGen::SetBitsPerSample(std::uint16_t value) {
    return m_bitsPerSample = value;
}
std::uint16_t CCodeWaveGen::SetChannels(std::uint16_t value) {
    return m_channels = value;
}
std::uint16_t CCodeWaveGen::SetFormatTag(std::uint16_t value) {
    return m_formatTag = value;
}

std::string CCodeWaveGen::LookupPattern(char c) {
    return std::string(::LookupPattern(c));
}

int CCodeWaveGen::CountUnits() const {
    const std::int64_t units = ::CountUnits(m_text, m_farnsworth);
    return static_cast<int>(std::clamp<std::int64_t>(units, INT32_MIN, INT32_MAX));
}

int CCodeWaveGen::BlocksPerDit(int wordsPerMinute) {
    const double blocks = static_cast<double>(DitSeconds(wordsPerMinute)) / kSecondsPerBlockDivisor;
    // A speed of 0 or below gives no positive dit: nothing is rendered, as with a dit shorter
    // than one block.
    if (!(blocks >= 1.0) || !std::isfinite(blocks)) {
        return 0;
    }
    return static_cast<int>(std::trunc(blocks));
}

std::int64_t CCodeWaveGen::EstimateBytes() const {
    const float units = static_cast<float>(CountUnits()) + 1.0f;
    const float bytes = units * DitSeconds(m_wordsPerMinute) * 16000.0f;
    if (!(bytes > 0.0f) || !std::isfinite(bytes)) {
        return 0;
    }
    return static_cast<std::int64_t>(bytes);
}

void CCodeWaveGen::Step() const {
    if (m_progress != nullptr) {
        m_progress->StepIt();
    }
}

template <class Sink>
void CCodeWaveGen::Emit(Sink& sink, char c, int blocksPerDit, bool step) const {
    const std::int64_t u = blocksPerDit;
    const std::int64_t factor = m_farnsworth;
    for (const char element : ::LookupPattern(c)) {
        if (element == '.') {
            if (u > 0) {
                sink.Tone(u);
            }
        } else if (element == '-') {
            if (3 * u > 0) {
                sink.Tone(3 * u);
            }
        } else if (element == ' ') {
            if (3 * u > 0) {
                sink.Silence(3 * u * kBlockBytes);
            }
            if (factor > 0 && factor * u > 0) {
                sink.Silence(factor * u * kBlockBytes);
            }
        }
        if (u > 0) {
            sink.Silence(u * kBlockBytes);
        }
    }
    if (2 * u > 0) {
        sink.Silence(2 * u * kBlockBytes);
    }
    if (step) {
        Step();
    }
    if (factor > 0 && factor * u > 0) {
        // One block for every whole i with i < F × u × 0.5.
        sink.Silence((factor * u + 1) / 2 * kBlockBytes);
    }
}

std::byte* CCodeWaveGen::RenderCharacter(std::byte* dest, char c, int blocksPerDit) {
    PointerSink sink{dest};
    Emit(sink, c, blocksPerDit, true);
    return sink.dest;
}

std::int64_t CCodeWaveGen::CharacterBytes(char c, int blocksPerDit) const {
    CountingSink sink;
    Emit(sink, c, blocksPerDit, false);
    return sink.bytes;
}

std::int64_t CCodeWaveGen::RenderedBytes() const {
    const int u = BlocksPerDit(m_wordsPerMinute);
    std::array<std::int64_t, 256> perCharacter{};
    for (int c = 0; c < 256; ++c) {
        perCharacter[static_cast<std::size_t>(c)] = CharacterBytes(static_cast<char>(c), u);
    }
    std::int64_t total = 0;
    for (const char c : m_text) {
        total += perCharacter[static_cast<unsigned char>(c)];
    }
    return total;
}

void CCodeWaveGen::GenerateFile() {
    m_lastError.clear();
    CNoDeviceGate noDevice;
    IRecordingGate& gate = m_gate != nullptr ? *m_gate : noDevice;

    RecordingFormat format;
    format.formatTag = m_formatTag;
    format.channels = m_channels;
    format.samplesPerSec = m_samplesPerSec;
    m_blockAlign = static_cast<std::uint16_t>((m_bitsPerSample >> 3) * m_channels);
    format.blockAlign = m_blockAlign;
    format.avgBytesPerSec = m_blockAlign * m_samplesPerSec;
    format.bitsPerSample = m_bitsPerSample;
    format.extraSize = 0;

    const unsigned opened = gate.Open(format);
    if (StopsGeneration(opened)) {
        m_lastError = "no recording device accepts the output format (device error " +
                      std::to_string(opened) + ")";
        return;
    }

    std::vector<std::byte> piece(kPieceBytes);
    const unsigned prepared = gate.PrepareHeader(piece.data(), piece.size());
    if (prepared != IRecordingGate::kNoError) {
        // The device stays open: the next generation opens it again, as it always has.
        m_lastError = "the recording device refused the buffer (device error " +
                      std::to_string(prepared) + ")";
        return;
    }
    gate.AddBuffer();

    const int u = BlocksPerDit(m_wordsPerMinute);
    const std::int64_t rendered = RenderedBytes();
    const std::int64_t dataBytes = std::min(rendered, kMaxDataBytes);
    const std::string path = m_folder + m_fileName;
    if (m_fileType != SoundFileType::kWave) {
        WriteEncoded(path, piece, rendered);
        if (m_notify != nullptr) {
            m_notify->PostMessage(kAppMessage + 1, 1, 1);
        }
        gate.UnprepareHeader();
        gate.Close();
        return;
    }

    errno = 0;
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) {
        m_lastError = "cannot create " + path + ": " + std::strerror(errno);
        // Nothing can be written, but the progress bar still runs through the text.
        for (std::size_t i = 0; i < m_text.size(); ++i) {
            Step();
        }
    } else {
        std::setvbuf(file, nullptr, _IONBF, 0);
        const auto header = Header(format, static_cast<std::uint32_t>(dataBytes));
        FileSink sink(file, piece, dataBytes);
        bool written = std::fwrite(header.data(), 1, header.size(), file) == header.size();
        int error = errno;
        for (const char c : m_text) {
            if (written && sink.Writing()) {
                Emit(sink, c, u, true);
            } else {
                Step();
            }
        }
        if (written && !sink.Finish()) {
            written = false;
            error = sink.Errno();
        }
        errno = 0;
        if (std::fclose(file) != 0 && written) {
            written = false;
            error = errno;
        }
        if (!written) {
            m_lastError = "cannot write " + path + ": " + std::strerror(error);
            // A cut file whose header claims more than it holds is no WAV file: it goes. Only a
            // regular file, never a device it was written to.
            std::error_code ignored;
            if (std::filesystem::is_regular_file(path, ignored)) {
                std::filesystem::remove(path, ignored);
            }
        } else if (rendered > dataBytes) {
            m_lastError =
                path + ": the text is longer than a WAV file can hold; the file ends " + "at 4 GB";
        }
    }

    if (m_notify != nullptr) {
        m_notify->PostMessage(kAppMessage + 1, 1, 1);
    }
    gate.UnprepareHeader();
    gate.Close();
}

void CCodeWaveGen::WriteEncoded(const std::string& path, std::vector<std::byte>& piece,
                                std::int64_t renderedBytes) {
    CSoundFileWriter writer;
    const bool opened =
        writer.Open(path, m_fileType, static_cast<int>(m_samplesPerSec), m_channels, m_quality);
    FileSink sink(writer, piece, renderedBytes);
    const int u = BlocksPerDit(m_wordsPerMinute);
    for (const char c : m_text) {
        if (opened && sink.Writing()) {
            Emit(sink, c, u, true);
        } else {
            Step();
        }
    }
    if (!opened || !sink.Finish() || !writer.Close()) {
        m_lastError = writer.Error();
    }
}
