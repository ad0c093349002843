// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CKeyingDecoder.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "model/CMorseAlphabet.h"
#include "training/CCopyScorer.h"

namespace {

/// How a hand keys: lengths in units of each kind of element.
struct Hand {
    double dit = 1.0;
    double dah = 3.0;
    double elementGap = 1.0;
    double letterGap = 3.0;
    double wordGap = 7.0;
    double jitter = 0.0;  ///< each length off by up to this fraction either way
};

/// Keys a text into the decoder at a speed; the lengths jitter with a seeded generator.
void Key(CKeyingDecoder& decoder, std::string_view text, double wpm, const Hand& hand,
         unsigned seed = 1) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> off(-hand.jitter, hand.jitter);
    const double unit = 1.2 / wpm;
    auto length = [&](double units) { return units * unit * (1.0 + off(rng)); };
    bool first = true;
    bool wordBreak = false;
    for (const char c : text) {
        if (c == ' ') {
            wordBreak = true;
            continue;
        }
        if (!first) {
            decoder.Space(length(wordBreak ? hand.wordGap : hand.letterGap));
        }
        first = false;
        wordBreak = false;
        const std::string_view pattern = CMorseAlphabet::PatternOf(c);
        for (std::size_t i = 0; i < pattern.size(); ++i) {
            if (i > 0) {
                decoder.Space(length(hand.elementGap));
            }
            decoder.Mark(length(pattern[i] == '.' ? hand.dit : hand.dah));
        }
    }
    decoder.Finish();
}

constexpr const char* kPangram = "THE QUICK BROWN FOX JUMPS OVER THE LAZY DOG 0123456789";

TEST(KeyingDecoder, ReadsKeyingOfEveryRhythmBackToItsText) {
    struct Case {
        const char* name;
        const char* text;
        double wpm;
        Hand hand;
        const char* expected;
    };
    const Case cases[] = {
        {"ideal, 20 WPM", kPangram, 20, {}, kPangram},
        {"ideal, 5 WPM", "PARIS PARIS", 5, {}, "PARIS PARIS"},
        {"ideal, 60 WPM", "CQ CQ DE K5AB", 60, {}, "CQ CQ DE K5AB"},
        {"pro signs", "QRL? = 73 + (SK) $5", 18, {}, "QRL? = 73 + (SK) $5"},
        {"dits only, told by their gaps", "SEE HIS ISH", 15, {}, "SEE HIS ISH"},
        {"dahs only, told by their gaps", "MOM TO OM", 15, {}, "MOM TO OM"},
        {"long dahs, short letter gaps", kPangram, 25, {1.0, 3.8, 1.0, 2.4, 6.0}, kPangram},
        {"stretched spacing (Farnsworth)",
         "CQ DE K5AB TEST",
         20,
         {1, 3, 1, 9, 21},
         "CQ DE K5AB TEST"},
        {"one-letter words", "I AM A TEST E T", 12, {}, "I AM A TEST E T"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CKeyingDecoder decoder;
        Key(decoder, c.text, c.wpm, c.hand);
        EXPECT_EQ(decoder.Text(), c.expected);
        EXPECT_NEAR(decoder.WordsPerMinute(), c.wpm, 0.2 * c.wpm);
    }
}

TEST(KeyingDecoder, UnknownPatternsAreStarsAndSpacesBeforeTheFirstMarkVanish) {
    CKeyingDecoder decoder;
    decoder.Space(5.0);
    const double unit = 0.06;
    for (int i = 0; i < 9; ++i) {  // nine dits: no such letter
        decoder.Mark(unit);
        decoder.Space(unit);
    }
    decoder.Mark(3 * unit);
    decoder.Space(7 * unit);
    for (const char element : std::string_view("-.-")) {
        decoder.Mark(element == '.' ? unit : 3 * unit);
        decoder.Space(unit);
    }
    decoder.Finish();
    EXPECT_EQ(decoder.Text(), "* K");
}

TEST(KeyingDecoder, KeepsAtLeast98PercentWithEveryElementOffByUpToAQuarter) {
    struct Case {
        double wpm;
        unsigned seed;
    };
    const Case cases[] = {{8, 1}, {15, 2}, {22, 3}, {30, 4}, {45, 5}};
    const std::string text = std::string(kPangram) + " CQ CQ DE K5AB K5AB = QTH BERLIN 73 + " +
                             kPangram + " PSE QSL VIA BURO ? TNX FER QSO";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.wpm);
        CKeyingDecoder decoder;
        Key(decoder, text, c.wpm, {1, 3, 1, 3, 7, 0.25}, c.seed);
        EXPECT_GE(CCopyScorer::Score(text, decoder.Text()).Accuracy(), 98.0) << decoder.Text();
        EXPECT_NEAR(decoder.WordsPerMinute(), c.wpm, 0.1 * c.wpm);
    }
}

TEST(KeyingDecoder, MeasuresTheHandsTiming) {
    CKeyingDecoder decoder;
    decoder.SetKeepTimeline(true);
    Key(decoder, kPangram, 20, {1.0, 3.6, 1.0, 2.5, 6.0});
    const KeyingStats stats = decoder.Stats();
    EXPECT_NEAR(stats.ditDahRatio, 3.6, 0.01);
    EXPECT_NEAR(stats.letterGap.meanUnits / stats.elementGap.meanUnits, 2.5, 0.01);
    EXPECT_NEAR(stats.wordGap.meanUnits / stats.elementGap.meanUnits, 6.0, 0.01);
    EXPECT_EQ(stats.wordGap.count, 9);
    EXPECT_NEAR(stats.dah.spreadPercent, 0.0, 1e-3);
    EXPECT_EQ(decoder.Timeline().size(),
              static_cast<std::size_t>(stats.dit.count + stats.dah.count + stats.elementGap.count +
                                       stats.letterGap.count + stats.wordGap.count));

    CKeyingDecoder uneven;
    Key(uneven, kPangram, 20, {1, 3, 1, 3, 7, 0.25}, 7);
    const KeyingStats spread = uneven.Stats();
    // Uniform within ±25 %: a spread of 25 / sqrt(3), about 14 %.
    EXPECT_NEAR(spread.dit.spreadPercent, 14.4, 3.0);
    EXPECT_NEAR(spread.ditDahRatio, 3.0, 0.2);
}

TEST(KeyingDecoder, SevenUnitsOfSilenceEndARun) {
    CKeyingDecoder decoder;
    Key(decoder, "PARIS", 20, {});
    const double unit = 1.2 / 20;
    EXPECT_FALSE(decoder.RunOver(6.9 * unit));
    EXPECT_TRUE(decoder.RunOver(7.1 * unit));
    EXPECT_FALSE(CKeyingDecoder().RunOver(100.0));  // no estimate, no end
}

}  // namespace
