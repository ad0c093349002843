// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "audio/WaveAudio.h"

/// Blocking sine tones on the default output. The output may be opened ahead of the tones, so
/// that a tone starts without the wait for a fresh output; otherwise each tone opens its own.
class CBeeper {
public:
    CBeeper() = default;
    ~CBeeper();
    CBeeper(const CBeeper&) = delete;
    CBeeper& operator=(const CBeeper&) = delete;

    /// Opens the output for the tones to come; false when none opens.
    bool Open();
    void Close();
    bool IsOpen() const { return m_output != nullptr; }

    /// Sounds a tone of frequency Hz (37 to 32767) for milliseconds and returns when it has been
    /// heard; false for a frequency out of range or no output. An output that fails meanwhile
    /// is closed, and the next tone opens a fresh one.
    bool Beep(std::uint32_t frequency, std::uint32_t milliseconds);

private:
    WaveOutHandle m_output = nullptr;
};
