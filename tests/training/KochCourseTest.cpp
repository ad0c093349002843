// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CKochCourse.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "model/CMorseAlphabet.h"
#include "training/CCopyScorer.h"

namespace {

TEST(KochCourse, EachLessonAddsOnePracticeCharacter) {
    EXPECT_EQ(CKochCourse::LessonCharacters(1), "KM");
    EXPECT_EQ(CKochCourse::LessonCharacters(2), "KMR");
    EXPECT_EQ(CKochCourse::LessonCharacters(0), "KM");  // out of range: clamped
    EXPECT_EQ(CKochCourse::LessonCharacters(99), CKochCourse::LessonCharacters(39));
    const std::string_view all = CKochCourse::LessonCharacters(39);
    EXPECT_EQ(all.size(), 40u);
    EXPECT_EQ(std::set<char>(all.begin(), all.end()).size(), 40u);
    for (const char c : all) {
        EXPECT_NE(CMorseAlphabet::SelectableCharacters().find(c), std::string_view::npos) << c;
    }
    for (int lesson = 2; lesson <= 39; ++lesson) {
        EXPECT_EQ(CKochCourse::LessonCharacters(lesson).substr(0, lesson),
                  CKochCourse::LessonCharacters(lesson - 1));
    }
}

TEST(KochCourse, NextLessonAfterAHundredCharactersAtNinetyPercent) {
    struct Case {
        int lesson;
        int sent;
        int wrong;
        int extra;
        bool offered;
    };
    const Case cases[] = {
        {5, 100, 10, 0, true}, {5, 100, 11, 0, false}, {5, 99, 0, 0, false},  {5, 100, 9, 2, false},
        {38, 200, 0, 0, true}, {39, 200, 0, 0, false}, {0, 200, 0, 0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.lesson << ' ' << c.sent << ' ' << c.wrong);
        const std::string sent(static_cast<std::size_t>(c.sent), 'K');
        std::string copy = sent;
        copy.replace(0, static_cast<std::size_t>(c.wrong), static_cast<std::size_t>(c.wrong), 'M');
        copy += std::string(static_cast<std::size_t>(c.extra), 'M');
        EXPECT_EQ(CKochCourse::OffersNextLesson(c.lesson, CCopyScorer::Score(sent, copy)),
                  c.offered);
    }
}

/// How often each character comes up in 20,000 drawn characters.
std::map<char, int> Draw(int lesson, const std::map<char, CharacterTally>& recent) {
    CCrtRandom rng(7);
    std::map<char, int> counts;
    for (const char c : CKochCourse::Groups(lesson, 4000, 5, rng, recent)) {
        ++counts[c];
    }
    counts.erase(' ');
    return counts;
}

TEST(KochCourse, GroupsFavourTheNewestAndTheWeakestCharacters) {
    // Lesson 4 (K M R S U): the newest, U, weighs 2, each other 1.
    std::map<char, int> counts = Draw(4, {});
    EXPECT_EQ(counts.size(), 5u);
    EXPECT_NEAR(counts['U'], 20000 * 2 / 6, 400);
    EXPECT_NEAR(counts['K'], 20000 / 6, 400);

    // K copied half wrong: 1 + 4 x 0.5 = 3; R seen too rarely to judge.
    counts = Draw(4, {{'K', {10, 5}}, {'R', {4, 0}}});
    EXPECT_NEAR(counts['K'], 20000 * 3 / 8, 400);
    EXPECT_NEAR(counts['R'], 20000 / 8, 400);
    EXPECT_NEAR(counts['U'], 20000 * 2 / 8, 400);
}

TEST(KochCourse, GroupsAreWordCountGroupsOfWordSizeAndRepeatable) {
    CCrtRandom a(42);
    CCrtRandom b(42);
    const std::string text = CKochCourse::Groups(1, 3, 4, a);
    EXPECT_EQ(text, CKochCourse::Groups(1, 3, 4, b));
    ASSERT_EQ(text.size(), 15u);
    for (std::size_t i = 0; i < text.size(); ++i) {
        EXPECT_TRUE(i % 5 == 4 ? text[i] == ' ' : (text[i] == 'K' || text[i] == 'M')) << text;
    }
    EXPECT_EQ(CKochCourse::Groups(1, 0, 5, a), "");
    EXPECT_EQ(CKochCourse::Groups(1, 5, 0, a), "");
}

}  // namespace
