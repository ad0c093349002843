// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CodePatterns.h"

#include <array>
#include <cmath>

namespace {

constexpr char kFirstCode = 32;
constexpr char kLastCode = 95;

// clang-format off
constexpr std::array<std::string_view, 64> kPatterns = {
    " ",        "...-.",    ".-..-.",   ".-.-..",   "...-..-",  "-.-.-",    ".-...",    ".----.",
    "-.--.",    "-.--.-",   "...-.-",   ".-.-.",    "--..--",   "-....-",   ".-.-.-",   "-..-.",
    "-----",    ".----",    "..---",    "...--",    "....-",    ".....",    "-....",    "--...",
    "---..",    "----.",    "---...",   "-.-.-.",   "",         "-...-",    "",         "..--..",
    "........", ".-",       "-...",     "-.-.",     "-..",      ".",        "..-.",     "--.",
    "....",     "..",       ".---",     "-.-",      ".-..",     "--",       "-.",       "---",
    ".--.",     "--.-",     ".-.",      "...",      "-",        "..-",      "...-",     ".--",
    "-..-",     "-.--",     "--..",     "",         "",         "",         "-.-",      "..--.-"};
// clang-format on

}  // namespace

std::string_view LookupPattern(char c) {
    if (c < kFirstCode || c > kLastCode) {
        return {};
    }
    return kPatterns[static_cast<std::size_t>(c - kFirstCode)];
}

std::string ToUpperAscii(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return upper;
}

std::int64_t CountUnits(std::string_view text, int farnsworthFactor) {
    std::int64_t count = 0;
    for (const char c : text) {
        for (const char element : LookupPattern(c)) {
            switch (element) {
                case ' ':
                    if (farnsworthFactor > 0) {
                        count = static_cast<std::int64_t>(
                            std::trunc(static_cast<double>(count) + 6.0 + 0.5 * farnsworthFactor));
                    } else {
                        count += 6;
                    }
                    break;
                case '-':
                    count += 3;
                    break;
                case '.':
                    count += 1;
                    break;
                default:
                    break;
            }
            count += 1;
        }
        if (farnsworthFactor > 0) {
            count += farnsworthFactor;
        }
        count += 1;
    }
    return count;
}
