// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CCopyScorer.h"

#include <gtest/gtest.h>

#include <string>

#include "training/CKochCourse.h"

namespace {

struct AlignmentCase {
    const char* name;
    const char* sent;
    const char* copy;
    const char* sentLine;  ///< nullptr where several alignments are equally good
    const char* copyLine;
    int correct;
    int judged;
};

TEST(CopyScorer, AlignsEachSlipToItsOwnPlace) {
    const AlignmentCase cases[] = {
        {"all right", "CQ DE K5AB", "CQ DE K5AB", "CQ DE K5AB", ".. .. ....", 8, 8},
        {"dropped letter", "THE QUICK FOX", "THE QICK FOX", "THE QUICK FOX", "... .-... ...", 10,
         11},
        {"extra letter", "THE QUICK FOX", "THE QUXICK FOX", "THE QU+ICK FOX", "... ..X... ...", 11,
         12},
        {"wrong letter", "THE QUICK FOX", "THE QUACK FOX", "THE QUICK FOX", "... ..A.. ...", 10,
         11},
        {"all three in one line", "THE QUICK BROWN FOX", "THE QICK BROWXN FIX",
         "THE QUICK BROW+N FOX", "... .-... ....X. .I.", 14, 17},
        {"case and blanks", "cq  de\n k5ab\t", " CQ DE\r\nK5AB", "CQ DE K5AB", ".. .. ....", 8, 8},
        {"word break left out", "AB CD", "ABCD", "AB CD", "..-..", 4, 4},
        {"a letter is not a word break", "AB CD", "ABXCD", "AB+ CD", "..X-..", 4, 5},
        {"missed word", "THE QUICK BROWN FOX", "THE BROWN FOX", nullptr, nullptr, 11, 16},
        {"empty copy", "CQ CQ", "", "CQ CQ", "-----", 0, 4},
        {"nothing sent", "", "EE", "++", "EE", 0, 2},
    };
    for (const AlignmentCase& c : cases) {
        SCOPED_TRACE(c.name);
        const CopyScore score = CCopyScorer::Score(c.sent, c.copy);
        const CCopyScorer::Lines lines = CCopyScorer::AlignedLines(score);
        if (c.sentLine != nullptr) {
            EXPECT_EQ(lines.sent, c.sentLine);
            EXPECT_EQ(lines.copy, c.copyLine);
        }
        EXPECT_EQ(score.correct, c.correct);
        EXPECT_EQ(score.Judged(), c.judged);
        EXPECT_EQ(score.correct + score.wrong + score.missed, score.sentCount);
    }
}

TEST(CopyScorer, AMissedWordLeavesTheWordsAroundItRight) {
    const CCopyScorer::Lines lines =
        CCopyScorer::AlignedLines(CCopyScorer::Score("THE QUICK BROWN FOX", "THE BROWN FOX"));
    EXPECT_EQ(lines.copy.substr(0, 3), "...");
    EXPECT_EQ(lines.copy.substr(lines.copy.size() - 9), "..... ...");
    EXPECT_EQ(std::count(lines.copy.begin(), lines.copy.end(), '-'), 6);
}

TEST(CopyScorer, SpeedCountsWhatWasCopiedRight) {
    const CopyScore score = CCopyScorer::Score("PARIS PARIS", "PARIS PXRIS");
    EXPECT_DOUBLE_EQ(score.CharactersPerMinute(60.0), 9.0);
    EXPECT_DOUBLE_EQ(score.EffectiveWpm(30.0), 3.6);
    EXPECT_EQ(score.EffectiveWpm(0.0), 0.0);
    EXPECT_EQ(CCopyScorer::Score("", "").Accuracy(), 0.0);
}

TEST(CopyScorer, CountsEachCharacterAndWhatItWasTakenFor) {
    const CopyScore score = CCopyScorer::Score("HHH SSS", "5H5 SS");
    EXPECT_EQ(score.characters.at('H').sent, 3);
    EXPECT_EQ(score.characters.at('H').correct, 1);
    EXPECT_EQ(score.characters.at('S').sent, 3);
    EXPECT_EQ(score.characters.at('S').correct, 2);
    EXPECT_EQ(score.confusions.size(), 1u);
    EXPECT_EQ(score.confusions.at({'H', '5'}), 2);
}

TEST(CopyScorer, LongTextsAlignExactlyAndRunawayCopiesStayCheap) {
    std::string sent;
    for (int i = 0; i < 1000; ++i) {
        sent += "ABCDE FGHIJ ";
    }
    // A word dropped near the start and a letter late: everything between stays right.
    std::string copy = sent;
    copy.erase(12, 6);
    copy[copy.size() - 4] = 'X';
    const CopyScore score = CCopyScorer::Score(sent, copy);
    EXPECT_EQ(score.missed, 5);
    EXPECT_EQ(score.wrong, 1);
    EXPECT_EQ(score.correct, score.sentCount - 6);

    // A passage left out and as much typed in later: the copy is as long as the text, but
    // everything between the two is still right.
    CCrtRandom rng(5);
    const std::string groups = CKochCourse::Groups(39, 2000, 5, rng);
    std::string drifted = groups;
    drifted.insert(9000, std::string(120, 'E'));
    drifted.erase(1200, 120);
    const CopyScore drift = CCopyScorer::Score(groups, drifted);
    EXPECT_EQ(drift.missed, 100);
    EXPECT_EQ(drift.extra, 120);
    EXPECT_EQ(drift.wrong, 0);

    // Far more typed than sent: the text is still found, the rest is extra.
    const CopyScore runaway = CCopyScorer::Score("PARIS", "PARIS " + std::string(200000, 'E'));
    EXPECT_EQ(runaway.correct, 5);
    EXPECT_EQ(runaway.extra, 200000);

    // The learner stopped after a tenth: the rest is missed, the start right.
    const CopyScore stopped = CCopyScorer::Score(sent, sent.substr(0, 1200));
    EXPECT_EQ(stopped.correct, 1000);
    EXPECT_EQ(stopped.missed, 9000);
}

}  // namespace
