// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/CWave.h"
#include "audio/CWaveDevice.h"
#include "audio/WaveAudio.h"

#include <atomic>
#include <cstdint>
#include <string>

/// Plays a wave in chunks of up to 4096 bytes through three headers taking turns.
class CWaveOut {
public:
    static constexpr std::uint32_t kEndOfWave = 0xFFFFFFFFu;

    CWaveOut();
    CWaveOut(const CWave& wave, const CWaveDevice& device);
    virtual ~CWaveOut();
    CWaveOut(const CWaveOut&) = delete;
    CWaveOut& operator=(const CWaveOut&) = delete;

    void SetWave(const CWave& wave) { m_wave = wave; }
    void SetDevice(const CWaveDevice& device) { m_device = device; }
    bool Open();
    /// Plays samples first (kEndOfWave for the start) to last (kEndOfWave for the end).
    bool Play(std::uint32_t first = kEndOfWave, std::uint32_t last = kEndOfWave);
    /// Plays the range as one buffer, loops times.
    bool PlayLooped(std::uint32_t first, std::uint32_t last, std::uint32_t loops);
    bool Stop();
    bool Restart();
    bool Close();
    long GetPosition();
    std::string GetError() const;
    bool IsPlaying() const;
    MmResult GetLastResult() const { return m_lastResult; }

private:
    static void Callback(WaveOutHandle device, unsigned message, std::uintptr_t instance,
                         WaveHeader* header);
    void SetRange(std::uint32_t first, std::uint32_t last);
    bool WriteNextChunk();

    std::atomic<std::uint32_t> m_end{0};
    std::atomic<std::uint32_t> m_current{0};
    std::uint32_t m_chunkSize = 4096;
    WaveOutHandle m_handle = nullptr;
    std::atomic<MmResult> m_lastResult{kMmNoError};
    std::atomic<int> m_header{0};
    WaveHeader m_headers[3];
    CWave m_wave;
    CWaveDevice m_device;
};
