// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string>
#include <string_view>

/// One punctuation character of the practice text and the procedural signal it stands for.
struct ProSign {
    char character;
    std::string_view pattern;
    std::string_view letterGroup;
    std::string_view name;
};

/// The letter classes by which the Random menu selects practice characters.
enum class LetterClass { StartsWithDit, StartsWithDah, OneTone, TwoTones, ThreeTones, FourTones };

/// International Morse code as the trainer uses it: the patterns of letters, numbers and the 22
/// pro signs, and the conversions between practice text and code text.
class CMorseAlphabet {
public:
    /// The pro signs in their fixed order (selection buttons, profile values, selection string).
    static std::span<const ProSign> ProSigns();

    /// The 58 selectable characters in their fixed order: A to Z, 0 to 9, then the pro signs.
    static std::string_view SelectableCharacters();

    /// Pattern of one character of either case, or an empty view when it has none.
    static std::string_view PatternOf(char c);

    /// Code text of a practice text: " " + pattern for every convertible byte, " /" for a blank,
    /// bytes outside 32..122 and "<", ">", "[", "\", "]", "`" skipped; with doubleSpace one more
    /// blank at the end of the whole result.
    static std::string TextToCode(std::string_view text, bool doubleSpace);

    /// The character (or, with letterGroups, the letter group) of one trimmed code pattern;
    /// empty for an unknown pattern. Digits and letters are looked up first, so "-.-" is "K".
    static std::string PatternToText(std::string_view pattern, bool letterGroups);

    /// "Morse Code to Text": every blank-separated piece converted with PatternToText in plain
    /// mode, "/" giving a blank and unknown pieces vanishing.
    static std::string CodeToText(std::string_view codeText);

    /// The letters A to Z that belong to a class. The tone classes count the symbols of the
    /// letter's TextToCode result, so they depend on the Double Space setting.
    static std::string LettersOf(LetterClass letterClass, bool doubleSpace);
};
