// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CMorseAlphabet.h"

#include <gtest/gtest.h>

namespace {

std::string Code(std::string_view text, bool doubleSpace = false) {
    return CMorseAlphabet::TextToCode(text, doubleSpace);
}

TEST(TextToCode, ConvertsLettersDigitsAndBlanks) {
    EXPECT_EQ(Code("AB C"), " .- -... / -.-.");
    EXPECT_EQ(Code("a b"), " .- / -...");
    EXPECT_EQ(Code("Paris"), Code("PARIS"));
    EXPECT_EQ(Code("0123456789"), " ----- .---- ..--- ...-- ....- ..... -.... --... ---.. ----.");
    EXPECT_EQ(Code(""), "");
    EXPECT_EQ(Code("  "), " / /");
}

TEST(TextToCode, SkipsBytesOutside32To122AndTheSixUnconvertible) {
    EXPECT_EQ(Code("A\r\nB"), " .- -...");
    EXPECT_EQ(Code("A\tB"), " .- -...");
    EXPECT_EQ(Code("<[>"), "");
    EXPECT_EQ(Code("<>[\\]`"), "");
    EXPECT_EQ(Code(std::string("E\xC8" "E")), " . .");  // 200 is negative as a signed char
    EXPECT_EQ(Code(std::string("E\x7F{|}~E")), " . .");
    EXPECT_EQ(Code(std::string("E\0E", 3)), " . .");
}

TEST(TextToCode, DoubleSpaceAddsOneBlankPerCall) {
    EXPECT_EQ(Code("", true), " ");
    EXPECT_EQ(Code("<[>", true), " ");
    EXPECT_EQ(Code("AB", true), " .- -... ");
}

TEST(TextToCode, ProSignsUseTheirPatterns) {
    EXPECT_EQ(Code("^"), " -.-");
    EXPECT_EQ(Code("^"), Code("K"));
    EXPECT_EQ(Code("@"), " ........");
    std::string all;
    for (const ProSign& sign : CMorseAlphabet::ProSigns()) {
        all += sign.character;
        EXPECT_EQ(Code(std::string(1, sign.character)), " " + std::string(sign.pattern))
            << sign.character;
    }
    EXPECT_EQ(all, "\"#+&=/-@_^%();*!$:'?,.");
    EXPECT_EQ(CMorseAlphabet::ProSigns()[1].name, " Paragraph");
    EXPECT_EQ(CMorseAlphabet::ProSigns()[9].letterGroup, "K");
}

TEST(PatternToText, FindsDigitsThenLettersThenProSigns) {
    EXPECT_EQ(CMorseAlphabet::PatternToText("-.-", true), "K");
    EXPECT_EQ(CMorseAlphabet::PatternToText("-.-", false), "K");
    EXPECT_EQ(CMorseAlphabet::PatternToText("-...", true), "B");  // never "DE"
    EXPECT_EQ(CMorseAlphabet::PatternToText(".-.", true), "R");
    EXPECT_EQ(CMorseAlphabet::PatternToText("-.-.-.", true), "KR");
    EXPECT_EQ(CMorseAlphabet::PatternToText("-.-.-.", false), ";");
    EXPECT_EQ(CMorseAlphabet::PatternToText("..---", true), "2");
    EXPECT_EQ(CMorseAlphabet::PatternToText(" .-", false), "");
    EXPECT_EQ(CMorseAlphabet::PatternToText("", false), "");
    EXPECT_EQ(CMorseAlphabet::PatternToText(".-.-.-.-.", true), "");
}

TEST(PatternToText, LetterGroupsOfEveryProSign) {
    for (const ProSign& sign : CMorseAlphabet::ProSigns()) {
        const std::string expected = sign.character == '^' ? "K" : std::string(sign.letterGroup);
        EXPECT_EQ(CMorseAlphabet::PatternToText(sign.pattern, true), expected) << sign.pattern;
        const std::string plain = sign.character == '^' ? "K" : std::string(1, sign.character);
        EXPECT_EQ(CMorseAlphabet::PatternToText(sign.pattern, false), plain) << sign.pattern;
    }
}

TEST(PatternToText, FourGroupsWithoutACharacter) {
    const std::pair<const char*, const char*> groups[] = {
        {"-.....", "BI"}, {"-.-.--.-", "CQ"}, {"-.-..-..", "CL"}, {"...---...", "SOS"}};
    for (const auto& [pattern, group] : groups) {
        EXPECT_EQ(CMorseAlphabet::PatternToText(pattern, true), group);
        EXPECT_EQ(CMorseAlphabet::PatternToText(pattern, false), "");
    }
}

TEST(CodeToText, ConvertsPiecesAndDropsUnknownOnes) {
    EXPECT_EQ(CMorseAlphabet::CodeToText(" .- / -... ?? ."), "A BE");
    EXPECT_EQ(CMorseAlphabet::CodeToText(""), "");
    EXPECT_EQ(CMorseAlphabet::CodeToText("  ...   ---  "), "SO");
    EXPECT_EQ(CMorseAlphabet::CodeToText("...---..."), "");
    EXPECT_EQ(CMorseAlphabet::CodeToText(" -.- -.-.-."), "K;");
    EXPECT_EQ(CMorseAlphabet::CodeToText("...\n"), "S");
}

TEST(CodeToText, RoundTripsPracticeText) {
    const std::string text = "CQ CQ DE K5AB = HW? 73 +";
    EXPECT_EQ(CMorseAlphabet::CodeToText(Code(text)), text);
    EXPECT_EQ(CMorseAlphabet::CodeToText(Code(text, true)), text);
    EXPECT_EQ(CMorseAlphabet::CodeToText(Code("k^")), "KK");  // the reverse finds K first
}

TEST(LetterClasses, DitAndDahStarts) {
    EXPECT_EQ(CMorseAlphabet::LettersOf(LetterClass::StartsWithDit, false), "AEFHIJLPRSUVW");
    EXPECT_EQ(CMorseAlphabet::LettersOf(LetterClass::StartsWithDah, false), "BCDGKMNOQTXYZ");
    EXPECT_EQ(CMorseAlphabet::LettersOf(LetterClass::StartsWithDit, true), "AEFHIJLPRSUVW");
}

TEST(LetterClasses, ToneCountsDependOnDoubleSpace) {
    using enum LetterClass;
    EXPECT_EQ(CMorseAlphabet::LettersOf(OneTone, false), "AIMN");
    EXPECT_EQ(CMorseAlphabet::LettersOf(TwoTones, false), "DGKORSUW");
    EXPECT_EQ(CMorseAlphabet::LettersOf(ThreeTones, false), "BCFHJLPQVXYZ");
    EXPECT_EQ(CMorseAlphabet::LettersOf(FourTones, false), "");
    EXPECT_EQ(CMorseAlphabet::LettersOf(OneTone, true), "ET");
    EXPECT_EQ(CMorseAlphabet::LettersOf(TwoTones, true), "AIMN");
    EXPECT_EQ(CMorseAlphabet::LettersOf(ThreeTones, true), "DGKORSUW");
    EXPECT_EQ(CMorseAlphabet::LettersOf(FourTones, true), "BCFHJLPQVXYZ");
}

TEST(SelectableCharacters, FixedOrderOf58) {
    const std::string_view chars = CMorseAlphabet::SelectableCharacters();
    ASSERT_EQ(chars.size(), 58u);
    EXPECT_EQ(chars.substr(0, 36), "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789");
    for (const char c : chars) {
        EXPECT_FALSE(CMorseAlphabet::PatternOf(c).empty()) << c;
        EXPECT_GT(c, 32);
        EXPECT_LT(c, 96);
    }
}

}  // namespace
