// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The waveform-audio layer: devices by index or the mapper, PCM formats, headers with a done
// flag, completion callbacks on a thread of the layer. The sound classes are written against
// these functions; the platform sits behind them in the backend files (PortAudio*.cpp).

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

/// Result of every device call; 0 is success.
using MmResult = std::uint32_t;

constexpr MmResult kMmNoError = 0;
constexpr MmResult kMmError = 1;
constexpr MmResult kMmBadDeviceId = 2;
constexpr MmResult kMmNotEnabled = 3;
constexpr MmResult kMmAllocated = 4;
constexpr MmResult kMmInvalidHandle = 5;
constexpr MmResult kMmNoDriver = 6;
constexpr MmResult kMmNoMemory = 7;
constexpr MmResult kMmNotSupported = 8;
constexpr MmResult kMmInvalidFlag = 10;
constexpr MmResult kMmInvalidParam = 11;
constexpr MmResult kWaveBadFormat = 32;
constexpr MmResult kWaveStillPlaying = 33;
constexpr MmResult kWaveUnprepared = 34;

/// The device a caller gets when it names none: the default output or input.
constexpr unsigned kWaveMapper = 0xFFFFFFFFu;

constexpr std::uint16_t kWaveFormatPcm = 1;

/// A PCM format: 8-bit unsigned or 16-bit signed samples, interleaved channels.
struct WaveFormat {
    std::uint16_t formatTag = kWaveFormatPcm;
    std::uint16_t channels = 0;
    std::uint32_t samplesPerSec = 0;
    std::uint32_t avgBytesPerSec = 0;
    std::uint16_t blockAlign = 0;
    std::uint16_t bitsPerSample = 0;
    std::uint16_t cbSize = 0;
};

// Header flags.
constexpr std::uint32_t kWaveHeaderDone = 0x01;
constexpr std::uint32_t kWaveHeaderPrepared = 0x02;
constexpr std::uint32_t kWaveHeaderBeginLoop = 0x04;
constexpr std::uint32_t kWaveHeaderEndLoop = 0x08;
constexpr std::uint32_t kWaveHeaderInQueue = 0x10;

/// One buffer handed to a device. The layer sets kWaveHeaderDone (and bytesRecorded for input)
/// when it is finished with it; the flags may be polled from any thread.
struct WaveHeader {
    char* data = nullptr;
    std::uint32_t bufferLength = 0;
    std::atomic<std::uint32_t> bytesRecorded{0};
    std::uintptr_t user = 0;
    std::atomic<std::uint32_t> flags{0};
    std::uint32_t loops = 0;
    /// When the caller decided to play this buffer (steady clock, ns), if it prepared the
    /// samples first; 0 means at the write. Keyed tones start that long after the decision,
    /// however long the synthesis took.
    std::int64_t requestedNs = 0;

    WaveHeader() = default;
    WaveHeader(const WaveHeader&) = delete;
    WaveHeader& operator=(const WaveHeader&) = delete;
    /// Zeroes every field, as the devices expect of a fresh header.
    void Clear() {
        data = nullptr;
        bufferLength = 0;
        bytesRecorded = 0;
        user = 0;
        flags = 0;
        loops = 0;
        requestedNs = 0;
    }
};

constexpr std::size_t kWaveNameLength = 32;

struct WaveOutCaps {
    std::uint16_t manufacturerId = 0;
    std::uint16_t productId = 0;
    std::uint32_t driverVersion = 0;
    char productName[kWaveNameLength] = {};
    std::uint32_t formats = 0;
    std::uint16_t channels = 0;
    std::uint16_t reserved = 0;
    std::uint32_t support = 0;
};

struct WaveInCaps {
    std::uint16_t manufacturerId = 0;
    std::uint16_t productId = 0;
    std::uint32_t driverVersion = 0;
    char productName[kWaveNameLength] = {};
    std::uint32_t formats = 0;
    std::uint16_t channels = 0;
    std::uint16_t reserved = 0;
};

// Messages to a device callback.
constexpr unsigned kWaveOutOpened = 0x3BB;
constexpr unsigned kWaveOutClosed = 0x3BC;
constexpr unsigned kWaveOutDone = 0x3BD;
constexpr unsigned kWaveInOpened = 0x3BE;
constexpr unsigned kWaveInClosed = 0x3BF;
constexpr unsigned kWaveInData = 0x3C0;

