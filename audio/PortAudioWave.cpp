// SPDX-License-Identifier: GPL-3.0-or-later
// The waveform-audio layer over PortAudio. Every open device runs a callback stream that plays
// silence when nothing is queued (a starved stream shortens gaps and clips tones), and one
// thread of its own that completes headers by the stream clock and runs the user callback, so
// nothing of ours ever blocks inside PortAudio's real-time thread.
#include "audio/WaveAudio.h"

#include <alsa/asoundlib.h>
#include <portaudio.h>
#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

/// A stream whose callback has not run for this long has lost its server.
constexpr auto kStalledStream = 600ms;
/// How long a caller waits for the real-time callback or the layer thread to answer.
constexpr auto kHandshakeWait = 400ms;
/// Longest wait for the platform to tear a stream down; a hung one is abandoned.
constexpr auto kTeardownWait = 800ms;
constexpr auto kIdlePoll = 20ms;
constexpr auto kBusyPoll = 1ms;
constexpr int kLayerThreadPriority = 10;
constexpr std::int64_t kSettleNs = 150'000'000;
constexpr auto kSettleWait = 800ms;
/// A buffer written to an idle output starts this long after the write, by the stream clock:
/// the same delay for every tone keeps gaps exact instead of rounding them to the period.
/// Output buffering: enough to ride out a busy machine without a dropout.
constexpr double kOutputLatency = 0.025;
/// The lead (at least this) covers the output delay plus one period, as measured once the
/// stream has settled. A
/// header is done this long before its end is heard: the next write, made when the caller saw
/// it done, is heard exactly where the caller meant it to start.
constexpr std::int64_t kOnsetLeadNs = 10'000'000;
constexpr std::int64_t kLeadMarginNs = 3'000'000;
/// Measured here: from the done flag to the caller's next write (thread wake-ups, the caller's
/// own sleep overshooting) takes about 0.35 ms; the flag is set that much earlier.
constexpr std::int64_t kWakeAllowanceNs = 350'000;

/// A fixed ring for one producer and one consumer thread.
template <typename T, std::size_t N> class SpscRing {
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

std::int64_t NowNs() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch())
        .count();
}

/// Done flags time the caller's next tone, so the thread that sets them should wake on time even
/// on a busy machine: real-time priority where the system grants it, else as it was.
void RaisePriority() {
    sched_param parameter{};
    parameter.sched_priority = kLayerThreadPriority;
    pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameter);
}

void QuietAlsa(const char*, int, const char*, int, const char*, ...) {}

// PortAudio is initialised once and refreshed (to see a server that came up later) only while
// no stream is open, under this lock.
std::timed_mutex g_platformLock;
bool g_initialized = false;
bool g_refreshWanted = false;
int g_openStreams = 0;

bool EnsurePlatformLocked() {
    if (g_initialized && g_refreshWanted && g_openStreams == 0) {
        Pa_Terminate();
        g_initialized = false;
    }
    if (!g_initialized) {
        snd_lib_error_set_handler(&QuietAlsa);
        if (Pa_Initialize() != paNoError) {
            return false;
        }
        g_initialized = true;
        g_refreshWanted = false;
    }
    return true;
}

/// PortAudio device indexes of the outputs (or inputs), in layer order.
std::vector<PaDeviceIndex> DevicesLocked(bool output) {
    std::vector<PaDeviceIndex> devices;
    if (!EnsurePlatformLocked()) {
        return devices;
    }
    const PaDeviceIndex count = Pa_GetDeviceCount();
    for (PaDeviceIndex i = 0; i < count; ++i) {
        const PaDeviceInfo* info = Pa_GetDeviceInfo(i);
        if (info != nullptr && (output ? info->maxOutputChannels : info->maxInputChannels) > 0) {
            devices.push_back(i);
        }
    }
    if (devices.empty()) {
        g_refreshWanted = true;
    }
    return devices;
}

