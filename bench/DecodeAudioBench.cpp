// SPDX-License-Identifier: GPL-3.0-or-later
// Decodes a one-hour WAV file rendered by the trainer (as `tonwerk-cli decode-audio` does) and
// compares it with only reading the same file's samples, both in the same run, each in its own
// child process so that its peak memory is its own. Goals: at least 500 times real time, at
// most 32 MB peak memory.
// Usage: bench_decode_audio [FOLDER] [SECONDS]

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "sound/CCodeWaveGen.h"
#include "training/CCopyScorer.h"
#include "training/CPcmWaveReader.h"
#include "training/DecodeWave.h"

namespace {

constexpr std::size_t kPieceFrames = 1 << 15;
constexpr int kWordsPerMinute = 20;

const char* const kWords[] = {"PARIS", "CQ",   "DE",    "K5AB", "73",   "QTH", "BERLIN", "RST",
                              "599",   "NAME", "HANS",  "?",    "TEST", "5NN", "AGN",    "PSE",
                              "=",     "WX",   "SUNNY", "TEMP", "20C",  "/",   "ANT",    "DIPOLE"};

/// A practice text of words of every kind that renders to at least the given length.
std::string PracticeText(double seconds) {
    CCodeWaveGen generator;
    generator.SetWordsPerMinute(kWordsPerMinute);
    const double bytesPerSecond = 2.0 * 11025.0;
    std::string text;
    std::size_t i = 0;
    for (;;) {
        for (int n = 0; n < 100; ++n, ++i) {
            text += kWords[(i * 7 + i / 3) % std::size(kWords)];
            text += ' ';
        }
        generator.SetText(text);
        if (static_cast<double>(generator.RenderedBytes()) >= seconds * bytesPerSecond) {
            return text;
        }
    }
}

struct Run {
    double seconds = 0.0;
    long peakKilobytes = 0;
    double accuracy = 0.0;
};

/// Runs work in a child process; its result comes back through a pipe, its peak memory from
/// the kernel's account of the child.
template <class Work>
Run InChild(Work work) {
    int fds[2];
    if (pipe(fds) != 0) {
        std::perror("pipe");
        std::exit(1);
    }
    const pid_t child = fork();
    if (child == 0) {
        close(fds[0]);
        const auto start = std::chrono::steady_clock::now();
        Run run;
        run.accuracy = work();
        run.seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        if (write(fds[1], &run, sizeof run) != sizeof run) {
            _exit(1);
        }
        _exit(0);
    }
    close(fds[1]);
    Run run;
    if (read(fds[0], &run, sizeof run) != sizeof run) {
        std::fprintf(stderr, "the measuring child failed\n");
        std::exit(1);
    }
    close(fds[0]);
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    run.peakKilobytes = usage.ru_maxrss;
    return run;
}

}  // namespace

int main(int argc, char** argv) {
    const std::filesystem::path folder = argc > 1 ? argv[1] : ".";
    const double seconds = argc > 2 ? std::strtod(argv[2], nullptr) : 3600.0;
    const std::filesystem::path wav =
        folder / ("tonwerk-decode-bench-" + std::to_string(getpid()) + ".wav");

    const std::string text = PracticeText(seconds);
    {
        CCodeWaveGen generator;
        generator.SetText(text);
        generator.SetWordsPerMinute(kWordsPerMinute);
        generator.SetFolder("");
        generator.SetFileName(wav.string());
        generator.GenerateFile();
        if (!generator.LastError().empty()) {
            std::fprintf(stderr, "render failed: %s\n", generator.LastError().c_str());
            return 1;
        }
    }
    const double audioSeconds =
        static_cast<double>(CPcmWaveReader(wav.string()).Frames()) / 11025.0;

    const Run reading = InChild([&] {
        CPcmWaveReader reader(wav.string());
        std::vector<float> piece(kPieceFrames);
        double sum = 0.0;  // touched, so the reading is not optimized away
        while (const std::size_t frames = reader.Read(piece)) {
            sum += piece[frames / 2];
        }
        return sum * 0.0;
    });
    const Run decoding = InChild(
        [&] { return CCopyScorer::Score(text, DecodeWaveFile(wav.string()).text).Accuracy(); });
    std::filesystem::remove(wav);

    std::printf("audio: %.0f s (%.1f MB of 16-bit PCM, 11025 Hz, %d WPM nominal)\n", audioSeconds,
                audioSeconds * 2 * 11025 / 1e6, kWordsPerMinute);
    std::printf("baseline, reading the samples: %7.3f s  %8.0fx real time  peak %6.1f MB\n",
                reading.seconds, audioSeconds / reading.seconds, reading.peakKilobytes / 1024.0);
    std::printf("decoding (read + envelope + decoder): %7.3f s  %8.0fx real time  peak %6.1f MB\n",
                decoding.seconds, audioSeconds / decoding.seconds, decoding.peakKilobytes / 1024.0);
    std::printf("decoding / reading time: %.2f; accuracy %.2f %%\n",
                decoding.seconds / reading.seconds, decoding.accuracy);
    std::printf("goals: >= 500x real time %s, <= 32 MB peak %s\n",
                audioSeconds / decoding.seconds >= 500 ? "met" : "MISSED",
                decoding.peakKilobytes <= 32 * 1024 ? "met" : "MISSED");
    return 0;
}
