// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/CPomelAsyncPlay.h"

#include "model/BeginThread.h"

#include <chrono>
#include <new>

namespace {

constexpr std::uintptr_t kCallbackInstance = 0x12345;
constexpr double kLongestTone = 1.0;
constexpr double kSlotFull = 0.1;
constexpr auto kStopWait = std::chrono::milliseconds(60000);
constexpr auto kIdleSleep = std::chrono::milliseconds(500);
constexpr auto kPoll = std::chrono::milliseconds(1);
constexpr unsigned kWaitEnded = 0;
constexpr unsigned kWaitTimedOut = 258;

}  // namespace

std::atomic<CPomelAsyncPlay*> CPomelAsyncPlay::s_instance{nullptr};

CPomelAsyncPlay::CPomelAsyncPlay() {
    s_instance = this;
    m_open = 0;
    m_stop = 0;
    m_slots = new (std::nothrow) CPomelPCM[kSlots];
    if (m_slots == nullptr) {
        return;
    }
    m_currentSlot = -1;
    auto ended = std::make_shared<std::promise<void>>();
    m_threadEnded = ended->get_future();
    m_thread = BeginThread([this, ended] {
        PlaybackThread();
        ended->set_value();
    });
    if (!m_thread) {
        return;
    }
    m_format = WaveFormat{kWaveFormatPcm, 1, 44100, 44100, 1, 8, 0};
    std::lock_guard guard(m_lock);
    m_lastResult = WaveOutOpen(&m_device, kWaveMapper, &m_format, &DeviceCallback,
                               kCallbackInstance, kWaveCallbackFunction);
    if (m_lastResult == kMmNoError) {
        m_open = 1;
    } else {
        m_device = nullptr;
    }
}

CPomelAsyncPlay::~CPomelAsyncPlay() {
    if (m_thread && StopThread() == 0 && m_device != nullptr) {
        // Still waiting for slots after its wait: the device gives them all back now, and the
        // thread ends; a thread left running would end the program.
        WaveOutReset(m_device);
    }
    if (m_thread && m_thread->joinable()) {
        m_thread->join();
    }
    if (m_device != nullptr) {
        WaveOutReset(m_device);
        WaveOutClose(m_device);
    }
    delete[] m_slots;
    CPomelAsyncPlay* self = this;
    s_instance.compare_exchange_strong(self, nullptr);
}

int CPomelAsyncPlay::AddTone(int frequency, double duration) {
    if (m_open.load() == 0) {
        return 0;
    }
    if (!(duration >= 0.0)) {
        return 0;  // no tone has a negative (or no) length
    }
    std::unique_lock guard(m_lock);
    if (m_currentSlot != -1) {
        CPomelPCM& slot = m_slots[m_currentSlot];
        if (slot.m_duration + duration <= kLongestTone) {
            const auto at = static_cast<std::uint32_t>(slot.m_duration * m_sampleRate);
            CPomelPCM::WriteTone(slot.m_buffer + at,
                                 static_cast<std::uint32_t>(duration * m_sampleRate), frequency);
            slot.m_duration += duration;
            slot.m_header.bufferLength = static_cast<std::uint32_t>(slot.m_duration * m_sampleRate);
            if (slot.m_duration > kSlotFull) {
                slot.m_state = CPomelPCM::kReady;
                m_currentSlot = -1;
            }
            return 1;
        }
    }
    int free = -1;
    for (int i = 0; i < kSlots; ++i) {
        if (m_slots[i].m_state.load() == CPomelPCM::kFree) {
            free = i;
            break;
        }
    }
    if (free == -1 || duration > kLongestTone) {
        guard.unlock();
        std::this_thread::sleep_for(kPoll);
        return 0;
    }
    CPomelPCM& slot = m_slots[free];
    slot.m_frequency = frequency;
    slot.m_duration = duration;
    slot.m_header.flags = 0;
    const auto count = static_cast<std::uint32_t>(duration * m_sampleRate);
    CPomelPCM::WriteTone(slot.m_buffer, count, frequency);
    slot.m_header.data = reinterpret_cast<char*>(slot.m_buffer);
    slot.m_header.bufferLength = count;
    if (duration > kSlotFull) {
        slot.m_state = CPomelPCM::kReady;
    } else {
        m_currentSlot = free;
    }
    return 1;
}

void CPomelAsyncPlay::Submit(CPomelPCM& slot) {
    if (WaveOutPrepareHeader(m_device, &slot.m_header, sizeof slot.m_header) == kMmNoError &&
        WaveOutWrite(m_device, &slot.m_header, sizeof slot.m_header) == kMmNoError) {
        slot.m_state = CPomelPCM::kQueued;
        return;
    }
    // The device will never give this slot back: its tone is dropped and the slot is free, so
    // that a stop does not wait for it.
    WaveOutUnprepareHeader(m_device, &slot.m_header, sizeof slot.m_header);
    slot.m_state = CPomelPCM::kFree;
    m_open = 0;
}

