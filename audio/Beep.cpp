// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/Beep.h"

#include "audio/WaveAudio.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <cstdint>
#include <vector>

namespace {

constexpr std::uint32_t kLowestFrequency = 37;
constexpr std::uint32_t kHighestFrequency = 32767;
constexpr std::uint32_t kRate = 48000;
constexpr std::uint32_t kChunkSamples = kRate / 10;
constexpr double kAmplitude = 16000.0;
/// A chunk that is not done this long after it should have been means the output is gone.
constexpr std::uint32_t kChunkWaitMicroseconds = (100 + 1000) * 1000;

} // namespace

bool Beep(std::uint32_t frequency, std::uint32_t milliseconds) {
    if (frequency < kLowestFrequency || frequency > kHighestFrequency) {
        return false;
    }
    WaveFormat format{kWaveFormatPcm, 1, kRate, kRate * 2, 2, 16, 0};
    WaveOutHandle output = nullptr;
    if (WaveOutOpen(&output, kWaveMapper, &format, nullptr, 0, kWaveCallbackNull) != kMmNoError) {
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
        WaveOutUnprepareHeader(output, &header, sizeof header);
        const auto count = static_cast<std::uint32_t>(std::min<std::uint64_t>(kChunkSamples, total - written));
        for (std::uint32_t i = 0; i < count; ++i) {
            chunks[turn][i] = static_cast<std::int16_t>(
                kAmplitude * std::sin(step * static_cast<double>((written + i) % kRate)));
        }
        header.Clear();
        header.data = reinterpret_cast<char*>(chunks[turn].data());
        header.bufferLength = count * 2;
        ok = WaveOutPrepareHeader(output, &header, sizeof header) == kMmNoError &&
             WaveOutWrite(output, &header, sizeof header) == kMmNoError;
        written += count;
    }
    for (WaveHeader& header : headers) {
        if ((header.flags.load() & kWaveHeaderInQueue) != 0 &&
            !WaveHeaderWaitDone(&header, kChunkWaitMicroseconds)) {
            ok = false;
        }
    }
    WaveOutReset(output);
    WaveOutClose(output);
    return ok;
}