/// The PortAudio device for a layer id, or paNoDevice with the reason in result.
PaDeviceIndex ResolveLocked(unsigned deviceId, bool output, MmResult& result) {
    const std::vector<PaDeviceIndex> devices = DevicesLocked(output);
    if (devices.empty()) {
        result = kMmNoDriver;
        return paNoDevice;
    }
    if (deviceId == kWaveMapper) {
        PaDeviceIndex device = output ? Pa_GetDefaultOutputDevice() : Pa_GetDefaultInputDevice();
        if (device == paNoDevice) {
            device = devices.front();
        }
        result = kMmNoError;
        return device;
    }
    if (deviceId >= devices.size()) {
        result = kMmBadDeviceId;
        return paNoDevice;
    }
    result = kMmNoError;
    return devices[deviceId];
}

PaStreamParameters StreamParameters(PaDeviceIndex device, const WaveFormat& format, bool output) {
    PaStreamParameters parameters{};
    parameters.device = device;
    parameters.channelCount = format.channels;
    parameters.sampleFormat = format.bitsPerSample == 8 ? paUInt8 : paInt16;
    const PaDeviceInfo* info = Pa_GetDeviceInfo(device);
    if (info != nullptr) {
        parameters.suggestedLatency =
            output ? std::max(info->defaultLowOutputLatency, kOutputLatency)
                   : info->defaultLowInputLatency;
    }
    return parameters;
}

MmResult CheckFormatLocked(PaDeviceIndex device, const WaveFormat& format, bool output) {
    if (!IsOpenableWaveFormat(format)) {
        return kWaveBadFormat;
    }
    const PaDeviceInfo* info = Pa_GetDeviceInfo(device);
    if (info == nullptr) {
        return kMmNoDriver;
    }
    const int channels = output ? info->maxOutputChannels : info->maxInputChannels;
    if (format.channels > channels) {
        return kWaveBadFormat;
    }
    const PaStreamParameters parameters = StreamParameters(device, format, output);
    const PaError answer = output ? Pa_IsFormatSupported(nullptr, &parameters, format.samplesPerSec)
                                  : Pa_IsFormatSupported(&parameters, nullptr, format.samplesPerSec);
    return answer == paFormatIsSupported ? kMmNoError : kWaveBadFormat;
}

MmResult ResultOfOpenError(PaError error) {
    switch (error) {
    case paInsufficientMemory:
        return kMmNoMemory;
    case paDeviceUnavailable:
        return kMmAllocated;
    case paInvalidSampleRate:
    case paSampleFormatNotSupported:
    case paInvalidChannelCount:
        return kWaveBadFormat;
    default:
        return kMmNoDriver;
    }
}

/// Stops and closes a stream; if the platform hangs (a vanished server), the stream is
/// abandoned after a bounded wait rather than blocking the caller.
void TeardownStream(PaStream* stream) {
    auto done = std::make_shared<std::promise<void>>();
    std::future<void> finished = done->get_future();
    std::thread closer([stream, done] {
        {
            std::lock_guard lock(g_platformLock);
            Pa_AbortStream(stream);
            Pa_CloseStream(stream);
            --g_openStreams;
        }
        done->set_value();
    });
    if (finished.wait_for(kTeardownWait) == std::future_status::ready) {
        closer.join();
    } else {
        closer.detach();
    }
}

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

} // namespace

// ---------------------------------------------------------------------------------------------
// Output

struct WaveOutDevice final : DeviceCore {
    /// A header's samples, copied at the write so that the header can be returned as soon as
    /// its end is certain, before the real-time thread has read its last sample.
    struct Submission {
        WaveHeader* header = nullptr;
        std::int64_t submittedNs = 0;
        char* samples = nullptr;
        std::uint32_t length = 0;
    };
    /// To the layer thread: a header to finish at whenNs, and/or a copy to free.
    struct Completion {
        WaveHeader* header = nullptr;
        std::int64_t whenNs = 0;
        char* samples = nullptr;
    };

    WaveOutProc m_callback = nullptr;
    std::mutex m_submitLock; // serialises producers of m_submitted
    SpscRing<Submission, 512> m_submitted;
    SpscRing<Completion, 1024> m_completed;
    std::atomic<int> m_queued{0};
    std::atomic<bool> m_paused{false};
    std::atomic<std::uint32_t> m_resetRequested{0};
    std::atomic<std::uint32_t> m_resetAnswered{0};
    std::atomic<std::uint64_t> m_playedFrames{0};
    std::atomic<std::int64_t> m_heardEndNs{0}; // when the last written sample will be heard