void CPomelAsyncPlay::PlaybackThread() {
    s_instance = this;
    bool nothingSent = true;
    while (m_stop.load() == 0) {
        for (int i = 0; i < kSlots; ++i) {
            if (m_slots[i].m_state.load() != CPomelPCM::kReady) {
                continue;
            }
            std::lock_guard guard(m_lock);
            Submit(m_slots[i]);
            nothingSent = false;
        }
        while (QueuedCount() == kSlots && m_stop.load() == 0) {
            std::this_thread::sleep_for(kPoll);
        }
        bool idle = false;
        {
            std::lock_guard guard(m_lock);
            int queued = 0;
            for (int i = 0; i < kSlots; ++i) {
                queued += m_slots[i].m_state.load() == CPomelPCM::kQueued ? 1 : 0;
            }
            if (queued == 0) {
                idle = true;
                if (m_currentSlot != -1 && !nothingSent) {
                    CPomelPCM& slot = m_slots[m_currentSlot];
                    m_currentSlot = -1;
                    Submit(slot);
                }
                // Idle: hold the lock through the pause, so a caller may wait up to half a
                // second; that is how this player has always behaved.
                std::this_thread::sleep_for(kIdleSleep);
            }
        }
        if (!idle) {
            // Tones are playing: look again shortly rather than spin.
            std::this_thread::sleep_for(kPoll);
        }
    }
    // Queued slots come back as they are heard, or all at once when the device is lost.
    while (QueuedCount() > 0) {
        std::this_thread::sleep_for(kPoll);
    }
}

void CPomelAsyncPlay::DeviceCallback(WaveOutHandle device, unsigned message, std::uintptr_t,
                                     WaveHeader* header) {
    CPomelAsyncPlay* self = s_instance.load();
    if (message != kWaveOutDone || self == nullptr || header == nullptr) {
        return;
    }
    std::lock_guard guard(self->m_lock);
    if (WaveOutUnprepareHeader(device, header, sizeof *header) != kMmNoError) {
        self->m_open = 0;
    }
    for (int i = 0; i < kSlots; ++i) {
        CPomelPCM& slot = self->m_slots[i];
        if (slot.m_state.load() == CPomelPCM::kQueued && &slot.m_header == header) {
            slot.m_state = CPomelPCM::kFree;
        }
    }
}

void CPomelAsyncPlay::ReleaseSlot(const WaveHeader* header) {
    std::lock_guard guard(m_lock);
    for (int i = 0; i < kSlots; ++i) {
        if (m_slots[i].m_state.load() == CPomelPCM::kQueued && &m_slots[i].m_header == header) {
            m_slots[i].m_state = CPomelPCM::kFree;
        }
    }
}

unsigned CPomelAsyncPlay::StopThreadWait() {
    if (!m_thread) {
        return kWaitEnded;
    }
    m_stop = 1;
    if (m_threadEnded.wait_for(kStopWait) != std::future_status::ready) {
        return kWaitTimedOut;
    }
    if (m_thread->joinable()) {
        m_thread->join();
    }
    return kWaitEnded;
}

int CPomelAsyncPlay::StopThread() {
    return StopThreadWait() == kWaitEnded ? 1 : 0;
}

int CPomelAsyncPlay::QueuedCount() {
    int queued = 0;
    for (int i = 0; i < kSlots && m_slots != nullptr; ++i) {
        queued += m_slots[i].m_state.load() == CPomelPCM::kQueued ? 1 : 0;
    }
    return queued;
}

int CPomelAsyncPlay::FirstFreeSlot() {
    for (int i = 0; i < kSlots && m_slots != nullptr; ++i) {
        if (m_slots[i].m_state.load() == CPomelPCM::kFree) {
            return i;
        }
    }
    return -1;
}

int CPomelAsyncPlay::GetCurrentSlot() {
    std::lock_guard guard(m_lock);
    return m_currentSlot;
}

int CPomelAsyncPlay::GetSlotState(int slot) const {
    return slot >= 0 && slot < kSlots && m_slots != nullptr ? m_slots[slot].m_state.load() : -1;
}

double CPomelAsyncPlay::GetSlotDuration(int slot) {
    std::lock_guard guard(m_lock);
    return slot >= 0 && slot < kSlots && m_slots != nullptr ? m_slots[slot].m_duration : 0.0;
}
