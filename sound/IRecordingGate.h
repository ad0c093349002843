// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

/// The PCM format of a generated file, in the field order of the format chunk written to disk.
struct RecordingFormat {
    std::uint16_t formatTag = 1;
    std::uint16_t channels = 1;
    std::uint32_t samplesPerSec = 11025;
    std::uint32_t avgBytesPerSec = 22050;
    std::uint16_t blockAlign = 2;
    std::uint16_t bitsPerSample = 16;
    std::uint16_t extraSize = 0;
};

/// File generation only goes ahead on a machine whose default recording input accepts the
/// output format, and it prepares its render buffer as an input buffer of that device (the
/// device is never started). This gate is that check: the application implements it over the
/// audio layer's wave input, the command-line tool with a gate that needs no device.
/// Every operation returns the device layer's result code, 0 for success.
class IRecordingGate {
public:
    static constexpr unsigned kNoError = 0;
    static constexpr unsigned kBadDeviceId = 2;
    static constexpr unsigned kAllocated = 4;
    static constexpr unsigned kInvalidHandle = 5;
    static constexpr unsigned kNoDriver = 6;
    static constexpr unsigned kNoMem = 7;
    static constexpr unsigned kBadFormat = 32;

    virtual ~IRecordingGate() = default;

    /// Opens the default input device with the format, without a callback and without starting it.
    virtual unsigned Open(const RecordingFormat& format) = 0;
    /// Prepares the buffer as an input buffer of the open device.
    virtual unsigned PrepareHeader(std::byte* data, std::size_t size) = 0;
    /// Queues the prepared buffer on the device.
    virtual unsigned AddBuffer() = 0;
    /// Releases the prepared buffer.
    virtual unsigned UnprepareHeader() = 0;
    /// Closes the device.
    virtual unsigned Close() = 0;
};
