// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Records the test sound server's null sink through a parec child on a pipe. Stopping ends the
// child first and joins the reader after it has seen the end of the pipe, so nothing is closed
// under a running read (clean under ThreadSanitizer). Tones are found with
// SinkRecorder::FindTones.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include "../audio/SinkRecorder.h"

class SinkListener {
public:
    SinkListener() {
        int fds[2];
        if (pipe(fds) != 0) {
            return;
        }
        m_pid = fork();
        if (m_pid == 0) {
            dup2(fds[1], 1);
            close(fds[0]);
            close(fds[1]);
            execlp("parec", "parec", "-d", "nullsink.monitor", "--rate=48000", "--channels=1",
                   "--format=s16le", "--latency-msec=5", static_cast<char*>(nullptr));
            _exit(127);
        }
        close(fds[1]);
        if (m_pid < 0) {
            close(fds[0]);
            return;
        }
        m_fd = fds[0];
        m_reader = std::thread([this] { Read(); });
        // The recording counts only once data flows.
        for (int i = 0; i < 300 && Count() < kSinkRate / 10; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    ~SinkListener() { Stop(); }
    SinkListener(const SinkListener&) = delete;
    SinkListener& operator=(const SinkListener&) = delete;

    bool Running() const { return m_pid > 0 && Count() > 0; }

    std::vector<std::int16_t> Stop() {
        if (m_pid > 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(150));
            kill(m_pid, SIGTERM);
            if (m_reader.joinable()) {
                m_reader.join();
            }
            waitpid(m_pid, nullptr, 0);
            close(m_fd);
            m_pid = -1;
        }
        std::lock_guard lock(m_lock);
        return m_samples;
    }

private:
    std::size_t Count() const {
        std::lock_guard lock(m_lock);
        return m_samples.size();
    }

    void Read() {
        std::vector<char> pending;
        char block[4096];
        for (;;) {
            const ssize_t got = read(m_fd, block, sizeof block);
            if (got <= 0) {
                return;
            }
            pending.insert(pending.end(), block, block + got);
            std::lock_guard lock(m_lock);
            std::size_t i = 0;
            for (; i + 1 < pending.size(); i += 2) {
                m_samples.push_back(
                    static_cast<std::int16_t>(static_cast<unsigned char>(pending[i]) |
                                              (static_cast<unsigned char>(pending[i + 1]) << 8)));
            }
            pending.erase(pending.begin(), pending.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }

    pid_t m_pid = -1;
    int m_fd = -1;
    std::thread m_reader;
    mutable std::mutex m_lock;
    std::vector<std::int16_t> m_samples;
};
