// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/CWaveOutPcmOutput.h"

#include <utility>

#include "sound/Player.h"

namespace {

// Each header holds about 10 ms, so the play cursor and notifications move in small steps.
constexpr std::uint32_t kHeaderDivisor = 100;

}  // namespace

CWaveOutPcmOutput::~CWaveOutPcmOutput() {
    Stop();
}

long CWaveOutPcmOutput::Open() {
    return WaveOutGetNumDevs() == 0 ? Player::kErrNoDriver : Player::kOk;
}

long CWaveOutPcmOutput::Start(const PcmFormat& format, Fill fill, Lost lost) {
    Stop();
    WaveFormat wave;
    wave.channels = format.channels;
    wave.samplesPerSec = format.samplesPerSec;
    wave.bitsPerSample = format.bitsPerSample;
    wave.blockAlign = format.blockAlign;
    wave.avgBytesPerSec = format.blockAlign * format.samplesPerSec;
    WaveOutHandle device = nullptr;
    const MmResult opened =
        WaveOutOpen(&device, kWaveMapper, &wave, &Callback, reinterpret_cast<std::uintptr_t>(this),
                    kWaveCallbackFunction);
    if (opened == kWaveBadFormat) {
        return 0x88780064;  // the format is not supported
    }
    if (opened != kMmNoError) {
        return Player::kErrNoDriver;
    }
    const std::uint32_t align = format.blockAlign == 0 ? 1 : format.blockAlign;
    const std::uint32_t bytes =
        std::max<std::uint32_t>(align, wave.avgBytesPerSec / kHeaderDivisor / align * align);
    {
        std::lock_guard lock(m_mutex);
        m_device = device;
        m_fill = std::move(fill);
        m_lost = std::move(lost);
        m_running = true;
    }
    for (std::size_t i = 0; i < kHeaders; ++i) {
        m_data[i].assign(bytes, 0);
        m_headers[i].Clear();
        m_headers[i].data = m_data[i].data();
        m_headers[i].bufferLength = bytes;
        WaveOutPrepareHeader(device, &m_headers[i], kHeaderSize);
    }
    for (std::size_t i = 0; i < kHeaders; ++i) {
        Refill(&m_headers[i]);
    }
    return Player::kOk;
}

void CWaveOutPcmOutput::Stop() {
    WaveOutHandle device = nullptr;
    {
        std::lock_guard lock(m_mutex);
        if (!m_running) {
            return;
        }
        m_running = false;
        device = m_device;
    }
    WaveOutReset(device);
    for (WaveHeader& header : m_headers) {
        WaveOutUnprepareHeader(device, &header, kHeaderSize);
    }
    WaveOutClose(device);
    std::lock_guard lock(m_mutex);
    m_device = nullptr;
    m_fill = nullptr;
    m_lost = nullptr;
}

void CWaveOutPcmOutput::Callback(WaveOutHandle, unsigned message, std::uintptr_t instance,
                                 WaveHeader* header) {
    if (message == kWaveOutDone && instance != 0 && header != nullptr) {
        reinterpret_cast<CWaveOutPcmOutput*>(instance)->Refill(header);
    }
}

void CWaveOutPcmOutput::Refill(WaveHeader* header) {
    std::lock_guard lock(m_mutex);
    if (!m_running || !m_fill) {
        return;
    }
    m_fill(reinterpret_cast<std::byte*>(header->data), header->bufferLength);
    if (WaveOutWrite(m_device, header, kHeaderSize) != kMmNoError && m_lost) {
        // The device is gone and will not ask again: told once.
        const Lost lost = std::exchange(m_lost, nullptr);
        lost();
    }
}