// Open flags.
constexpr unsigned kWaveCallbackNull = 0x00000;
constexpr unsigned kWaveCallbackFunction = 0x30000;
constexpr unsigned kWaveFormatQuery = 0x0001;

struct WaveOutDevice;
struct WaveInDevice;
using WaveOutHandle = WaveOutDevice*;
using WaveInHandle = WaveInDevice*;

/// Called on the layer's own thread (never the platform's real-time thread) with one of the
/// messages above; header is set for kWaveOutDone and kWaveInData. It may call the layer again
/// (write or add the next buffer) but must not close its own device.
using WaveOutProc = void (*)(WaveOutHandle device, unsigned message, std::uintptr_t instance,
                             WaveHeader* header);
using WaveInProc = void (*)(WaveInHandle device, unsigned message, std::uintptr_t instance,
                            WaveHeader* header);

unsigned WaveOutGetNumDevs();
MmResult WaveOutGetDevCaps(unsigned device, WaveOutCaps* caps, unsigned size);
/// Opens an output (or, with kWaveFormatQuery, only checks that it could be opened). The stream
/// runs from here to the close and plays silence whenever nothing is queued.
MmResult WaveOutOpen(WaveOutHandle* device, unsigned deviceId, const WaveFormat* format,
                     WaveOutProc callback, std::uintptr_t instance, unsigned flags);
MmResult WaveOutPrepareHeader(WaveOutHandle device, WaveHeader* header, unsigned size);
MmResult WaveOutUnprepareHeader(WaveOutHandle device, WaveHeader* header, unsigned size);
/// Queues a prepared header; it is done when its last sample has been played.
MmResult WaveOutWrite(WaveOutHandle device, WaveHeader* header, unsigned size);
MmResult WaveOutPause(WaveOutHandle device);
MmResult WaveOutRestart(WaveOutHandle device);
/// Returns every queued header as done and sets the position back to 0.
MmResult WaveOutReset(WaveOutHandle device);
/// Fails with kWaveStillPlaying while headers are queued.
MmResult WaveOutClose(WaveOutHandle device);
/// Samples played since the open or the last reset.
MmResult WaveOutGetPosition(WaveOutHandle device, std::uint32_t* samples);

unsigned WaveInGetNumDevs();
MmResult WaveInGetDevCaps(unsigned device, WaveInCaps* caps, unsigned size);
MmResult WaveInOpen(WaveInHandle* device, unsigned deviceId, const WaveFormat* format,
                    WaveInProc callback, std::uintptr_t instance, unsigned flags);
MmResult WaveInPrepareHeader(WaveInHandle device, WaveHeader* header, unsigned size);
MmResult WaveInUnprepareHeader(WaveInHandle device, WaveHeader* header, unsigned size);
MmResult WaveInAddBuffer(WaveInHandle device, WaveHeader* header, unsigned size);
MmResult WaveInStart(WaveInHandle device);
MmResult WaveInStop(WaveInHandle device);
/// Stops recording and returns every header, the partly filled one with what it holds.
MmResult WaveInReset(WaveInHandle device);
MmResult WaveInClose(WaveInHandle device);
MmResult WaveInGetPosition(WaveInHandle device, std::uint32_t* samples);

/// The text for a result, or an empty string for success and unknown codes.
std::string WaveGetErrorText(MmResult result);
/// The text copied into a caller's buffer of length characters; kMmBadDeviceId (as the
/// devices answered) for an unknown code, kMmInvalidParam for no buffer.
MmResult WaveOutGetErrorText(MmResult result, char* text, unsigned length);
MmResult WaveInGetErrorText(MmResult result, char* text, unsigned length);

/// Waits until the header is done or the time is up; true when it is done. A poll that wakes
/// the moment the flag is set, so a caller's next write is not late by its poll interval.
bool WaveHeaderWaitDone(const WaveHeader* header, std::uint32_t microseconds);
/// For backends: marks the header done (and no longer queued) and wakes its waiters.
void WaveHeaderSignalDone(WaveHeader* header);

/// The steady clock in nanoseconds, as requestedNs and the layer use it.
std::int64_t WaveClockNs();

/// The checks every backend applies before it asks the platform: PCM, 1 to 8 channels, 8 or 16
/// bits, 1000 to 384000 samples per second, consistent block align and byte rate.
bool IsOpenableWaveFormat(const WaveFormat& format);
