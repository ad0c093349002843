// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

/// PCM layout of a player buffer.
struct PcmFormat {
    std::uint16_t channels = 1;
    std::uint32_t samplesPerSec = 11025;
    std::uint16_t bitsPerSample = 16;
    std::uint16_t blockAlign = 2;
};

/// A default output device that pulls its samples: once started it calls fill from its own
/// thread whenever it wants more bytes, until stopped. The player keeps its buffer, play cursor
/// and notifications in standard C++ and needs only this from the audio layer.
class IPcmOutput {
public:
    using Fill = std::function<void(std::byte* out, std::size_t bytes)>;

    virtual ~IPcmOutput() = default;
    /// Opens the default output; 0 on success, else a player result code.
    virtual long Open() = 0;
    /// Starts pulling in the format; 0 on success, else a player result code.
    virtual long Start(const PcmFormat& format, Fill fill) = 0;
    /// Stops pulling; fill is not called any more once this returns.
    virtual void Stop() = 0;
};
