// SPDX-License-Identifier: GPL-3.0-or-later
// What the output and input halves of the PortAudio backend share: the platform (initialised
// once, refreshed only while no stream is open), the checks before a stream opens, and the core
// of an open device, whose own thread completes headers and runs the user callback so that
// nothing of ours ever blocks inside PortAudio's real-time thread. Backend files only.
#pragma once

#include <portaudio.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <new>
#include <thread>
#include <vector>

#include "audio/WaveAudio.h"

namespace portaudio_backend {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

/// A stream whose callback has not run for this long has lost its server.
constexpr auto kStalledStream = 600ms;
/// How long a caller waits for the real-time callback or the layer thread to answer.
constexpr auto kHandshakeWait = 400ms;
constexpr auto kIdlePoll = 20ms;
/// An opened output measures its delay once the stream has run this long after its first period.
/// Measured on the null sink: from 25 ms on the keying keeps every gap within 0.25 ms, as it did
/// with 150 ms; with no wait at all the delay is misjudged and gaps come out 20 ms long. Each
/// millisecond here delays the first tone of a session by one.
constexpr std::int64_t kSettleNs = 25'000'000;
constexpr auto kSettleWait = 800ms;

/// A fixed ring for one producer and one consumer thread.
template <typename T, std::size_t N>
class SpscRing {
public:
    bool Push(const T& value) {
        const std::size_t head = m_head.load(std::memory_order_relaxed);
        const std::size_t next = (head + 1) % N;
        if (next == m_tail.load(std::memory_order_acquire)) {
            return false;
        }
        m_items[head] = value;
        m_head.store(next, std::memory_order_release);
        return true;
    }
    /// Room for this many more items; exact on the producer's thread, a lower bound elsewhere.
    std::size_t Free() const {
        const std::size_t head = m_head.load(std::memory_order_relaxed);
        const std::size_t tail = m_tail.load(std::memory_order_acquire);
        return (tail + N - head - 1) % N;
    }
    bool Pop(T& value) {
        const std::size_t tail = m_tail.load(std::memory_order_relaxed);
        if (tail == m_head.load(std::memory_order_acquire)) {
            return false;
        }
        value = m_items[tail];
        m_tail.store((tail + 1) % N, std::memory_order_release);
        return true;
    }

private:
    std::array<T, N> m_items{};
    std::atomic<std::size_t> m_head{0};
    std::atomic<std::size_t> m_tail{0};
};

/// Pushes as many whole frames of blockAlign bytes as the ring has room for, never part of one,
/// so that what is read back stays aligned after an overflow; returns the frames pushed.
template <std::size_t N>
std::size_t PushWholeFrames(SpscRing<unsigned char, N>& ring, const unsigned char* bytes,
                            std::size_t frames, std::size_t blockAlign) {
    if (blockAlign == 0) {
        return 0;
    }
    const std::size_t taken = std::min(frames, ring.Free() / blockAlign);
    for (std::size_t i = 0; i < taken * blockAlign; ++i) {
        ring.Push(bytes[i]);
    }
    return taken;
}

inline std::int64_t NowNs() {
    return WaveClockNs();
}

/// Done flags time the caller's next tone, so the layer threads ask for real-time priority where
/// the system grants it, else they run as they were.
void RaisePriority();

/// The platform lock, unless another caller holds it too long (a platform call hung on a
/// vanished server): check owns_lock().
std::unique_lock<std::mutex> LockPlatform();

/// PortAudio device indexes of the outputs (or inputs), in layer order.
std::vector<PaDeviceIndex> DevicesLocked(bool output);
/// The PortAudio device for a layer id, or paNoDevice with the reason in result.
PaDeviceIndex ResolveLocked(unsigned deviceId, bool output, MmResult& result);
/// What this layer can really open: the platform through a sound server says yes to nearly
/// anything, so the layer's own checks come first.
MmResult CheckFormatLocked(PaDeviceIndex device, const WaveFormat& format, bool output);
/// Opens and starts a callback stream; on failure nothing stays open.
MmResult OpenStreamLocked(PaStream** stream, PaDeviceIndex device, const WaveFormat& format,
                          bool output, PaStreamCallback* callback, void* user);
/// Stops and closes a stream; if the platform hangs (a vanished server), the stream is
/// abandoned after a bounded wait rather than blocking the caller.
void TeardownStream(PaStream* stream);

/// What a device shares between its callers, its real-time callback and its layer thread.
class DeviceCore {
public:
    virtual ~DeviceCore() = default;

