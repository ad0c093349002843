// SPDX-License-Identifier: GPL-3.0-or-later
// Keys "PARIS PARIS CQ DE K5AB" at 20 WPM with `tonwerk-cli play`, records what reaches the sound
// server's null sink and prints the largest error of any tone or gap against the worker's
// rhythm (tones of 1 or 3 dits, gaps made of whole-millisecond sleeps).
// Usage: bench_keying PATH-TO-tonwerk-cli   (with the test sound server's environment)

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "model/CodePatterns.h"
#include "model/CodeTiming.h"
#include "tests/audio/SinkRecorder.h"

namespace {

constexpr const char* kText = "PARIS PARIS CQ DE K5AB";
constexpr int kWordsPerMinute = 20;

struct Element {
    double toneMs;
    double gapAfterMs;  ///< silence until the next tone
};

// The worker's rhythm: tone, then the sleeps it takes before the next tone.
std::vector<Element> Rhythm() {
    const float d = DitSeconds(kWordsPerMinute);
    const auto ms = [](double value) { return std::floor(value); };
    std::vector<Element> elements;
    for (const char c : std::string(kText)) {
        for (const char e : LookupPattern(c)) {
            if (e == '.' || e == '-') {
                elements.push_back({1000.0 * (e == '.' ? d : d * 3), 0.0});
            } else if (e == ' ' && !elements.empty()) {
                elements.back().gapAfterMs += ms(d * 1000 * 3);
            }
            if (!elements.empty()) {
                elements.back().gapAfterMs += ms(d * 1000);
            }
        }
        if (!elements.empty()) {
            elements.back().gapAfterMs += ms(d * 1000);
        }
    }
    return elements;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s PATH-TO-tonwerk-cli\n", argv[0]);
        return 2;
    }
    SinkRecorder recorder;
    if (!recorder.Running()) {
        std::fprintf(stderr, "no recording from the sound server's null sink\n");
        return 1;
    }
    const std::string command = std::string(argv[1]) + " play --wpm " +
                                std::to_string(kWordsPerMinute) + " --pitch 750 '" + kText +
                                "' > /dev/null 2>&1";
    if (std::system(command.c_str()) != 0) {
        std::fprintf(stderr, "play failed\n");
        return 1;
    }
    const auto heard = SinkRecorder::FindTones(recorder.Stop());
    const auto expected = Rhythm();
    if (heard.size() != expected.size()) {
        std::fprintf(stderr, "heard %zu tones, expected %zu\n", heard.size(), expected.size());
        return 1;
    }
    double worstTone = 0.0;
    double worstGap = 0.0;
    for (std::size_t i = 0; i < heard.size(); ++i) {
        worstTone = std::max(worstTone, std::abs(heard[i].lengthMs - expected[i].toneMs));
        if (i + 1 < heard.size()) {
            const double gap = heard[i + 1].startMs - heard[i].startMs - heard[i].lengthMs;
            worstGap = std::max(worstGap, std::abs(gap - expected[i].gapAfterMs));
        }
    }
    const double total = heard.back().startMs + heard.back().lengthMs - heard.front().startMs;
    std::printf("text: \"%s\" at %d WPM, %zu tones\n", kText, kWordsPerMinute, heard.size());
    std::printf("largest tone error: %.2f ms\n", worstTone);
    std::printf("largest gap error:  %.2f ms (goal <= 0.5 ms for both)\n", worstGap);
    std::printf("first tone start to last tone end: %.1f ms\n", total);
    return 0;
}