    // Owned by the real-time callback (or by whoever disabled it).
    Submission m_current;
    bool m_currentReturned = false; // its header already went back to the caller
    std::uint32_t m_offset = 0;
    std::int64_t m_startNs = 0;   // when the current header's first sample is due
    std::int64_t m_lastEndNs = 0; // when the previous header's last sample will be heard
    double m_latency = 0.0;       // seconds from a callback to its first sample being heard
    std::atomic<unsigned long> m_periodFrames{0};
    std::int64_t m_leadNs = kOnsetLeadNs; // fixed once the stream has settled

    /// The lead for this stream: its output delay and one period, plus a margin.
    void FixLead() {
        const double period = static_cast<double>(m_periodFrames.load()) / m_format.samplesPerSec;
        const double measured = m_measuredLatency.load() + period;
        if (measured > 0.0) {
            m_leadNs = std::max(kOnsetLeadNs, static_cast<std::int64_t>(measured * 1e9) + kLeadMarginNs);
        }
    }
    std::atomic<double> m_measuredLatency{0.0};
    // Owned by the layer thread.
    std::deque<Completion> m_waiting;

    int Callback(void* output, unsigned long frames, const PaStreamCallbackTimeInfo* time) {
        auto* out = static_cast<unsigned char*>(output);
        const unsigned blockAlign = m_format.blockAlign;
        const unsigned char silence = m_format.bitsPerSample == 8 ? 0x80 : 0x00;
        if (!EnterCallback()) {
            std::memset(out, silence, frames * blockAlign);
            return paContinue;
        }
        const std::int64_t now = NowNs();
        double latency = time != nullptr ? time->outputBufferDacTime - time->currentTime : 0.0;
        // Some periods come without a usable output time; the delay does not change between them.
        if (latency > 0.0 && latency < 1.0) {
            m_latency = latency;
            m_measuredLatency.store(latency, std::memory_order_relaxed);
        } else {
            latency = m_latency;
        }
        m_periodFrames.store(frames, std::memory_order_relaxed);
        const std::uint32_t reset = m_resetRequested.load();
        if (reset != m_resetSeen) {
            ReturnEverything(now);
            m_resetSeen = reset;
            m_resetAnswered.store(reset);
        }
        const double rate = m_format.samplesPerSec;
        unsigned long done = 0;
        while (!m_paused.load(std::memory_order_relaxed) && done < frames) {
            const std::int64_t frameNs =
                now + static_cast<std::int64_t>((latency + static_cast<double>(done) / rate) * 1e9);
            if (m_current.header == nullptr) {
                if (!m_submitted.Pop(m_current)) {
                    break;
                }
                m_offset = 0;
                m_currentReturned = false;
                m_startNs = std::max(m_current.submittedNs + m_leadNs, m_lastEndNs);
            }
            const std::uint32_t usable = m_current.length - m_current.length % blockAlign;
            if (m_offset == 0 && !m_currentReturned) {
                if (m_startNs > frameNs) {
                    const auto early = static_cast<unsigned long>(
                        static_cast<double>(m_startNs - frameNs) * rate / 1e9 + 0.5);
                    const unsigned long skip = std::min(early, frames - done);
                    std::memset(out + done * blockAlign, silence, skip * blockAlign);
                    done += skip;
                    if (done == frames) {
                        break;
                    }
                }
                // From here on the end is certain: give the header back a lead before it.
                const std::int64_t startNs =
                    now + static_cast<std::int64_t>((latency + static_cast<double>(done) / rate) * 1e9);
                m_lastEndNs = startNs + static_cast<std::int64_t>((usable / blockAlign) / rate * 1e9);
                m_heardEndNs.store(m_lastEndNs, std::memory_order_relaxed);
                m_completed.Push(
                    {m_current.header, m_lastEndNs - m_leadNs - kWakeAllowanceNs, nullptr});
                m_currentReturned = true;
            }
            const unsigned long left = (usable - m_offset) / blockAlign;
            const unsigned long count = std::min(left, frames - done);
            if (count > 0) {
                std::memcpy(out + done * blockAlign, m_current.samples + m_offset, count * blockAlign);
                done += count;
                m_offset += static_cast<std::uint32_t>(count * blockAlign);
                m_playedFrames.fetch_add(count, std::memory_order_relaxed);
            }
            if (m_offset >= usable) {
                m_completed.Push({nullptr, 0, m_current.samples});
                m_current = Submission{};
            }
        }
        std::memset(out + done * blockAlign, silence, (frames - done) * blockAlign);
        LeaveCallback();
        return paContinue;
    }

