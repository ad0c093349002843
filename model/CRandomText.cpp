// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CRandomText.h"

#include <array>

#include "model/CMorseAlphabet.h"

namespace {

constexpr int kCharacterModulus = 96;  // rand() % 96 makes every selectable code equally likely
constexpr int kHighestControl = 32;
constexpr int kLetterModulus = 91;  // letters are drawn as codes 65..90 of rand() % 91
constexpr char kFirstLetterCode = 65;

int DrawAtLeast(CCrtRandom& rng, int modulus, int lowest) {
    int value = 0;
    do {
        value = rng.Next() % modulus;
    } while (value < lowest);
    return value;
}

char LetterFrom(CCrtRandom& rng, int draw) {
    if (draw < kFirstLetterCode) {
        draw = DrawAtLeast(rng, kLetterModulus, kFirstLetterCode);
    }
    return static_cast<char>(draw);
}

}  // namespace

std::string CRandomText::BuildSelection(const std::function<bool(char)>& isSelected) {
    std::string selection;
    for (const char c : CMorseAlphabet::SelectableCharacters()) {
        if (isSelected(c)) {
            selection += c;
        }
    }
    return selection;
}

std::string CRandomText::Groups(std::string_view selection, int count, int size, CCrtRandom& rng,
                                const StepFn& step) {
    std::string text;
    if (selection.empty()) {
        return text;
    }
    for (int group = 0; group < count; ++group) {
        std::string word;
        for (;;) {
            const int c = rng.Next() % kCharacterModulus;
            if (c <= kHighestControl) {
                continue;
            }
            if (selection.find(static_cast<char>(c)) != std::string_view::npos) {
                word += static_cast<char>(c);
            }
            if (static_cast<long long>(word.size()) >= size) {
                break;
            }
        }
        text += word;
        text += ' ';
        if (step) {
            step();
        }
    }
    return text;
}

std::string CRandomText::CallSign(std::uint32_t seed) {
    CCrtRandom rng(seed);
    int length = DrawAtLeast(rng, 7, 3);
    const int d = DrawAtLeast(rng, 4, 2);
    int digitPosition = d;
    if (d == 3 && length == 3) {
        digitPosition = 2;
    }
    if (digitPosition == 2 && length == 6) {
        digitPosition = 3;
    }
    static constexpr std::array<char, 5> kPrefixes = {'?', 'A', 'K', 'W', 'N'};
    const char prefix = kPrefixes[static_cast<std::size_t>(DrawAtLeast(rng, 5, 1))];
    if (prefix == 'A') {
        if (length < 4) {
            length = DrawAtLeast(rng, 7, 4);
        }
        digitPosition = 3;
    }
    const char digit = static_cast<char>('0' + rng.Next() % 10);
    std::array<int, 5> draws{};
    for (int& draw : draws) {
        draw = rng.Next() % kLetterModulus;
    }

    std::string sign(1, prefix);
    for (int position = 2; position <= length; ++position) {
        if (position == digitPosition) {
            sign += digit;
        } else if (position == 2 && prefix == 'A') {
            sign += static_cast<char>(DrawAtLeast(rng, 77, kFirstLetterCode));  // A to L
        } else {
            sign += LetterFrom(rng, draws[static_cast<std::size_t>(position - 2)]);
        }
    }
    return sign;
}

std::string CRandomText::CallSigns(int count, std::int64_t startTime, const StepFn& step) {
    std::string text;
    std::int64_t attempt = 0;
    for (int accepted = 0; accepted < count;) {
        ++attempt;
        const auto seed = static_cast<std::uint32_t>(startTime - 10 * attempt);
        const std::string sign = CallSign(seed);
        if (text.find(sign) != std::string::npos) {
            continue;
        }
        text += sign;
        text += ' ';
        ++accepted;
        if (step) {
            step();
        }
    }
    return text;
}
