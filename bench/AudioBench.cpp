// SPDX-License-Identifier: GPL-3.0-or-later
// Keying accuracy and idle cost of the audio layer, measured at a sound server's sink.
// Needs a server with a null sink named "nullsink" (tests/support/pulse-fixture.sh); prints
// figures, asserts nothing.
#include "audio/CPomelSyncPlay.h"

#include "SinkRecorder.h"

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kTones = 200;
constexpr double kDitSeconds = 0.06;  // 20 WPM
constexpr double kPitch = 700.0;

double Percentile(std::vector<double> values, double fraction) {
    std::sort(values.begin(), values.end());
    const auto index = static_cast<std::size_t>(fraction * static_cast<double>(values.size() - 1));
    return values[index];
}

double CpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

int Keying() {
    sched_param parameter{};
    parameter.sched_priority = 5;
    const bool realtime = pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameter) == 0;

    std::mt19937 random(20);
    std::vector<double> tones;
    std::vector<int> gaps;
    for (int i = 0; i < kTones; ++i) {
        tones.push_back(random() % 3 == 0 ? 3 * kDitSeconds : kDitSeconds);
        const int kind = static_cast<int>(random() % 10);
        gaps.push_back(static_cast<int>(1000 * kDitSeconds * (kind < 6 ? 1 : kind < 9 ? 3 : 7)));
    }
    SinkRecorder recorder;
    if (!recorder.Running()) {
        std::fprintf(stderr, "no recording from nullsink.monitor: is the sound server up?\n");
        return 1;
    }
    CPomelSyncPlay player;
    player.OpenDevice();
    if (player.GetLastResult() != kMmNoError) {
        std::fprintf(stderr, "cannot open the output: %s\n",
                     WaveGetErrorText(player.GetLastResult()).c_str());
        return 1;
    }
    std::vector<double> writeNs;
    for (int i = 0; i < kTones; ++i) {
        writeNs.push_back(static_cast<double>(
            std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch())
                .count()));
        player.PlayTone(kPitch, tones[static_cast<std::size_t>(i)]);
        std::this_thread::sleep_for(std::chrono::milliseconds(gaps[static_cast<std::size_t>(i)]));
    }
    player.CloseDevice();
    const double anchor = recorder.AnchorNs();
    const auto heard = SinkRecorder::FindTones(recorder.Stop());
    if (heard.size() != tones.size()) {
        std::printf("heard %zu tones of %d: the recording is not usable\n", heard.size(), kTones);
        return 1;
    }
    std::vector<double> toneErrors;
    std::vector<double> gapErrors;
    std::vector<double> onsets;
    for (std::size_t i = 0; i < heard.size(); ++i) {
        toneErrors.push_back(std::abs(heard[i].lengthMs - tones[i] * 1000));
        if (i + 1 < heard.size()) {
            const double gap = heard[i + 1].startMs - heard[i].startMs - heard[i].lengthMs;
            gapErrors.push_back(std::abs(gap - gaps[i]));
        }
        onsets.push_back((anchor + heard[i].startMs * 1e6 - writeNs[i]) / 1e6);
    }
    std::printf("keying at 20 WPM, %d tones through CPomelSyncPlay and sleeps%s\n", kTones,
                realtime ? " (keying thread real-time)" : "");
    std::printf("  tone length error: max %.3f ms, p99 %.3f ms, median %.3f ms\n",
                Percentile(toneErrors, 1.0), Percentile(toneErrors, 0.99),
                Percentile(toneErrors, 0.5));
    std::printf("  gap length error:  max %.3f ms, p99 %.3f ms, median %.3f ms\n",
                Percentile(gapErrors, 1.0), Percentile(gapErrors, 0.99),
                Percentile(gapErrors, 0.5));
    std::printf("  write to onset at the sink (upper bound): median %.1f ms, max %.1f ms\n",
                Percentile(onsets, 0.5), Percentile(onsets, 1.0));
    return 0;
}

int IdleCpu() {
    CPomelSyncPlay player;
    player.OpenDevice();
    if (player.GetLastResult() != kMmNoError) {
        return 1;
    }
    constexpr double kSeconds = 5.0;
    const double before = CpuSeconds();
    std::this_thread::sleep_for(std::chrono::duration<double>(kSeconds));
    const double used = CpuSeconds() - before;
    player.CloseDevice();
    std::printf("open idle output: %.2f %% of one core over %.0f s\n", 100.0 * used / kSeconds,
                kSeconds);
    return 0;
}

}  // namespace

int main() {
    // Run on its own (scripts/bench), it starts a private server and stops it afterwards.
    std::string started;
    if (std::getenv("PULSE_SERVER") == nullptr) {
        started = "/tmp/tonwerk-bench-pulse-" + std::to_string(getpid());
        const std::string script =
            std::string(TONWERK_SOURCE_DIR) + "/tests/support/pulse-fixture.sh";
        if (std::system((script + " start " + started + " >/dev/null 2>&1").c_str()) != 0) {
            std::printf("no sound server could be started; audio figures skipped\n");
            return 0;
        }
        setenv("XDG_RUNTIME_DIR", started.c_str(), 1);
        setenv("PULSE_RUNTIME_PATH", (started + "/pulse").c_str(), 1);
        setenv("PULSE_SERVER", ("unix:" + started + "/pulse/native").c_str(), 1);
        started = script + " stop " + started + " >/dev/null 2>&1";
    }
    const int keying = Keying();
    const int idle = IdleCpu();
    if (!started.empty()) {
        std::system(started.c_str());
    }
    // Figures only: a failed measurement is reported above, not as a failure of the run.
    (void)keying;
    (void)idle;
    return 0;
}