    void StartLayerThread() {
        m_lastCallbackNs = NowNs();
        m_thread = std::thread([this] {
            RaisePriority();
            Run();
        });
    }
    void StopLayerThread() {
        {
            std::lock_guard lock(m_lock);
            m_stopThread = true;
        }
        m_wake.notify_all();
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }
    bool OnLayerThread() const { return std::this_thread::get_id() == m_thread.get_id(); }

    /// Asks the layer thread to finish every header now and waits for it (bounded).
    void FlushAndWait() {
        std::unique_lock lock(m_lock);
        const std::uint64_t ticket = ++m_flushRequested;
        m_wake.notify_all();
        if (OnLayerThread()) {
            return;
        }
        m_flushed.wait_for(lock, 2 * kHandshakeWait, [&] { return m_flushDone >= ticket; });
    }
    void Wake() { m_wake.notify_all(); }

    /// Keeps the real-time callback out of our state from now on; returns once it has left.
    void DisableCallback() {
        m_disabled.store(true);
        while (m_inCallback.load()) {
            std::this_thread::sleep_for(50us);
        }
    }
    bool EnterCallback() {
        m_inCallback.store(true);
        if (m_disabled.load()) {
            m_inCallback.store(false);
            return false;
        }
        const std::int64_t now = NowNs();
        m_lastCallbackNs.store(now, std::memory_order_relaxed);
        std::int64_t never = 0;
        m_firstCallbackNs.compare_exchange_strong(never, now);
        return true;
    }
    void LeaveCallback() { m_inCallback.store(false); }

    PaStream* m_stream = nullptr;
    WaveFormat m_format;
    std::uintptr_t m_instance = 0;
    std::atomic<bool> m_dead{false};
    std::atomic<bool> m_started{false};

protected:
    /// One pass of the layer thread; returns how long it may sleep.
    virtual Clock::duration Service(bool flush) = 0;
    /// Called once when the stream was found dead, after the callback was disabled.
    virtual void OnDead() = 0;

    std::atomic<bool> m_disabled{false};
    std::atomic<bool> m_inCallback{false};
    std::atomic<std::int64_t> m_lastCallbackNs{0};
    std::atomic<std::int64_t> m_firstCallbackNs{0};

public:
    /// Waits (bounded) until the stream has run steadily for a while: the server takes the
    /// first few periods to settle, and a tone written into them comes out mangled.
    void WaitUntilSettled() {
        const auto deadline = Clock::now() + kSettleWait;
        while (Clock::now() < deadline) {
            const std::int64_t first = m_firstCallbackNs.load();
            if (first != 0 && NowNs() - first >= kSettleNs) {
                return;
            }
            std::this_thread::sleep_for(2ms);
        }
    }

private:
    void Run() {
        std::unique_lock lock(m_lock);
        while (!m_stopThread) {
            const std::uint64_t ticket = m_flushRequested;
            const bool flush = ticket != m_flushDone;
            lock.unlock();
            CheckAlive();
            const Clock::duration pause = Service(flush);
            lock.lock();
            if (flush) {
                m_flushDone = ticket;
                m_flushed.notify_all();
                continue;
            }
            if (m_flushRequested == m_flushDone && !m_stopThread) {
                m_wake.wait_for(lock, pause);
            }
        }
    }
    void CheckAlive() {
        if (m_dead.load() || !m_started.load()) {
            return;
        }
        const auto silentFor = std::chrono::nanoseconds(NowNs() - m_lastCallbackNs.load());
        if (silentFor > kStalledStream || Pa_IsStreamActive(m_stream) != 1) {
            DisableCallback();
            m_dead.store(true);
            OnDead();
        }
    }

