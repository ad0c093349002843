// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CMorseAlphabet.h"

#include <array>

namespace {

// clang-format off
constexpr std::array<std::string_view, 26> kLetterPatterns = {
    ".-", "-...", "-.-.", "-..", ".", "..-.", "--.", "....", "..", ".---", "-.-", ".-..", "--",
    "-.", "---", ".--.", "--.-", ".-.", "...", "-", "..-", "...-", ".--", "-..-", "-.--", "--.."};

constexpr std::array<std::string_view, 10> kDigitPatterns = {
    "-----", ".----", "..---", "...--", "....-", ".....", "-....", "--...", "---..", "----."};

constexpr std::array<ProSign, 22> kProSigns = {{
    {'"',  ".-..-.",   "AF",  "Quotation Mark"},
    {'#',  ".-.-..",   "AL",  " Paragraph"},
    {'+',  ".-.-.",    "AR",  "End of Msg or Cross"},
    {'&',  ".-...",    "AS",  "Wait"},
    {'=',  "-...-",    "BT",  "Pause or Break"},
    {'/',  "-..-.",    "DN",  "Slant Bar"},
    {'-',  "-....-",   "DU",  "Hyphen or Dash"},
    {'@',  "........", "HH",  "Error"},
    {'_',  "..--.-",   "IQ",  "Underline or Underscore"},
    {'^',  "-.-",      "K",   "Invitation to Transmit"},
    {'%',  "-.-.-",    "KA",  "Starting Signal"},
    {'(',  "-.--.",    "KN",  "Open Parenthesis"},
    {')',  "-.--.-",   "KK",  "Close Parenthesis"},
    {';',  "-.-.-.",   "KR",  "Semicolon"},
    {'*',  "...-.-",   "SK",  "End of Work"},
    {'!',  "...-.",    "SN",  "Understood"},
    {'$',  "...-..-",  "SX",  "Dollar Sign"},
    {':',  "---...",   "OS",  "Colon"},
    {'\'', ".----.",   "WG",  "Apostrophe"},
    {'?',  "..--..",   "IMI", "Question Mark"},
    {',',  "--..--",   "MIM", "Comma"},
    {'.',  ".-.-.-",   "AAA", "Period"},
}};

struct GroupEntry {
    std::string_view group;
    std::string_view pattern;
};

// The reverse lookup in letter-group mode. "DE", "K" and "R" can never match because their
// patterns are letters, which are found first; they stay so the list reads as the signals do.
constexpr std::array<GroupEntry, 28> kLetterGroups = {{
    {"AF", ".-..-."}, {"AL", ".-.-.."}, {"AR", ".-.-."}, {"AS", ".-..."}, {"BI", "-....."},
    {"BT", "-...-"}, {"CQ", "-.-.--.-"}, {"CL", "-.-..-.."}, {"DE", "-..."}, {"DN", "-..-."},
    {"DU", "-....-"}, {"HH", "........"}, {"IQ", "..--.-"}, {"K", "-.-"}, {"KA", "-.-.-"},
    {"KK", "-.--.-"}, {"KN", "-.--."}, {"KR", "-.-.-."}, {"R", ".-."}, {"SK", "...-.-"},
    {"SN", "...-."}, {"SX", "...-..-"}, {"OS", "---..."}, {"WG", ".----."}, {"IMI", "..--.."},
    {"MIM", "--..--"}, {"AAA", ".-.-.-"}, {"SOS", "...---..."}}};

// The reverse lookup in plain mode; "^" is absent, its pattern being the letter K.
constexpr std::string_view kPlainOrder = "\"#+&=/-@_%)(;*!$:'?,.";
// clang-format on

constexpr std::string_view kSelectable =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789\"#+&=/-@_^%();*!$:'?,.";

constexpr bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

}  // namespace

std::span<const ProSign> CMorseAlphabet::ProSigns() { return kProSigns; }

