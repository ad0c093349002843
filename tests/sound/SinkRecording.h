// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

/// Records what reaches the test sound server's null sink (its monitor), 48000 Hz mono 16-bit,
/// through parec, from construction until Stop.
class SinkRecording {
public:
    static constexpr int kRate = 48000;

    explicit SinkRecording(std::string path);
    ~SinkRecording();
    SinkRecording(const SinkRecording&) = delete;
    SinkRecording& operator=(const SinkRecording&) = delete;

    bool Started() const { return m_pid > 0; }

    /// Ends the recording and returns its samples.
    std::vector<short> Stop();

private:
    std::string m_path;
    pid_t m_pid = -1;
};

/// One stretch of sound in a recording, in seconds from the recording's start.
struct Segment {
    double start;
    double end;
};

/// The stretches where the signal is louder than a tenth of the loudest 1 ms window, with
/// edges found to the sample; quiet dips shorter than 2 ms (zero crossings) do not split them.
std::vector<Segment> FindTones(const std::vector<short>& samples);
