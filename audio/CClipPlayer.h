// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/WaveAudio.h"

#include <cstddef>
#include <vector>

/// Plays WAV images from memory without waiting for them; a new clip cuts off one still
/// playing. Keeps its output open between clips of the same format, so starting one is quick.
class CClipPlayer {
public:
    CClipPlayer() = default;
    virtual ~CClipPlayer();
    CClipPlayer(const CClipPlayer&) = delete;
    CClipPlayer& operator=(const CClipPlayer&) = delete;

    /// Starts the clip and returns; false when it is no PCM WAV image or no output opens.
    bool Play(const void* image, std::size_t size);
    /// Cuts off what is playing.
    void Stop();
    bool IsPlaying() const;
    /// Cuts off what is playing and lets the output go; the next clip opens it again.
    void Close();

private:
    WaveOutHandle m_handle = nullptr;
    WaveFormat m_format;
    WaveHeader m_header;
    std::vector<char> m_samples;
};