std::string_view CMorseAlphabet::SelectableCharacters() { return kSelectable; }

std::string_view CMorseAlphabet::PatternOf(char c) {
    if (c >= 'a' && c <= 'z') {
        return kLetterPatterns[static_cast<std::size_t>(c - 'a')];
    }
    if (c >= 'A' && c <= 'Z') {
        return kLetterPatterns[static_cast<std::size_t>(c - 'A')];
    }
    if (c >= '0' && c <= '9') {
        return kDigitPatterns[static_cast<std::size_t>(c - '0')];
    }
    for (const ProSign& sign : kProSigns) {
        if (sign.character == c) {
            return sign.pattern;
        }
    }
    return {};
}

std::string CMorseAlphabet::TextToCode(std::string_view text, bool doubleSpace) {
    std::string code;
    code.reserve(text.size() * 5 + 1);
    for (const char c : text) {
        const auto value = static_cast<signed char>(c);
        if (value < 32 || value > 122) {
            continue;
        }
        if (c == ' ') {
            code += " /";
            continue;
        }
        const std::string_view pattern = PatternOf(c);
        if (!pattern.empty()) {
            code += ' ';
            code += pattern;
        }
    }
    if (doubleSpace) {
        code += ' ';
    }
    return code;
}

std::string CMorseAlphabet::PatternToText(std::string_view pattern, bool letterGroups) {
    for (std::size_t i = 0; i < kDigitPatterns.size(); ++i) {
        if (kDigitPatterns[i] == pattern) {
            return std::string(1, static_cast<char>('0' + i));
        }
    }
    for (std::size_t i = 0; i < kLetterPatterns.size(); ++i) {
        if (kLetterPatterns[i] == pattern) {
            return std::string(1, static_cast<char>('A' + i));
        }
    }
    if (letterGroups) {
        for (const GroupEntry& entry : kLetterGroups) {
            if (entry.pattern == pattern) {
                return std::string(entry.group);
            }
        }
        return {};
    }
    for (const char c : kPlainOrder) {
        if (PatternOf(c) == pattern) {
            return std::string(1, c);
        }
    }
    return {};
}

std::string CMorseAlphabet::CodeToText(std::string_view codeText) {
    std::string text;
    std::size_t start = 0;
    while (start <= codeText.size()) {
        std::size_t end = codeText.find(' ', start);
        if (end == std::string_view::npos) {
            end = codeText.size();
        }
        std::string_view piece = codeText.substr(start, end - start);
        while (!piece.empty() && IsBlank(piece.front())) {
            piece.remove_prefix(1);
        }
        while (!piece.empty() && IsBlank(piece.back())) {
            piece.remove_suffix(1);
        }
        if (piece == "/") {
            text += ' ';
        } else if (!piece.empty()) {
            text += PatternToText(piece, false);
        }
        start = end + 1;
    }
    return text;
}

std::string CMorseAlphabet::LettersOf(LetterClass letterClass, bool doubleSpace) {
    std::string letters;
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        std::string code = TextToCode(std::string_view(&letter, 1), doubleSpace);
        const std::size_t first = code.find_first_not_of(' ');
        code.erase(0, first == std::string::npos ? code.size() : first);
        bool member = false;
        switch (letterClass) {
            case LetterClass::StartsWithDit:
                member = !code.empty() && code.front() == '.';
                break;
            case LetterClass::StartsWithDah:
                member = !code.empty() && code.front() == '-';
                break;
            case LetterClass::OneTone:
            case LetterClass::TwoTones:
            case LetterClass::ThreeTones:
            case LetterClass::FourTones: {
                const auto tones = static_cast<std::size_t>(letterClass) -
                                   static_cast<std::size_t>(LetterClass::OneTone) + 1;
                member = code.size() == tones + 1;
                break;
            }
        }
        if (member) {
            letters += letter;
        }
    }
    return letters;
}
