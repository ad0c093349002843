// SPDX-License-Identifier: GPL-3.0-or-later
// Encoding must stay linear in the text length: ns per character for a 100 KB and a 1 MB
// practice text, and their ratio (goal: at most 1.2). Each conversion reads Double Space from
// the profile first, as the document does.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>

#include "model/CMemoryProfile.h"
#include "model/CMorseAlphabet.h"
#include "model/CProfileSettings.h"
#include "model/CRandomText.h"

namespace {

double NanosecondsPerCharacter(const std::string& text, CProfileSettings& settings) {
    using Clock = std::chrono::steady_clock;
    constexpr int kRounds = 7;
    double best = 1e300;
    std::size_t sink = 0;
    for (int round = 0; round < kRounds; ++round) {
        const auto start = Clock::now();
        const std::string code = CMorseAlphabet::TextToCode(text, settings.GetDblSpace() != 0);
        const auto elapsed = std::chrono::duration<double, std::nano>(Clock::now() - start);
        sink += code.size();
        best = std::min(best, elapsed.count() / static_cast<double>(text.size()));
    }
    return sink > 0 ? best : 0.0;
}

std::string PracticeText(std::size_t length) {
    CCrtRandom rng(1);
    const std::string selection(CMorseAlphabet::SelectableCharacters());
    std::string text;
    while (text.size() < length) {
        text += CRandomText::Groups(selection, 1000, 5, rng);
    }
    text.resize(length);
    return text;
}

}  // namespace

int main() {
    CMemoryProfile profile;
    CProfileSettings settings(profile);
    const double small = NanosecondsPerCharacter(PracticeText(100'000), settings);
    const double large = NanosecondsPerCharacter(PracticeText(1'000'000), settings);
    std::printf("encode 100 KB: %.2f ns/char\n", small);
    std::printf("encode 1 MB:   %.2f ns/char\n", large);
    std::printf("ratio 1 MB / 100 KB: %.2f (goal: at most 1.2)\n", large / small);
    return 0;
}