    /// Hands the current and every submitted header to the layer thread as finished now.
    void ReturnEverything(std::int64_t now) {
        if (m_current.header != nullptr) {
            m_completed.Push({m_currentReturned ? nullptr : m_current.header, now,
                              m_current.samples});
            m_current = Submission{};
        }
        Submission next;
        while (m_submitted.Pop(next)) {
            m_completed.Push({next.header, now, next.samples});
        }
        m_lastEndNs = now;
    }

protected:
    Clock::duration Service(bool flush) override {
        Completion completion;
        while (m_completed.Pop(completion)) {
            delete[] completion.samples;
            if (completion.header != nullptr) {
                m_waiting.push_back(completion);
            }
        }
        while (!m_waiting.empty()) {
            const std::int64_t wait = m_waiting.front().whenNs - NowNs();
            if (!flush && wait > 0) {
                // Near the moment, sleep exactly: the done flag times the caller's next tone.
                if (wait > 2'000'000) {
                    return std::chrono::nanoseconds(wait - 1'000'000);
                }
                std::this_thread::sleep_for(std::chrono::nanoseconds(wait));
            }
            WaveHeader* header = m_waiting.front().header;
            m_waiting.pop_front();
            Finish(header);
        }
        return m_queued.load() > 0 ? kBusyPoll : kIdlePoll;
    }
    void OnDead() override {
        {
            std::lock_guard lock(m_submitLock);
            ReturnEverything(NowNs());
        }
        Service(true);
    }

private:
    void Finish(WaveHeader* header) {
        WaveHeaderSignalDone(header);
        m_queued.fetch_sub(1);
        if (m_callback != nullptr) {
            m_callback(this, kWaveOutDone, m_instance, header);
        }
    }
    std::uint32_t m_resetSeen = 0;
};

namespace {

int OutputCallback(const void*, void* output, unsigned long frames,
                   const PaStreamCallbackTimeInfo* time, PaStreamCallbackFlags, void* user) {
    return static_cast<WaveOutDevice*>(user)->Callback(output, frames, time);
}

bool Valid(WaveOutHandle device) { return device != nullptr; }

} // namespace

unsigned WaveOutGetNumDevs() {
    std::unique_lock lock(g_platformLock, std::defer_lock);
    if (!lock.try_lock_for(kHandshakeWait)) {
        return 0;
    }
    return static_cast<unsigned>(DevicesLocked(true).size());
}

MmResult WaveOutGetDevCaps(unsigned device, WaveOutCaps* caps, unsigned size) {
    if (caps == nullptr) {
        return kMmInvalidParam;
    }
    std::unique_lock lock(g_platformLock, std::defer_lock);
    if (!lock.try_lock_for(kHandshakeWait)) {
        return kMmNoDriver;
    }
    MmResult result = kMmNoError;
    const PaDeviceIndex index = ResolveLocked(device, true, result);
    if (result != kMmNoError) {
        return result;
    }
    const PaDeviceInfo* info = Pa_GetDeviceInfo(index);
    if (info == nullptr) {
        return kMmNoDriver;
    }
    WaveOutCaps filled;
    std::strncpy(filled.productName, info->name, kWaveNameLength - 1);
    filled.channels = static_cast<std::uint16_t>(std::min(info->maxOutputChannels, 0xFFFF));
    // Only as much of the record as the caller said it holds is written.
    std::memcpy(static_cast<void*>(caps), &filled, std::min<std::size_t>(size, sizeof filled));
    return kMmNoError;
}

