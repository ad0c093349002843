// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CompletionEstimate.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "model/CodePatterns.h"
#include "model/CodeTiming.h"

namespace {

TEST(DitSeconds, IsTwelveOverTenWpmInSinglePrecision) {
    EXPECT_EQ(DitSeconds(15), 0.08f);
    EXPECT_EQ(DitSeconds(5), 0.24f);
    EXPECT_EQ(DitSeconds(12), 0.1f);
}

TEST(PlainPracticeText, KeepsAsciiAndGivesTypographicFormsTheirCodeCharacters) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"It's 5 o'clock", "It's 5 o'clock"},
        {"It\u2019s \u201COK\u201D \u2018so\u2019", "It's \"OK\" 'so'"},
        {"\u201Ehalb\u201C \u00ABganz\u00BB", "\"halb\" \"ganz\""},
        {"A \u2013 B \u2014 C\u2212D", "A - B - C-D"},
        {"wait\u2026", "wait..."},
        {"5\u00A0\u20AC", "5 "},
        // Everything else beyond ASCII is left out, as the code has nothing for it.
        {"Stra\u00DFe caf\u00E9 \uFB01", "Strae caf "},
        {"\xE2\x80 A\xFF\xC3", " A"},  // malformed bytes vanish too
    };
    for (const auto& [text, plain] : cases) {
        EXPECT_EQ(PlainPracticeText(text), plain) << text;
    }
}

TEST(CountUnits, CountsAsTheGeneratorsSpendTime) {
    EXPECT_EQ(CountUnits("", 0), 0);
    EXPECT_EQ(CountUnits("E", 0), 3);
    EXPECT_EQ(CountUnits("PARIS ", 0), 49);
    EXPECT_EQ(CountUnits("T", 0), 5);
    EXPECT_EQ(CountUnits(" ", 0), 8);
    // Characters without a pattern still cost their closing unit, and F more with Farnsworth.
    EXPECT_EQ(CountUnits("\n<a", 0), 3);
    EXPECT_EQ(CountUnits("\n", 3), 4);
    // Farnsworth 3: a blank costs trunc(7.5) + 1 = 8, and every character 4 after it.
    EXPECT_EQ(CountUnits(" ", 3), 12);
    EXPECT_EQ(CountUnits("E E", 3), 6 + 12 + 6);
    EXPECT_EQ(CountUnits("E", -2), 3);
}

TEST(EstimateSeconds, WorkedExamples) {
    EXPECT_DOUBLE_EQ(EstimateSeconds("E", 15, 0), static_cast<double>(0.08f) * 3);
    EXPECT_DOUBLE_EQ(EstimateSeconds("PARIS ", 12, 0), static_cast<double>(0.1f) * 49);
    EXPECT_DOUBLE_EQ(EstimateSeconds("paris ", 12, 0), EstimateSeconds("PARIS ", 12, 0));
    EXPECT_DOUBLE_EQ(EstimateSeconds("E", 12, 0), static_cast<double>(0.1f) * 3);
}

TEST(FormatCompletionTime, HoursOfTheDay) {
    EXPECT_EQ(FormatCompletionTime(0.0), "00:00:00");
    EXPECT_EQ(FormatCompletionTime(0.24), "00:00:00");
    EXPECT_EQ(FormatCompletionTime(4.9), "00:00:04");
    EXPECT_EQ(FormatCompletionTime(59.999), "00:00:59");
    EXPECT_EQ(FormatCompletionTime(3600.0 + 23 * 60 + 45), "01:23:45");
    EXPECT_EQ(FormatCompletionTime(86399.0), "23:59:59");
    EXPECT_EQ(FormatCompletionTime(25 * 3600.0), "01:00:00");
    EXPECT_EQ(FormatCompletionTime(std::numeric_limits<double>::infinity()), "00:00:00");
}

TEST(FormatCompletionTime, LongTextWrapsPast24Hours) {
    // 333334 "E" at 12 WPM: 1000002 units of 0.1 s, 27 h 46 min 40 s.
    const std::string text(333334, 'E');
    const double seconds = EstimateSeconds(text, 12, 0);
    EXPECT_GT(seconds, 86400.0);
    EXPECT_EQ(FormatCompletionTime(seconds), "03:46:40");
}

}  // namespace
