// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "audio/CPomelPCM.h"
#include "audio/WaveAudio.h"

#include <atomic>
#include <future>
#include <mutex>
#include <optional>
#include <thread>

/// A tone player that queues instead of blocking: ten one-second slots, short tones packed into
/// one slot until it holds more than 0.1 s, a playback thread that writes ready slots, and the
/// device's done callback that frees them. Only one may exist at a time.
class CPomelAsyncPlay {
public:
    static constexpr int kSlots = 10;

    CPomelAsyncPlay();
    virtual ~CPomelAsyncPlay();
    CPomelAsyncPlay(const CPomelAsyncPlay&) = delete;
    CPomelAsyncPlay& operator=(const CPomelAsyncPlay&) = delete;

    /// 1 when the tone was taken, 0 when the caller must try again or the device is unusable.
    int AddTone(int frequency, double duration);
    /// Stops the thread, waiting up to 60 s; 1 when there is none or it ended in time.
    int StopThread();
    /// The same, answering the wait's own result: 0 ended, 258 timed out.
    unsigned StopThreadWait();
    void ClearStop() { m_stop = 0; }
    int QueuedCount();
    int FirstFreeSlot();
    /// Frees every queued slot that holds this header (what the done callback does).
    void ReleaseSlot(const WaveHeader* header);

    bool IsOpen() const { return m_open.load() != 0; }
    MmResult GetLastResult() const { return m_lastResult; }
    int GetCurrentSlot();
    int GetSlotState(int slot) const;
    double GetSlotDuration(int slot);

private:
    static void DeviceCallback(WaveOutHandle device, unsigned message, std::uintptr_t instance,
                               WaveHeader* header);
    void PlaybackThread();
    void Submit(CPomelPCM& slot);

    std::atomic<int> m_open{0};
    int m_sampleRate = 44100;
    WaveFormat m_format;
    WaveOutHandle m_device = nullptr;
    MmResult m_lastResult = kMmNoError;
    CPomelPCM* m_slots = nullptr;
    int m_currentSlot = -1;
    std::optional<std::thread> m_thread;
    std::future<void> m_threadEnded;
    std::mutex m_lock;
    std::atomic<int> m_stop{0};

    static std::atomic<CPomelAsyncPlay*> s_instance;
};
