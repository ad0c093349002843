// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/WaveAudio.h"

#include <atomic>
#include <cstdint>

/// One slot of the queued player: a second of 8-bit samples at 44100 Hz and its header.
class CPomelPCM {
public:
    static constexpr int kFree = 0;
    static constexpr int kReady = 1;
    static constexpr int kQueued = 2;
    static constexpr std::uint32_t kBufferBytes = 44100;

    CPomelPCM();
    virtual ~CPomelPCM();
    CPomelPCM(const CPomelPCM&) = delete;
    CPomelPCM& operator=(const CPomelPCM&) = delete;

    /// Replaces the buffer by size zeroed bytes; 1 on success.
    int Allocate(std::uint32_t size);
    /// Writes the slot's tone from the start of the buffer and marks it queued.
    int FillTone();

    /// Writes trunc(duration x 44100) cosine samples (phase step 6.2832 / 44100 x frequency).
    static void WriteTone(unsigned char* samples, std::uint32_t count, int frequency);

    WaveHeader m_header;
    std::atomic<int> m_state{kFree};
    int m_frequency = 0;
    double m_duration = 0.0;
    int m_index = -1;
    unsigned char* m_buffer = nullptr;
    std::uint32_t m_bufferSize = 0;
};
