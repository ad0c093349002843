// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/WaveAudio.h"
#include "sound/IRecordingGate.h"

/// The application's recording gate: the default wave input of the audio layer, opened with the
/// output format and never started, with the render buffer prepared and queued on it.
class CWaveInGate final : public IRecordingGate {
public:
    CWaveInGate() = default;
    /// Closes a device that a refused buffer left open.
    ~CWaveInGate() override;
    CWaveInGate(const CWaveInGate&) = delete;
    CWaveInGate& operator=(const CWaveInGate&) = delete;

    unsigned Open(const RecordingFormat& format) override;
    unsigned PrepareHeader(std::byte* data, std::size_t size) override;
    unsigned AddBuffer() override;
    unsigned UnprepareHeader() override;
    unsigned Close() override;

    bool IsOpen() const { return m_device != nullptr; }

private:
    static constexpr unsigned kHeaderSize = 32;

    WaveInHandle m_device = nullptr;
    WaveHeader m_header;
};