MmResult WaveOutOpen(WaveOutHandle* device, unsigned deviceId, const WaveFormat* format,
                     WaveOutProc callback, std::uintptr_t instance, unsigned flags) {
    if (format == nullptr) {
        return kMmInvalidParam;
    }
    std::unique_lock lock(g_platformLock, std::defer_lock);
    if (!lock.try_lock_for(kHandshakeWait)) {
        return kMmNoDriver;
    }
    MmResult result = kMmNoError;
    const PaDeviceIndex index = ResolveLocked(deviceId, true, result);
    if (result != kMmNoError) {
        return result;
    }
    result = CheckFormatLocked(index, *format, true);
    if (result != kMmNoError || (flags & kWaveFormatQuery) != 0) {
        return result;
    }
    if (device == nullptr) {
        return kMmInvalidParam;
    }
    auto* opened = new (std::nothrow) WaveOutDevice;
    if (opened == nullptr) {
        return kMmNoMemory;
    }
    opened->m_format = *format;
    opened->m_callback = (flags & kWaveCallbackFunction) != 0 ? callback : nullptr;
    opened->m_instance = instance;
    const PaStreamParameters parameters = StreamParameters(index, *format, true);
    PaError error = Pa_OpenStream(&opened->m_stream, nullptr, &parameters, format->samplesPerSec,
                                  paFramesPerBufferUnspecified, paClipOff, &OutputCallback, opened);
    if (error == paNoError) {
        ++g_openStreams;
        error = Pa_StartStream(opened->m_stream);
        if (error != paNoError) {
            Pa_CloseStream(opened->m_stream);
            --g_openStreams;
        }
    }
    if (error != paNoError) {
        g_refreshWanted = true;
        delete opened;
        return ResultOfOpenError(error);
    }
    lock.unlock();
    opened->StartLayerThread();
    opened->WaitUntilSettled();
    opened->FixLead();
    opened->m_started = true;
    if (opened->m_callback != nullptr) {
        opened->m_callback(opened, kWaveOutOpened, instance, nullptr);
    }
    *device = opened;
    return kMmNoError;
}

MmResult WaveOutPrepareHeader(WaveOutHandle device, WaveHeader* header, unsigned) {
    if (!Valid(device)) {
        return kMmInvalidHandle;
    }
    if (header == nullptr || header->data == nullptr) {
        return kMmInvalidParam;
    }
    if (device->m_dead.load()) {
        return kMmNoDriver;
    }
    header->flags = header->flags.load() | kWaveHeaderPrepared;
    return kMmNoError;
}

MmResult WaveOutUnprepareHeader(WaveOutHandle device, WaveHeader* header, unsigned) {
    if (!Valid(device)) {
        return kMmInvalidHandle;
    }
    if (header == nullptr) {
        return kMmInvalidParam;
    }
    const std::uint32_t flags = header->flags.load();
    if ((flags & kWaveHeaderInQueue) != 0) {
        return kWaveStillPlaying;
    }
    header->flags = flags & ~kWaveHeaderPrepared;
    return kMmNoError;
}

