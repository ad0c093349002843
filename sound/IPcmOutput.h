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
/// thread whenever it wants more bytes, until stopped, or calls lost once, from the same thread,
/// when the device has gone (unplugged, its server ended) and will pull no more. The player keeps
/// its buffer, play cursor and notifications in standard C++ and needs only this from the audio
/// layer.
class IPcmOutput {
public:
    using Fill = std::function<void(std::byte* out, std::size_t bytes)>;
    using Lost = std::function<void()>;

    virtual ~IPcmOutput() = default;
    /// Opens the default output; 0 on success, else a player result code.
    virtual long Open() = 0;
    /// Starts pulling in the format; 0 on success, else a player result code.
    virtual long Start(const PcmFormat& format, Fill fill, Lost lost) = 0;
    /// Stops pulling; neither fill nor lost is called any more once this returns.
    virtual void Stop() = 0;
};