    std::thread m_thread;
    std::mutex m_lock;
    std::condition_variable m_wake;
    std::condition_variable m_flushed;
    bool m_stopThread = false;
    std::uint64_t m_flushRequested = 0;
    std::uint64_t m_flushDone = 0;
};

/// The number of output (or input) devices; 0 when the platform does not answer.
unsigned CountDevices(bool output);

/// Fills a capabilities record, only as much of it as the caller said it holds.
template <typename Caps>
MmResult GetDevCaps(unsigned device, Caps* caps, unsigned size, bool output) {
    if (caps == nullptr) {
        return kMmInvalidParam;
    }
    std::unique_lock lock = LockPlatform();
    if (!lock.owns_lock()) {
        return kMmNoDriver;
    }
    MmResult result = kMmNoError;
    const PaDeviceIndex index = ResolveLocked(device, output, result);
    if (result != kMmNoError) {
        return result;
    }
    const PaDeviceInfo* info = Pa_GetDeviceInfo(index);
    if (info == nullptr) {
        return kMmNoDriver;
    }
    Caps filled;
    std::strncpy(filled.productName, info->name, kWaveNameLength - 1);
    const int channels = output ? info->maxOutputChannels : info->maxInputChannels;
    filled.channels = static_cast<std::uint16_t>(std::min(channels, 0xFFFF));
    std::memcpy(static_cast<void*>(caps), &filled, std::min<std::size_t>(size, sizeof filled));
    return kMmNoError;
}

/// Opens a device (WaveOutDevice or WaveInDevice), or with kWaveFormatQuery only answers whether
/// it would open. The device type gives its direction, its stream callback, what it does once
/// its stream runs, and the message that tells its user it is open.
template <typename Device, typename Proc>
MmResult OpenDevice(Device** handle, unsigned deviceId, const WaveFormat* format, Proc callback,
                    std::uintptr_t instance, unsigned flags) {
    if (format == nullptr) {
        return kMmInvalidParam;
    }
    std::unique_lock lock = LockPlatform();
    if (!lock.owns_lock()) {
        return kMmNoDriver;
    }
    MmResult result = kMmNoError;
    const PaDeviceIndex index = ResolveLocked(deviceId, Device::kOutput, result);
    if (result != kMmNoError) {
        return result;
    }
    result = CheckFormatLocked(index, *format, Device::kOutput);
    if (result != kMmNoError || (flags & kWaveFormatQuery) != 0) {
        return result;
    }
    if (handle == nullptr) {
        return kMmInvalidParam;
    }
    auto* opened = new (std::nothrow) Device;
    if (opened == nullptr) {
        return kMmNoMemory;
    }
    opened->m_format = *format;
    opened->m_callback = (flags & kWaveCallbackFunction) != 0 ? callback : nullptr;
    opened->m_instance = instance;
    result = OpenStreamLocked(&opened->m_stream, index, *format, Device::kOutput,
                              &Device::StreamCallback, opened);
    if (result != kMmNoError) {
        delete opened;
        return result;
    }
    lock.unlock();
    opened->StartLayerThread();
    opened->OnStreamStarted();
    opened->m_started = true;
    if (opened->m_callback != nullptr) {
        opened->m_callback(opened, Device::kOpenedMessage, instance, nullptr);
    }
    *handle = opened;
    return kMmNoError;
}

/// Stops a device's callback and thread, closes its stream, tells its user and frees it.
template <typename Device>
void CloseDevice(Device* device) {
    device->DisableCallback();
    device->StopLayerThread();
    TeardownStream(device->m_stream);
    if (device->m_callback != nullptr) {
        device->m_callback(device, Device::kClosedMessage, device->m_instance, nullptr);
    }
    delete device;
}

MmResult PrepareHeader(const DeviceCore* device, WaveHeader* header);
MmResult UnprepareHeader(const DeviceCore* device, WaveHeader* header);

}  // namespace portaudio_backend
