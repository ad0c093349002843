// SPDX-License-Identifier: GPL-3.0-or-later
// Renders a 100,000-character practice text at 20 WPM as MP3 and as Ogg Vorbis and compares, in
// the same run:
//  - the streaming render (text to file, in a child process whose peak memory is read) with the
//    same libsndfile encoder fed the same samples already rendered into memory, the better of
//    two runs of each;
//  - its real-time factor with ebook2cw's on the same text at its fastest setting.
// Usage: bench_soundfile [CHARACTERS] [FOLDER]

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench/PracticeText.h"
#include "sound/CCodeWaveGen.h"
#include "sound/CSoundFileWriter.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kWordsPerMinute = 20;
constexpr int kSamplesPerSec = 11025;
// ebook2cw's default MP3 bit rate; both programs encode at it.
constexpr int kBitRate = 16;

double Seconds(Clock::time_point since) {
    return std::chrono::duration<double>(Clock::now() - since).count();
}

double CpuSeconds(const rusage& usage) {
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

/// Processor time of this process or of its waited-for children so far.
double CpuSeconds(int who) {
    rusage usage{};
    getrusage(who, &usage);
    return CpuSeconds(usage);
}

/// Wall time, and processor time: on a machine shared with other work the processor time is the
/// steadier measure of what the work itself costs.
struct Run {
    double seconds = 0;
    double cpuSeconds = 0;
    double peakMegabytes = 0;
    bool ok = false;
};

/// The streaming render of the text to path, in a child process so that its peak memory is its
/// own.
Run StreamingRender(const std::string& text, const fs::path& path, SoundFileType type) {
    const auto start = Clock::now();
    const pid_t child = fork();
    if (child == 0) {
        CCodeWaveGen generator;
        generator.SetText(text);
        generator.SetWordsPerMinute(kWordsPerMinute);
        generator.SetFolder("");
        generator.SetFileName(path.string());
        generator.SetFileType(type);
        generator.SetQuality({.mp3BitRate = kBitRate, .quality = 0});
        generator.GenerateFile();
        if (!generator.LastError().empty()) {
            std::fprintf(stderr, "render failed: %s\n", generator.LastError().c_str());
            _exit(1);
        }
        _exit(0);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    return {Seconds(start), CpuSeconds(usage), static_cast<double>(usage.ru_maxrss) / 1024.0,
            WIFEXITED(status) && WEXITSTATUS(status) == 0};
}

/// The encoder alone: the same samples, rendered into memory beforehand, written to path.
Run EncodeFromMemory(const std::vector<std::byte>& samples, const fs::path& path,
                     SoundFileType type) {
    const auto start = Clock::now();
    const double cpu = CpuSeconds(RUSAGE_SELF);
    CSoundFileWriter writer;
    const bool ok = writer.Open(path.string(), type, kSamplesPerSec, 1,
                                {.mp3BitRate = kBitRate, .quality = 0}) &&
                    writer.WriteLittleEndian(samples) && writer.Close();
    return {Seconds(start), CpuSeconds(RUSAGE_SELF) - cpu, 0, ok};
}

/// ebook2cw at its fastest MP3 setting (or its Ogg Vorbis output) on the same text.
Run Ebook2cw(const fs::path& folder, const fs::path& textFile, bool ogg) {
    const std::string command = "cd '" + folder.string() + "' && HOME='" + folder.string() +
                                "' ebook2cw -w " + std::to_string(kWordsPerMinute) + " -b " +
                                std::to_string(kBitRate) + " -q 9 " + (ogg ? "-O " : "") +
                                "-o ebook '" + textFile.string() + "' >/dev/null 2>&1";
    const auto start = Clock::now();
    const double cpu = CpuSeconds(RUSAGE_CHILDREN);
    const int status = std::system(command.c_str());
    return {Seconds(start), CpuSeconds(RUSAGE_CHILDREN) - cpu, 0, status == 0};
}

/// Seconds of sound in the MP3 files ebook2cw wrote, from their size at the constant bit rate.
double Ebook2cwSoundSeconds(const fs::path& folder) {
    double seconds = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with("ebook") && entry.path().extension() == ".mp3") {
            seconds += static_cast<double>(fs::file_size(entry.path())) * 8 / 1000 / kBitRate;
        }
    }
    return seconds;
}

}  // namespace

