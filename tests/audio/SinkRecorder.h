// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Records what reached the test sound server's null sink (through its monitor) and finds the
// tones in it, so tests judge what a listener would have heard.

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

constexpr int kSinkRate = 48000;

struct HeardTone {
    double startMs = 0.0;
    double lengthMs = 0.0;
    double frequency = 0.0;
};

class SinkRecorder {
public:
    SinkRecorder() {
        m_pipe = popen("exec parec -d nullsink.monitor --rate=48000 --channels=1 --format=s16le "
                       "--latency-msec=5 2>/dev/null",
                       "r");
        if (m_pipe == nullptr) {
            return;
        }
        m_reader = std::thread([this] { Read(); });
        // The recording counts only once data flows.
        for (int i = 0; i < 300 && SampleCount() < kSinkRate / 10; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    ~SinkRecorder() { Stop(); }
    SinkRecorder(const SinkRecorder&) = delete;
    SinkRecorder& operator=(const SinkRecorder&) = delete;

    bool Running() const { return m_pipe != nullptr && SampleCount() > 0; }
    std::size_t SampleCount() const {
        std::lock_guard lock(m_lock);
        return m_samples.size();
    }
    /// Stops recording and returns everything recorded.
    std::vector<std::int16_t> Stop() {
        if (m_pipe != nullptr) {
            std::this_thread::sleep_for(std::chrono::milliseconds(150));
            m_stop = true;
            pclose(m_pipe);
            m_pipe = nullptr;
        }
        if (m_reader.joinable()) {
            m_reader.join();
        }
        std::lock_guard lock(m_lock);
        return m_samples;
    }

    /// Tones: runs above 4% of full scale, joined across the quiet instants near zero
    /// crossings (shorter than 1 ms).
    static std::vector<HeardTone> FindTones(const std::vector<std::int16_t>& samples) {
        constexpr int kThreshold = 1300;
        constexpr std::size_t kJoin = kSinkRate / 1000;
        std::vector<HeardTone> tones;
        std::size_t i = 0;
        while (i < samples.size()) {
            while (i < samples.size() && std::abs(samples[i]) < kThreshold) {
                ++i;
            }
            if (i >= samples.size()) {
                break;
            }
            const std::size_t start = i;
            std::size_t last = i;
            while (i < samples.size() && i - last <= kJoin) {
                if (std::abs(samples[i]) >= kThreshold) {
                    last = i;
                }
                ++i;
            }
            std::size_t crossings = 0;
            for (std::size_t k = start + 1; k <= last; ++k) {
                if ((samples[k - 1] < 0) != (samples[k] < 0)) {
                    ++crossings;
                }
            }
            HeardTone tone;
            tone.startMs = 1000.0 * static_cast<double>(start) / kSinkRate;
            tone.lengthMs = 1000.0 * static_cast<double>(last + 1 - start) / kSinkRate;
            tone.frequency = crossings / 2.0 / (tone.lengthMs / 1000.0);
            tones.push_back(tone);
            i = last + 1;
        }
        return tones;
    }

private:
    void Read() {
        std::int16_t block[512];
        while (!m_stop) {
            const std::size_t got = std::fread(block, sizeof block[0], 512, m_pipe);
            if (got == 0) {
                break;
            }
            std::lock_guard lock(m_lock);
            m_samples.insert(m_samples.end(), block, block + got);
        }
    }

    std::FILE* m_pipe = nullptr;
    std::thread m_reader;
    std::atomic<bool> m_stop{false};
    mutable std::mutex m_lock;
    std::vector<std::int16_t> m_samples;
};
