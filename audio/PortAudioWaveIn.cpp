// SPDX-License-Identifier: GPL-3.0-or-later
// The input half of the waveform-audio layer over PortAudio: the real-time callback only copies
// into a ring; the device's own thread fills the caller's headers from it.
#include "audio/PortAudioDevice.h"

#include <deque>

using namespace portaudio_backend;

struct WaveInDevice final : DeviceCore {
    static constexpr bool kOutput = false;
    static constexpr unsigned kOpenedMessage = kWaveInOpened;
    static constexpr unsigned kClosedMessage = kWaveInClosed;
    static constexpr std::size_t kRingBytes = 1u << 20;

    WaveInProc m_callback = nullptr;
    std::atomic<bool> m_recording{false};
    std::atomic<std::uint64_t> m_recordedFrames{0};
    SpscRing<unsigned char, kRingBytes> m_ring;
    std::mutex m_headerLock;  // guards m_headers
    std::deque<WaveHeader*> m_headers;

    static int StreamCallback(const void* input, void*, unsigned long frames,
                              const PaStreamCallbackTimeInfo*, PaStreamCallbackFlags, void* user) {
        return static_cast<WaveInDevice*>(user)->Callback(input, frames);
    }

    void OnStreamStarted() {}

    int Callback(const void* input, unsigned long frames) {
        if (!EnterCallback()) {
            return paContinue;
        }
        if (input != nullptr && m_recording.load()) {
            // A full ring drops the rest of the period, whole frames only.
            const std::size_t pushed = PushWholeFrames(
                m_ring, static_cast<const unsigned char*>(input), frames, m_format.blockAlign);
            m_recordedFrames.fetch_add(pushed, std::memory_order_relaxed);
        }
        LeaveCallback();
        return paContinue;
    }

protected:
    Clock::duration Service(bool flush) override {
        std::vector<WaveHeader*> finished;
        {
            std::lock_guard lock(m_headerLock);
            unsigned char byte = 0;
            while (!m_headers.empty()) {
                WaveHeader* header = m_headers.front();
                std::uint32_t filled = header->bytesRecorded.load();
                while (filled < header->bufferLength && m_ring.Pop(byte)) {
                    header->data[filled++] = static_cast<char>(byte);
                }
                header->bytesRecorded = filled;
                if (filled < header->bufferLength && !flush) {
                    break;
                }
                m_headers.pop_front();
                finished.push_back(header);
            }
            if (flush) {
                while (m_ring.Pop(byte)) {
                }
            }
        }
        for (WaveHeader* header : finished) {
            WaveHeaderSignalDone(header);
            if (m_callback != nullptr) {
                m_callback(this, kWaveInData, m_instance, header);
            }
        }
        return m_recording.load() ? 5ms : kIdlePoll;
    }
    void OnDead() override { m_recording = false; }
};

unsigned WaveInGetNumDevs() {
    return CountDevices(false);
}

MmResult WaveInGetDevCaps(unsigned device, WaveInCaps* caps, unsigned size) {
    return GetDevCaps(device, caps, size, false);
}

MmResult WaveInOpen(WaveInHandle* device, unsigned deviceId, const WaveFormat* format,
                    WaveInProc callback, std::uintptr_t instance, unsigned flags) {
    return OpenDevice(device, deviceId, format, callback, instance, flags);
}

MmResult WaveInPrepareHeader(WaveInHandle device, WaveHeader* header, unsigned) {
    return PrepareHeader(device, header);
}

MmResult WaveInUnprepareHeader(WaveInHandle device, WaveHeader* header, unsigned) {
    return UnprepareHeader(device, header);
}

MmResult WaveInAddBuffer(WaveInHandle device, WaveHeader* header, unsigned) {
    if (device == nullptr) {
        return kMmInvalidHandle;
    }
    if (header == nullptr || header->data == nullptr) {
        return kMmInvalidParam;
    }
    const std::uint32_t flags = header->flags.load();
    if ((flags & kWaveHeaderPrepared) == 0) {
        return kWaveUnprepared;
    }
    if ((flags & kWaveHeaderInQueue) != 0) {
        return kWaveStillPlaying;
    }
    if (device->m_dead.load()) {
        return kMmNoDriver;
    }
    header->bytesRecorded = 0;
    header->flags = (flags & ~kWaveHeaderDone) | kWaveHeaderInQueue;
    std::lock_guard lock(device->m_headerLock);
    device->m_headers.push_back(header);
    return kMmNoError;
}

MmResult WaveInStart(WaveInHandle device) {
    if (device == nullptr) {
        return kMmInvalidHandle;
    }
    if (device->m_dead.load()) {
        return kMmNoDriver;
    }
    device->m_recording = true;
    device->Wake();
    return kMmNoError;
}

MmResult WaveInStop(WaveInHandle device) {
    if (device == nullptr) {
        return kMmInvalidHandle;
    }
    device->m_recording = false;
    return kMmNoError;
}

MmResult WaveInReset(WaveInHandle device) {
    if (device == nullptr) {
        return kMmInvalidHandle;
    }
    device->m_recording = false;
    device->FlushAndWait();
    device->m_recordedFrames = 0;
    return kMmNoError;
}

MmResult WaveInClose(WaveInHandle device) {
    if (device == nullptr) {
        return kMmInvalidHandle;
    }
    {
        std::lock_guard lock(device->m_headerLock);
        if (!device->m_headers.empty()) {
            return kWaveStillPlaying;
        }
    }
    device->m_recording = false;
    CloseDevice(device);
    return kMmNoError;
}

MmResult WaveInGetPosition(WaveInHandle device, std::uint32_t* samples) {
    if (device == nullptr) {
        return kMmInvalidHandle;
    }
    if (samples == nullptr) {
        return kMmInvalidParam;
    }
    *samples = static_cast<std::uint32_t>(device->m_recordedFrames.load());
    return kMmNoError;
}