MmResult WaveOutWrite(WaveOutHandle device, WaveHeader* header, unsigned) {
    if (!Valid(device)) {
        return kMmInvalidHandle;
    }
    if (header == nullptr) {
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
    auto* samples = new (std::nothrow) char[header->bufferLength == 0 ? 1 : header->bufferLength];
    if (samples == nullptr) {
        return kMmNoMemory;
    }
    std::memcpy(samples, header->data, header->bufferLength);
    header->flags = (flags & ~kWaveHeaderDone) | kWaveHeaderInQueue;
    std::lock_guard lock(device->m_submitLock);
    device->m_queued.fetch_add(1);
    if (!device->m_submitted.Push({header, NowNs(), samples, header->bufferLength})) {
        device->m_queued.fetch_sub(1);
        header->flags = flags;
        delete[] samples;
        return kMmNoMemory;
    }
    device->Wake();
    return kMmNoError;
}

MmResult WaveOutPause(WaveOutHandle device) {
    if (!Valid(device)) {
        return kMmInvalidHandle;
    }
    device->m_paused = true;
    return kMmNoError;
}

MmResult WaveOutRestart(WaveOutHandle device) {
    if (!Valid(device)) {
        return kMmInvalidHandle;
    }
    device->m_paused = false;
    return kMmNoError;
}

MmResult WaveOutReset(WaveOutHandle device) {
    if (!Valid(device)) {
        return kMmInvalidHandle;
    }
    {
        std::lock_guard lock(device->m_submitLock);
        const std::uint32_t ticket = device->m_resetRequested.fetch_add(1) + 1;
        const auto deadline = Clock::now() + kHandshakeWait;
        while (device->m_resetAnswered.load() != ticket && !device->m_dead.load()) {
            if (Clock::now() > deadline) {
                // The callback no longer runs: take its headers back ourselves.
                device->DisableCallback();
                device->m_dead = true;
                device->ReturnEverything(NowNs());
                break;
            }
            std::this_thread::sleep_for(200us);
        }
    }
    device->FlushAndWait();
    device->m_playedFrames = 0;
    device->m_paused = false;
    return kMmNoError;
}

MmResult WaveOutClose(WaveOutHandle device) {
    if (!Valid(device)) {
        return kMmInvalidHandle;
    }
    if (device->m_queued.load() > 0) {
        return kWaveStillPlaying;
    }
    // Done comes a little before the end is heard; let the tail play out before closing.
    const std::int64_t tail = device->m_heardEndNs.load() - NowNs();
    if (!device->m_dead.load() && tail > 0 && tail < 2 * device->m_leadNs) {
        std::this_thread::sleep_for(std::chrono::nanoseconds(tail + 2'000'000));
    }
    device->DisableCallback();
    device->StopLayerThread();
    TeardownStream(device->m_stream);
    if (device->m_callback != nullptr) {
        device->m_callback(device, kWaveOutClosed, device->m_instance, nullptr);
    }
    delete device;
    return kMmNoError;
}

MmResult WaveOutGetPosition(WaveOutHandle device, std::uint32_t* samples) {
    if (!Valid(device)) {
        return kMmInvalidHandle;
    }
    if (samples == nullptr) {
        return kMmInvalidParam;
    }
    *samples = static_cast<std::uint32_t>(device->m_playedFrames.load());
    return kMmNoError;
}

// ---------------------------------------------------------------------------------------------
// Input

struct WaveInDevice final : DeviceCore {
    static constexpr std::size_t kRingBytes = 1u << 20;

    WaveInProc m_callback = nullptr;
    std::atomic<bool> m_recording{false};
    std::atomic<std::uint64_t> m_recordedFrames{0};
    SpscRing<unsigned char, kRingBytes> m_ring;
    std::mutex m_headerLock; // guards m_headers
    std::deque<WaveHeader*> m_headers;

    int Callback(const void* input, unsigned long frames) {
        if (!EnterCallback()) {
            return paContinue;
        }
        if (input != nullptr && m_recording.load()) {
            const auto* bytes = static_cast<const unsigned char*>(input);
            const std::size_t count = frames * m_format.blockAlign;
            std::size_t pushed = 0;
            while (pushed < count && m_ring.Push(bytes[pushed])) {
                ++pushed;
            }
            m_recordedFrames.fetch_add(pushed / m_format.blockAlign, std::memory_order_relaxed);
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

namespace {

int InputCallback(const void* input, void*, unsigned long frames, const PaStreamCallbackTimeInfo*,
                  PaStreamCallbackFlags, void* user) {
    return static_cast<WaveInDevice*>(user)->Callback(input, frames);
}

} // namespace

unsigned WaveInGetNumDevs() {
    std::unique_lock lock(g_platformLock, std::defer_lock);
    if (!lock.try_lock_for(kHandshakeWait)) {
        return 0;
    }
    return static_cast<unsigned>(DevicesLocked(false).size());
}

MmResult WaveInGetDevCaps(unsigned device, WaveInCaps* caps, unsigned size) {
    if (caps == nullptr) {
        return kMmInvalidParam;
    }
    std::unique_lock lock(g_platformLock, std::defer_lock);
    if (!lock.try_lock_for(kHandshakeWait)) {
        return kMmNoDriver;
    }
    MmResult result = kMmNoError;
    const PaDeviceIndex index = ResolveLocked(device, false, result);
    if (result != kMmNoError) {
        return result;
    }
    const PaDeviceInfo* info = Pa_GetDeviceInfo(index);
    if (info == nullptr) {
        return kMmNoDriver;
    }
    WaveInCaps filled;
    std::strncpy(filled.productName, info->name, kWaveNameLength - 1);
    filled.channels = static_cast<std::uint16_t>(std::min(info->maxInputChannels, 0xFFFF));
    std::memcpy(static_cast<void*>(caps), &filled, std::min<std::size_t>(size, sizeof filled));
    return kMmNoError;
}

MmResult WaveInOpen(WaveInHandle* device, unsigned deviceId, const WaveFormat* format,
                    WaveInProc callback, std::uintptr_t instance, unsigned flags) {
    if (format == nullptr) {
        return kMmInvalidParam;
    }
    std::unique_lock lock(g_platformLock, std::defer_lock);
    if (!lock.try_lock_for(kHandshakeWait)) {
        return kMmNoDriver;
    }
    MmResult result = kMmNoError;
    const PaDeviceIndex index = ResolveLocked(deviceId, false, result);
    if (result != kMmNoError) {
        return result;
    }
    result = CheckFormatLocked(index, *format, false);
    if (result != kMmNoError || (flags & kWaveFormatQuery) != 0) {
        return result;
    }
    if (device == nullptr) {
        return kMmInvalidParam;
    }
    auto* opened = new (std::nothrow) WaveInDevice;
    if (opened == nullptr) {
        return kMmNoMemory;
    }
    opened->m_format = *format;
    opened->m_callback = (flags & kWaveCallbackFunction) != 0 ? callback : nullptr;
    opened->m_instance = instance;
    const PaStreamParameters parameters = StreamParameters(index, *format, false);
    PaError error = Pa_OpenStream(&opened->m_stream, &parameters, nullptr, format->samplesPerSec,
                                  paFramesPerBufferUnspecified, paClipOff, &InputCallback, opened);
    if (error == paNoError) {
        ++g_openStreams;
        error = Pa_StartStream(opened->m_stream);
        if (error != paNoError) {
            Pa_CloseStream(opened->m_stream);
            --g_openStreams;
        }
    }
    if (error != paNoError) {
        g_refreshWanted = true;
        delete opened;
        return ResultOfOpenError(error);
    }
    lock.unlock();
    opened->StartLayerThread();
    opened->m_started = true;
    if (opened->m_callback != nullptr) {
        opened->m_callback(opened, kWaveInOpened, instance, nullptr);
    }
    *device = opened;
    return kMmNoError;
}

MmResult WaveInPrepareHeader(WaveInHandle device, WaveHeader* header, unsigned) {
    if (device == nullptr) {
        return kMmInvalidHandle;
    }
    if (header == nullptr || header->data == nullptr) {
        return kMmInvalidParam;
    }
    header->flags = header->flags.load() | kWaveHeaderPrepared;
    return kMmNoError;
}

MmResult WaveInUnprepareHeader(WaveInHandle device, WaveHeader* header, unsigned) {
    if (device == nullptr) {
        return kMmInvalidHandle;
    }
    if (header == nullptr) {
        return kMmInvalidParam;
    }
    const std::uint32_t flags = header->flags.load();
    if ((flags & kWaveHeaderInQueue) != 0) {
        return kWaveStillPlaying;
    }
    header->flags = flags & ~kWaveHeaderPrepared;
    return kMmNoError;
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
    device->DisableCallback();
    device->StopLayerThread();
    TeardownStream(device->m_stream);
    if (device->m_callback != nullptr) {
        device->m_callback(device, kWaveInClosed, device->m_instance, nullptr);
    }
    delete device;
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
