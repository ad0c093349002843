// SPDX-License-Identifier: GPL-3.0-or-later
// The output half of the waveform-audio layer over PortAudio. An open output's stream keeps
// running and plays silence when nothing is queued (a starved stream shortens gaps and clips
// tones). Each header is placed by the stream's own clock and given back a lead before its end
// is heard, so that the caller's next write is heard exactly where it meant it to start.
#include "audio/PortAudioDevice.h"

#include <deque>

using namespace portaudio_backend;

namespace {

/// A buffer written to an idle output starts this long after the write, by the stream clock:
/// the same delay for every tone keeps gaps exact instead of rounding them to the period.
/// The lead (at least this) covers the output delay plus one period, as measured once the
/// stream has settled. A header is done this long before its end is heard: the next write, made
/// when the caller saw it done, is heard exactly where the caller meant it to start.
constexpr std::int64_t kOnsetLeadNs = 10'000'000;
constexpr std::int64_t kLeadMarginNs = 3'000'000;
/// Measured here: from the done flag to the caller's next write (thread wake-ups, the caller's
/// own sleep overshooting) takes about 0.35 ms; the flag is set that much earlier.
constexpr std::int64_t kWakeAllowanceNs = 350'000;
constexpr auto kBusyPoll = 1ms;
/// The most one written header may play, loops included (about 12 minutes of CD audio).
constexpr std::uint64_t kMaxSubmissionBytes = 128u << 20;
/// Weight of one period's report in the stream clock (about 150 periods to follow a change).
constexpr double kAnchorSmoothing = 0.007;

}  // namespace

struct WaveOutDevice final : DeviceCore {
    static constexpr bool kOutput = true;
    static constexpr unsigned kOpenedMessage = kWaveOutOpened;
    static constexpr unsigned kClosedMessage = kWaveOutClosed;

    /// Closed with the stream and the layer thread stopped: the copies neither had handed back
    /// yet (a stream that died under a write) are freed here.
    ~WaveOutDevice() override {
        ReturnEverything(NowNs());
        Completion completion;
        while (m_completed.Pop(completion)) {
            delete[] completion.samples;
        }
    }

    static int StreamCallback(const void*, void* output, unsigned long frames,
                              const PaStreamCallbackTimeInfo* time, PaStreamCallbackFlags,
                              void* user) {
        return static_cast<WaveOutDevice*>(user)->Callback(output, frames, time);
    }

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
    std::mutex m_submitLock;  // serialises producers of m_submitted
    SpscRing<Submission, 512> m_submitted;
    SpscRing<Completion, 1024> m_completed;
    std::atomic<int> m_queued{0};
    std::atomic<bool> m_paused{false};
    std::atomic<std::uint32_t> m_resetRequested{0};
    std::atomic<std::uint32_t> m_resetAnswered{0};
    std::atomic<std::uint64_t> m_playedFrames{0};
    std::atomic<std::int64_t> m_heardEndNs{0};  // when the last written sample will be heard

    // Owned by the real-time callback (or by whoever disabled it).
    Submission m_current;
    bool m_currentReturned = false;  // its header already went back to the caller
    std::uint32_t m_offset = 0;
    std::int64_t m_startNs = 0;    // when the current header's first sample is due
    std::int64_t m_lastEndNs = 0;  // when the previous header's last sample will be heard
    double m_latency = 0.0;        // seconds from a callback to its first sample being heard
    std::atomic<unsigned long> m_periodFrames{0};
    std::int64_t m_leadNs = kOnsetLeadNs;  // fixed once the stream has settled

    /// The server takes the first few periods to settle; the lead is measured after them.
    void OnStreamStarted() {
        WaitUntilSettled();
        FixLead();
    }

    /// The lead for this stream: its output delay and one period, plus a margin. The delay a
    /// period reports depends on how full the buffer happened to be, so the lead takes the
    /// largest seen while settling, and never less than the buffering the stream was opened with:
    /// a lead too short starts tones late and lengthens gaps by the shortfall.
    void FixLead() {
        const double period = static_cast<double>(m_periodFrames.load()) / m_format.samplesPerSec;
        const PaStreamInfo* info = Pa_GetStreamInfo(m_stream);
        const double buffered = info != nullptr ? info->outputLatency : 0.0;
        const double measured = std::max(m_largestLatency.load(), buffered) + period;
        if (measured > 0.0) {
            m_leadNs =
                std::max(kOnsetLeadNs, static_cast<std::int64_t>(measured * 1e9) + kLeadMarginNs);
        }
    }
    std::atomic<double> m_largestLatency{0.0};
    // The stream's own clock: when its frame 0 is heard, smoothed over many periods, so a
    // period whose delay report jitters on a busy machine does not move a tone.
    std::uint64_t m_streamFrames = 0;
    double m_anchorNs = 0.0;
    bool m_anchored = false;
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
            if (latency > m_largestLatency.load(std::memory_order_relaxed)) {
                m_largestLatency.store(latency, std::memory_order_relaxed);
            }
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
        const double anchor = static_cast<double>(now) + latency * 1e9 -
                              static_cast<double>(m_streamFrames) / rate * 1e9;
        if (!m_anchored || m_latency == 0.0) {
            m_anchorNs = anchor;
            m_anchored = m_latency != 0.0;
        } else {
            m_anchorNs += (anchor - m_anchorNs) * kAnchorSmoothing;
        }
        const auto heardAt = [&](unsigned long frame) {
            return static_cast<std::int64_t>(
                m_anchorNs + static_cast<double>(m_streamFrames + frame) / rate * 1e9);
        };
        unsigned long done = 0;
        while (!m_paused.load(std::memory_order_relaxed) && done < frames) {
            const std::int64_t frameNs = heardAt(done);
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
                const std::int64_t startNs = heardAt(done);
                m_lastEndNs =
                    startNs + static_cast<std::int64_t>((usable / blockAlign) / rate * 1e9);
                m_heardEndNs.store(m_lastEndNs, std::memory_order_relaxed);
                m_completed.Push(
                    {m_current.header, m_lastEndNs - m_leadNs - kWakeAllowanceNs, nullptr});
                m_currentReturned = true;
            }
            const unsigned long left = (usable - m_offset) / blockAlign;
            const unsigned long count = std::min(left, frames - done);
            if (count > 0) {
                std::memcpy(out + done * blockAlign, m_current.samples + m_offset,
                            count * blockAlign);
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
        m_streamFrames += frames;
        LeaveCallback();
        return paContinue;
    }

