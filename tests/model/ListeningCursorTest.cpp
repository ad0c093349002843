// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CListeningCursor.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace {

using Displays = std::tuple<std::string, std::string, std::string>;  // previous, current, next

std::vector<Displays> Follow(std::string_view text, int characters) {
    CListeningCursor cursor;
    cursor.Reset(text);
    std::vector<Displays> seen;
    for (int i = 0; i < characters; ++i) {
        cursor.NextCharacter();
        seen.emplace_back(cursor.Previous(), cursor.Current(), cursor.Next());
    }
    return seen;
}

TEST(ListeningCursor, FollowsAPlainText) {
    EXPECT_EQ(Follow("ABC DE", 5), (std::vector<Displays>{{"", "A", "B"},
                                                          {"A", "B", "C"},
                                                          {"B", "C", "D"},
                                                          {"C", "D", "E"},
                                                          {"D", "E", "E"}}));
}

TEST(ListeningCursor, OneLetterFirstWordRunsOneCharacterOff) {
    // "E" and " " come from the typed text; position 2 of the normalised "ETT" follows.
    EXPECT_EQ(Follow("E TT", 3),
              (std::vector<Displays>{{"", "E", " "}, {"E", " ", "T"}, {" ", "T", "T"}}));
    // A leading blank shows as current, and the last letter is never current.
    EXPECT_EQ(Follow(" AB", 2), (std::vector<Displays>{{"", " ", "A"}, {" ", "A", "A"}}));
}

TEST(ListeningCursor, OneCharacterAndEmptyTexts) {
    EXPECT_EQ(Follow("K", 1), (std::vector<Displays>{{"", "K", ""}}));
    EXPECT_EQ(Follow("", 1), (std::vector<Displays>{{"", "", ""}}));
}

TEST(ListeningCursor, LineBreaksKeepTheirPlaceAsZeroCharacters) {
    const auto seen = Follow("AB\r\nCD", 4);
    EXPECT_EQ(std::get<2>(seen[1]), std::string(1, '\0'));
    EXPECT_EQ(std::get<1>(seen[2]), std::string(1, '\0'));
    EXPECT_EQ(std::get<2>(seen[3]), "C");
}

TEST(ListeningCursor, Normalise) {
    EXPECT_EQ(CListeningCursor::Normalise("  CQ  /  DE K5AB \r\n"), "CQDEK5AB");
    EXPECT_EQ(CListeningCursor::Normalise("A\nB"), std::string("A\0B", 3));
    EXPECT_EQ(CListeningCursor::Normalise("A / B"), "A/B");
}

TEST(ListeningCursor, ResetStartsAgain) {
    CListeningCursor cursor;
    cursor.Reset("XYZ");
    cursor.NextCharacter();
    cursor.NextCharacter();
    cursor.Reset("MN");
    cursor.NextCharacter();
    EXPECT_EQ(cursor.Current(), "M");
    EXPECT_EQ(cursor.Next(), "N");
    EXPECT_EQ(cursor.Previous(), "");
}

TEST(SessionClock, WrapsAfter24Hours) {
    EXPECT_EQ(FormatSessionClock(0), "00:00:00");
    EXPECT_EQ(FormatSessionClock(3661), "01:01:01");
    EXPECT_EQ(FormatSessionClock(86399), "23:59:59");
    EXPECT_EQ(FormatSessionClock(86400 + 125), "00:02:05");
    EXPECT_EQ(FormatSessionClock(3 * 86400 + 7200), "02:00:00");
}

}  // namespace
