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

struct PlainForm {
    char32_t from;
    std::string_view to;
};

constexpr PlainForm kPlainForms[] = {
    {U'\u00A0', " "},  {U'\u00AB', "\""}, {U'\u00BB', "\""},  {U'\u2010', "-"},  {U'\u2011', "-"},
    {U'\u2012', "-"},  {U'\u2013', "-"},  {U'\u2014', "-"},   {U'\u2015', "-"},  {U'\u2018', "'"},
    {U'\u2019', "'"},  {U'\u201A', "'"},  {U'\u201B', "'"},   {U'\u201C', "\""}, {U'\u201D', "\""},
    {U'\u201E', "\""}, {U'\u201F', "\""}, {U'\u2026', "..."}, {U'\u2032', "'"},  {U'\u2033', "\""},
    {U'\u2039', "'"},  {U'\u203A', "'"},  {U'\u2212', "-"}};

/// Length of the UTF-8 sequence a lead byte starts, 0 for a byte that cannot start one.
std::size_t SequenceLength(unsigned char lead) {
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        return 2;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return 3;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        return 4;
    }
    return 0;
}

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

std::string PlainPracticeText(std::string_view utf8) {
    std::string plain;
    plain.reserve(utf8.size());
    std::size_t i = 0;
    while (i < utf8.size()) {
        const auto lead = static_cast<unsigned char>(utf8[i]);
        const std::size_t length = SequenceLength(lead);
        if (length == 1) {
            plain += utf8[i++];
            continue;
        }
        char32_t code = length == 2 ? lead & 0x1Fu : length == 3 ? lead & 0x0Fu : lead & 0x07u;
        std::size_t taken = 1;
        while (length != 0 && taken < length && i + taken < utf8.size() &&
               (static_cast<unsigned char>(utf8[i + taken]) & 0xC0u) == 0x80u) {
            code = (code << 6) | (static_cast<unsigned char>(utf8[i + taken]) & 0x3Fu);
            ++taken;
        }
        i += taken;
        if (taken != length) {
            continue;  // malformed: what was read of it is dropped
        }
        for (const PlainForm& form : kPlainForms) {
            if (form.from == code) {
                plain += form.to;
                break;
            }
        }
    }
    return plain;
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
