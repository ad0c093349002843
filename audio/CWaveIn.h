// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/CWave.h"
#include "audio/CWaveBuffer.h"
#include "audio/CWaveDevice.h"
#include "audio/WaveAudio.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// Records from an input device into blocks, with two headers taking turns.
class CWaveIn {
public:
    CWaveIn();
    CWaveIn(const WaveFormat& format, const CWaveDevice& device);
    virtual ~CWaveIn();
    CWaveIn(const CWaveIn&) = delete;
    CWaveIn& operator=(const CWaveIn&) = delete;

    void SetWaveFormat(const WaveFormat& format);
    void SetDevice(const CWaveDevice& device) { m_device = device; }
    bool Open();
    /// Starts recording into blocks of bufferSize bytes; true when it has started.
    bool Record(std::uint32_t bufferSize = 4096);
    /// Stops and closes; true when nothing was open.
    bool Close();
    /// All recorded blocks joined, in order.
    CWave& GetWave();
    /// The text of the last result; empty after success.
    std::string GetError() const;
    /// Samples recorded so far, or -1 when closed or on failure.
    long GetPosition();
    bool IsRecording() const;
    std::uint32_t GetNumSamples() const;
    MmResult GetLastResult() const { return m_lastResult; }

private:
    static void Callback(WaveInHandle device, unsigned message, std::uintptr_t instance,
                         WaveHeader* header);
    void OnData(WaveHeader* header);
    bool AddHeader();
    void FreeHeaders();

    std::atomic<int> m_stop{1};
    WaveInHandle m_handle = nullptr;
    std::vector<std::unique_ptr<CWaveBuffer>> m_blocks;
    std::atomic<MmResult> m_lastResult{kMmNoError};
    std::atomic<int> m_current{0};
    std::uint32_t m_bufferSize = 0;
    WaveHeader m_headers[2];
    CWave m_wave;
    CWaveDevice m_device;
};