    /// Hands the current and every submitted header to the layer thread as finished now.
    void ReturnEverything(std::int64_t now) {
        if (m_current.header != nullptr) {
            m_completed.Push(
                {m_currentReturned ? nullptr : m_current.header, now, m_current.samples});
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

unsigned WaveOutGetNumDevs() {
    return CountDevices(true);
}

MmResult WaveOutGetDevCaps(unsigned device, WaveOutCaps* caps, unsigned size) {
    return GetDevCaps(device, caps, size, true);
}

MmResult WaveOutOpen(WaveOutHandle* device, unsigned deviceId, const WaveFormat* format,
                     WaveOutProc callback, std::uintptr_t instance, unsigned flags) {
    return OpenDevice(device, deviceId, format, callback, instance, flags);
}

MmResult WaveOutPrepareHeader(WaveOutHandle device, WaveHeader* header, unsigned) {
    return PrepareHeader(device, header);
}

MmResult WaveOutUnprepareHeader(WaveOutHandle device, WaveHeader* header, unsigned) {
    return UnprepareHeader(device, header);
}

MmResult WaveOutWrite(WaveOutHandle device, WaveHeader* header, unsigned) {
    if (device == nullptr) {
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
    // A header that begins and ends a loop plays its samples loops times, one copy after the
    // other; a loop count of 0 plays them once.
    const bool looped = (flags & kWaveHeaderBeginLoop) != 0 && (flags & kWaveHeaderEndLoop) != 0;
    const std::uint64_t repeats = looped ? std::max<std::uint32_t>(header->loops, 1) : 1;
    const std::uint64_t length = header->bufferLength * repeats;
    if (length > kMaxSubmissionBytes) {
        return kMmNoMemory;
    }
    auto* samples = new (std::nothrow) char[length == 0 ? 1 : length];
    if (samples == nullptr) {
        return kMmNoMemory;
    }
    for (std::uint64_t i = 0; i < repeats; ++i) {
        std::memcpy(samples + i * header->bufferLength, header->data, header->bufferLength);
    }
    // Under the lock that a dying stream takes to hand every header back, so that no write
    // slips in after it and waits for ever.
    std::lock_guard lock(device->m_submitLock);
    if (device->m_dead.load()) {
        delete[] samples;
        return kMmNoDriver;
    }
    header->flags = (flags & ~kWaveHeaderDone) | kWaveHeaderInQueue;
    device->m_queued.fetch_add(1);
    // A request older than the lead would start late anyway; it is not trusted further back.
    const std::int64_t now = NowNs();
    const std::int64_t requested =
        header->requestedNs > 0 ? std::clamp(header->requestedNs, now - device->m_leadNs, now)
                                : now;
    if (!device->m_submitted.Push(
            {header, requested, samples, static_cast<std::uint32_t>(length)})) {
        device->m_queued.fetch_sub(1);
        header->flags = flags;
        delete[] samples;
        return kMmNoMemory;
    }
    device->Wake();
    return kMmNoError;
}

MmResult WaveOutPause(WaveOutHandle device) {
    if (device == nullptr) {
        return kMmInvalidHandle;
    }
    device->m_paused = true;
    return kMmNoError;
}

MmResult WaveOutRestart(WaveOutHandle device) {
    if (device == nullptr) {
        return kMmInvalidHandle;
    }
    device->m_paused = false;
    return kMmNoError;
}

MmResult WaveOutReset(WaveOutHandle device) {
    if (device == nullptr) {
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
    if (device == nullptr) {
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
    CloseDevice(device);
    return kMmNoError;
}

MmResult WaveOutGetPosition(WaveOutHandle device, std::uint32_t* samples) {
    if (device == nullptr) {
        return kMmInvalidHandle;
    }
    if (samples == nullptr) {
        return kMmInvalidParam;
    }
    *samples = static_cast<std::uint32_t>(device->m_playedFrames.load());
    return kMmNoError;
}
