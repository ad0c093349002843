// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/WaveAudio.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <cstring>

namespace {

struct ResultText {
    MmResult result;
    const char* text;
};

// One table for input and output; the texts say what a user can act on.
constexpr ResultText kResultTexts[] = {
    {kMmError, "An unspecified error occurred in the sound system."},
    {kMmBadDeviceId, "The sound device number is out of range."},
    {kMmNotEnabled, "The sound driver failed to enable."},
    {kMmAllocated, "The sound device is already in use by another program."},
    {kMmInvalidHandle, "The sound device handle is not valid."},
    {kMmNoDriver, "There is no sound device or sound server available."},
    {kMmNoMemory, "Not enough memory for the sound device."},
    {kMmNotSupported, "The sound device does not support this function."},
    {kMmInvalidFlag, "An invalid flag was passed to the sound device."},
    {kMmInvalidParam, "An invalid parameter was passed to the sound device."},
    {kWaveBadFormat, "The sound device cannot play or record this wave format."},
    {kWaveStillPlaying, "The sound device is still playing or recording buffers."},
    {kWaveUnprepared, "The wave header was not prepared."},
};

std::mutex g_doneLock;
std::condition_variable g_doneSignal;

MmResult CopyErrorText(MmResult result, char* text, unsigned length) {
    if (text == nullptr || length == 0) {
        return kMmInvalidParam;
    }
    const std::string message = WaveGetErrorText(result);
    if (message.empty() && result != kMmNoError) {
        text[0] = '\0';
        return kMmBadDeviceId;
    }
    const std::size_t count = std::min<std::size_t>(message.size(), length - 1);
    std::memcpy(text, message.data(), count);
    text[count] = '\0';
    return kMmNoError;
}

} // namespace

std::string WaveGetErrorText(MmResult result) {
    for (const ResultText& entry : kResultTexts) {
        if (entry.result == result) {
            return entry.text;
        }
    }
    return {};
}

MmResult WaveOutGetErrorText(MmResult result, char* text, unsigned length) {
    return CopyErrorText(result, text, length);
}

MmResult WaveInGetErrorText(MmResult result, char* text, unsigned length) {
    return CopyErrorText(result, text, length);
}

bool IsOpenableWaveFormat(const WaveFormat& format) {
    constexpr std::uint32_t kLowestRate = 1000;
    constexpr std::uint32_t kHighestRate = 384000;
    constexpr std::uint16_t kMostChannels = 8;
    if (format.formatTag != kWaveFormatPcm) {
        return false;
    }
    if (format.bitsPerSample != 8 && format.bitsPerSample != 16) {
        return false;
    }
    if (format.channels < 1 || format.channels > kMostChannels) {
        return false;
    }
    if (format.samplesPerSec < kLowestRate || format.samplesPerSec > kHighestRate) {
        return false;
    }
    const unsigned blockAlign = format.channels * format.bitsPerSample / 8u;
    return format.blockAlign == blockAlign &&
           format.avgBytesPerSec == blockAlign * format.samplesPerSec;
}

bool WaveHeaderWaitDone(const WaveHeader* header, std::uint32_t microseconds) {
    std::unique_lock lock(g_doneLock);
    return g_doneSignal.wait_for(lock, std::chrono::microseconds(microseconds), [header] {
        return (header->flags.load() & kWaveHeaderDone) != 0;
    });
}

void WaveHeaderSignalDone(WaveHeader* header) {
    {
        std::lock_guard lock(g_doneLock);
        header->flags = (header->flags.load() & ~kWaveHeaderInQueue) | kWaveHeaderDone;
    }
    g_doneSignal.notify_all();
}
