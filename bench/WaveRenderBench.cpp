// SPDX-License-Identifier: GPL-3.0-or-later
// Renders a 100,000-character practice text at 20 WPM to a WAV file and compares the write
// rate with dd writing the same number of bytes into the same folder in the same run.
// Usage: bench_wave [FOLDER] [CHARACTERS]

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "bench/PracticeText.h"
#include "sound/CCodeWaveGen.h"

namespace {

double Seconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

}  // namespace

int main(int argc, char** argv) {
    const std::filesystem::path folder = argc > 1 ? argv[1] : ".";
    const std::size_t characters = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 100000;
    const std::filesystem::path wav =
        folder / ("tonwerk-bench-" + std::to_string(getpid()) + ".wav");
    const std::filesystem::path raw =
        folder / ("tonwerk-bench-" + std::to_string(getpid()) + ".dd");

    CCodeWaveGen generator;
    generator.SetText(PracticeText(characters));
    generator.SetWordsPerMinute(20);
    generator.SetFolder("");
    generator.SetFileName(wav.string());

    const auto start = std::chrono::steady_clock::now();
    generator.GenerateFile();
    const double renderSeconds = Seconds(start);
    if (!generator.LastError().empty()) {
        std::fprintf(stderr, "render failed: %s\n", generator.LastError().c_str());
        return 1;
    }
    const auto bytes = std::filesystem::file_size(wav);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);

    const std::string dd = "dd if=/dev/zero of='" + raw.string() +
                           "' bs=1M count=" + std::to_string(bytes) +
                           " iflag=count_bytes status=none";
    const auto ddStart = std::chrono::steady_clock::now();
    const int ddStatus = std::system(dd.c_str());
    const double ddSeconds = Seconds(ddStart);
    std::filesystem::remove(wav);
    std::filesystem::remove(raw);
    if (ddStatus != 0) {
        std::fprintf(stderr, "dd failed\n");
        return 1;
    }

    const double megabytes = static_cast<double>(bytes) / 1e6;
    std::printf("text: %zu characters at 20 WPM\n", characters);
    std::printf("file: %.1f MB in %.3f s = %.0f MB/s\n", megabytes, renderSeconds,
                megabytes / renderSeconds);
    std::printf("dd:   %.1f MB in %.3f s = %.0f MB/s\n", megabytes, ddSeconds,
                megabytes / ddSeconds);
    std::printf("ratio render/dd: %.2f (goal >= 0.8)\n", ddSeconds / renderSeconds);
    std::printf("peak RSS: %.1f MB (goal <= 32 MB)\n",
                static_cast<double>(usage.ru_maxrss) / 1024.0);
    return 0;
}
