// SPDX-License-Identifier: GPL-3.0-or-later
#include "SinkRecording.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <thread>

SinkRecording::SinkRecording(std::string path) : m_path(std::move(path)) {
    m_pid = fork();
    if (m_pid == 0) {
        const int fd = open(m_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (fd < 0) {
            _exit(127);
        }
        dup2(fd, 1);
        execlp("parec", "parec", "-d", "nullsink.monitor", "--rate=48000", "--channels=1",
               "--format=s16le", "--latency-msec=5", static_cast<char*>(nullptr));
        _exit(127);
    }
    // Give the stream time to connect before anything is played.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
}

SinkRecording::~SinkRecording() {
    if (m_pid > 0) {
        Stop();
    }
    std::remove(m_path.c_str());
}

std::vector<short> SinkRecording::Stop() {
    if (m_pid > 0) {
        // Let the last of the sound reach the monitor.
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        kill(m_pid, SIGTERM);
        waitpid(m_pid, nullptr, 0);
        m_pid = -1;
    }
    std::ifstream in(m_path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::vector<short> samples(bytes.size() / 2);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<short>(static_cast<unsigned char>(bytes[2 * i]) |
                                        (static_cast<unsigned char>(bytes[2 * i + 1]) << 8));
    }
    return samples;
}

std::vector<Segment> FindTones(const std::vector<short>& samples) {
    int peak = 0;
    for (short s : samples) {
        peak = std::max(peak, std::abs(static_cast<int>(s)));
    }
    std::vector<Segment> tones;
    if (peak < 1000) {
        return tones;
    }
    const int threshold = peak / 10;
    const std::size_t bridge = SinkRecording::kRate / 500;  // 2 ms
    std::size_t lastLoud = 0;
    bool inTone = false;
    std::size_t start = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (std::abs(static_cast<int>(samples[i])) < threshold) {
            continue;
        }
        if (!inTone || i - lastLoud > bridge) {
            if (inTone) {
                tones.push_back({static_cast<double>(start) / SinkRecording::kRate,
                                 static_cast<double>(lastLoud + 1) / SinkRecording::kRate});
            }
            inTone = true;
            start = i;
        }
        lastLoud = i;
    }
    if (inTone) {
        tones.push_back({static_cast<double>(start) / SinkRecording::kRate,
                         static_cast<double>(lastLoud + 1) / SinkRecording::kRate});
    }
    return tones;
}
