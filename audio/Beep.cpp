// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/Beep.h"

#include "audio/WaveAudio.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <vector>

namespace {

constexpr std::uint32_t kLowestFrequency = 37;
constexpr std::uint32_t kHighestFrequency = 32767;
constexpr std::uint32_t kRate = 48000;
constexpr std::uint32_t kChunkSamples = kRate / 10;
constexpr double kAmplitude = 16000.0;
/// A chunk that is not done this long after it should have been means the output is gone.
constexpr std::uint32_t kChunkWaitMicroseconds = (100 + 1000) * 1000;

}  // namespace

CBeeper::~CBeeper() {
    Close();
}

bool CBeeper::Open() {
    if (m_output == nullptr) {
        WaveFormat format{kWaveFormatPcm, 1, kRate, kRate * 2, 2, 16, 0};
        if (WaveOutOpen(&m_output, kWaveMapper, &format, nullptr, 0, kWaveCallbackNull) !=
            kMmNoError) {
            m_output = nullptr;
        }
    }
    return m_output != nullptr;
}

void CBeeper::Close() {
    if (m_output != nullptr) {
        WaveOutClose(m_output);
        m_output = nullptr;
    }
}

bool CBeeper::Beep(std::uint32_t frequency, std::uint32_t milliseconds) {
    if (frequency < kLowestFrequency || frequency > kHighestFrequency || !Open()) {
        return false;
    }
    // Long tones go out in chunks through two headers taking turns, never all at once.
    const std::uint64_t total = std::uint64_t{milliseconds} * kRate / 1000;
    std::vector<std::int16_t> chunks[2] = {std::vector<std::int16_t>(kChunkSamples),
                                           std::vector<std::int16_t>(kChunkSamples)};
    WaveHeader headers[2];
    const double step = 2.0 * std::numbers::pi * frequency / kRate;
    std::uint64_t written = 0;
    bool ok = true;
    for (int turn = 0; written < total && ok; turn ^= 1) {
        WaveHeader& header = headers[turn];
        if ((header.flags.load() & kWaveHeaderInQueue) != 0 &&
            !WaveHeaderWaitDone(&header, kChunkWaitMicroseconds)) {
            ok = false;
            break;
        }
        WaveOutUnprepareHeader(m_output, &header, sizeof header);
        const auto count =
            static_cast<std::uint32_t>(std::min<std::uint64_t>(kChunkSamples, total - written));
        for (std::uint32_t i = 0; i < count; ++i) {
            chunks[turn][i] = static_cast<std::int16_t>(
                kAmplitude * std::sin(step * static_cast<double>((written + i) % kRate)));
        }
        header.Clear();
        header.data = reinterpret_cast<char*>(chunks[turn].data());
        header.bufferLength = count * 2;
        ok = WaveOutPrepareHeader(m_output, &header, sizeof header) == kMmNoError &&
             WaveOutWrite(m_output, &header, sizeof header) == kMmNoError;
        written += count;
    }
    for (WaveHeader& header : headers) {
        if ((header.flags.load() & kWaveHeaderInQueue) != 0 &&
            !WaveHeaderWaitDone(&header, kChunkWaitMicroseconds)) {
            ok = false;
        }
    }
    if (!ok) {
        WaveOutReset(m_output);
        Close();
        return false;
    }
    // The output stays open for the next tone; the headers go with this call.
    for (WaveHeader& header : headers) {
        WaveOutUnprepareHeader(m_output, &header, sizeof header);
    }
    return true;
}
