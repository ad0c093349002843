// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <array>
#include <mutex>
#include <vector>

#include "audio/WaveAudio.h"
#include "sound/IPcmOutput.h"

/// The buffer player's output over the audio layer's wave output: a few short headers kept in
/// rotation, each refilled from the player when the device is done with it.
class CWaveOutPcmOutput final : public IPcmOutput {
public:
    CWaveOutPcmOutput() = default;
    ~CWaveOutPcmOutput() override;
    CWaveOutPcmOutput(const CWaveOutPcmOutput&) = delete;
    CWaveOutPcmOutput& operator=(const CWaveOutPcmOutput&) = delete;

    long Open() override;
    long Start(const PcmFormat& format, Fill fill, Lost lost) override;
    void Stop() override;

private:
    static constexpr std::size_t kHeaders = 4;
    static constexpr unsigned kHeaderSize = 32;

    static void Callback(WaveOutHandle device, unsigned message, std::uintptr_t instance,
                         WaveHeader* header);
    void Refill(WaveHeader* header);

    std::mutex m_mutex;  ///< guards the fill function against a concurrent Stop
    bool m_running = false;
    Fill m_fill;
    Lost m_lost;
    WaveOutHandle m_device = nullptr;
    std::array<WaveHeader, kHeaders> m_headers;
    std::array<std::vector<char>, kHeaders> m_data;
};