int main(int argc, char** argv) {
    const std::size_t characters = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 100000;
    const fs::path folder =
        fs::path(argc > 2 ? argv[2] : ".") / ("tonwerk-bench-" + std::to_string(getpid()));
    fs::create_directories(folder);
    const std::string text = PracticeText(characters);
    const fs::path textFile = folder / "text.txt";
    std::ofstream(textFile) << text;

    // The streaming renders come first, forked while this process is still small, so that each
    // child's peak memory is the render's own.
    const SoundFileType types[] = {SoundFileType::kMp3, SoundFileType::kOggVorbis};
    Run streams[std::size(types)];
    for (std::size_t i = 0; i < std::size(types); ++i) {
        const std::string name = "stream." + std::string(SoundFileTypeOf(types[i]).extension);
        streams[i] = StreamingRender(text, folder / name, types[i]);
    }

    CCodeWaveGen generator;
    generator.SetText(text);
    generator.SetWordsPerMinute(kWordsPerMinute);
    std::vector<std::byte> samples(static_cast<std::size_t>(generator.RenderedBytes()));
    std::byte* out = samples.data();
    const int blocksPerDit = CCodeWaveGen::BlocksPerDit(kWordsPerMinute);
    for (const char c : text) {
        out = generator.RenderCharacter(out, c, blocksPerDit);
    }
    const double soundSeconds = static_cast<double>(samples.size()) / 2 / kSamplesPerSec;
    std::printf("text: %zu characters at %d WPM, %.0f s of sound\n", characters, kWordsPerMinute,
                soundSeconds);

    int failures = 0;
    for (std::size_t i = 0; i < std::size(types); ++i) {
        const bool ogg = types[i] == SoundFileType::kOggVorbis;
        const std::string extension = ogg ? ".ogg" : ".mp3";
        // A second round of both, the better time of each counting: the machine is shared.
        const fs::path streamed = folder / ("stream" + extension);
        const fs::path encoded = folder / ("memory" + extension);
        Run memory = EncodeFromMemory(samples, encoded, types[i]);
        Run stream = StreamingRender(text, streamed, types[i]);
        const Run again = EncodeFromMemory(samples, encoded, types[i]);
        memory.seconds = std::min(memory.seconds, again.seconds);
        memory.cpuSeconds = std::min(memory.cpuSeconds, again.cpuSeconds);
        memory.ok = memory.ok && again.ok;
        stream.seconds = std::min(stream.seconds, streams[i].seconds);
        stream.cpuSeconds = std::min(stream.cpuSeconds, streams[i].cpuSeconds);
        stream.peakMegabytes = streams[i].peakMegabytes;
        stream.ok = stream.ok && streams[i].ok;
        const Run ebook = Ebook2cw(folder, textFile, ogg);
        if (!stream.ok || !memory.ok || !ebook.ok) {
            std::fprintf(stderr, "%s: a run failed\n", extension.c_str());
            ++failures;
            continue;
        }
        // ebook2cw's Ogg files have no fixed bit rate: its sound is taken as long as its MP3's.
        const double ebookSound = Ebook2cwSoundSeconds(folder);
        std::printf("%s (wall s / processor s)\n", ogg ? "Ogg Vorbis" : "MP3");
        std::printf(
            "  streaming render:    %6.2f / %6.2f, real-time factor %.0f / %.0f, peak RSS "
            "%.1f MB (goal <= 32 MB)\n",
            stream.seconds, stream.cpuSeconds, soundSeconds / stream.seconds,
            soundSeconds / stream.cpuSeconds, stream.peakMegabytes);
        std::printf(
            "  encoder from memory: %6.2f / %6.2f; render/encoder %.3f / %.3f "
            "(goal <= 1.1)\n",
            memory.seconds, memory.cpuSeconds, stream.seconds / memory.seconds,
            stream.cpuSeconds / memory.cpuSeconds);
        std::printf(
            "  ebook2cw -q 9:       %6.2f / %6.2f, real-time factor %.0f / %.0f; render's "
            "against it %.2f / %.2f (goal >= 1)\n",
            ebook.seconds, ebook.cpuSeconds, ebookSound / ebook.seconds,
            ebookSound / ebook.cpuSeconds,
            (soundSeconds / stream.seconds) / (ebookSound / ebook.seconds),
            (soundSeconds / stream.cpuSeconds) / (ebookSound / ebook.cpuSeconds));
    }
    fs::remove_all(folder);
    return failures == 0 ? 0 : 1;
}
