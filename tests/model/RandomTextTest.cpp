// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/CRandomText.h"

#include <gtest/gtest.h>

#include <cctype>
#include <set>
#include <sstream>

namespace {

TEST(RandomGroups, OnlyEGivesGroupsOfE) {
    CCrtRandom rng(12345);
    EXPECT_EQ(CRandomText::Groups("E", 2, 5, rng), "EEEEE EEEEE ");
}

TEST(RandomGroups, SizeAndCountEdges) {
    CCrtRandom rng(7);
    EXPECT_EQ(CRandomText::Groups("E", 0, 5, rng), "");
    EXPECT_EQ(CRandomText::Groups("", 3, 5, rng), "");
    // Size 0: a group ends after the first draw above 32, so it holds at most one character.
    const std::string text = CRandomText::Groups("ABCDEFGHIJKLMNOPQRSTUVWXYZ", 50, 0, rng);
    std::istringstream words(text);
    int groups = 0;
    for (std::string word; words >> word; ++groups) {
        EXPECT_EQ(word.size(), 1u);
    }
    EXPECT_LT(groups, 50);  // most single draws miss the letters and leave an empty group
    EXPECT_EQ(std::count(text.begin(), text.end(), ' '), 50);
}

TEST(RandomGroups, SameSeedSameTextAndOnlySelectedCharacters) {
    CCrtRandom first(1700000000u);
    CCrtRandom second(1700000000u);
    const std::string a = CRandomText::Groups("KM0?", 20, 5, first);
    EXPECT_EQ(a, CRandomText::Groups("KM0?", 20, 5, second));
    EXPECT_EQ(a.size(), 20u * 6u);
    EXPECT_EQ(a.find_first_not_of("KM0? "), std::string::npos);
    EXPECT_EQ(a.back(), ' ');
    for (const char c : std::string("KM0?")) {
        EXPECT_NE(a.find(c), std::string::npos) << c;
    }
}

TEST(RandomGroups, KnownSequence) {
    // Draws from srand(1): 41 % 96 = 41 ")", 18467 % 96 = 35 "#", 6334 % 96 = 94 "^", ...
    CCrtRandom rng(1);
    EXPECT_EQ(CRandomText::Groups(")#^", 1, 3, rng), ")#^ ");
}

TEST(BuildSelection, FixedOrderWhateverTheQueryOrder) {
    const std::set<char> chosen = {'?', '7', 'A', 'Z', '"', '.'};
    EXPECT_EQ(CRandomText::BuildSelection([&](char c) { return chosen.contains(c); }),
              "AZ7\"?.");
    EXPECT_EQ(CRandomText::BuildSelection([](char) { return false; }), "");
}

bool HasCallSignShape(const std::string& sign) {
    if (sign.size() < 3 || sign.size() > 6) {
        return false;
    }
    const std::string_view prefixes = "AKWN";
    if (prefixes.find(sign[0]) == std::string_view::npos) {
        return false;
    }
    const std::size_t digit = sign.find_first_of("0123456789");
    if (digit != 1 && digit != 2) {
        return false;
    }
    if (sign[0] == 'A' && (digit != 2 || sign[1] < 'A' || sign[1] > 'L')) {
        return false;
    }
    for (std::size_t i = 1; i < sign.size(); ++i) {
        if (i != digit && !std::isupper(static_cast<unsigned char>(sign[i]))) {
            return false;
        }
    }
    return digit + 1 < sign.size();  // a suffix follows the digit
}

TEST(CallSign, EverySeedGivesAWellShapedSign) {
    std::set<std::size_t> lengths;
    std::set<char> prefixes;
    for (std::uint32_t seed = 0; seed < 20000; ++seed) {
        const std::string sign = CRandomText::CallSign(seed * 7919u);
        ASSERT_TRUE(HasCallSignShape(sign)) << sign;
        lengths.insert(sign.size());
        prefixes.insert(sign[0]);
    }
    EXPECT_EQ(lengths, (std::set<std::size_t>{3, 4, 5, 6}));
    EXPECT_EQ(prefixes, (std::set<char>{'A', 'K', 'N', 'W'}));
}

TEST(CallSigns, SameStartSameListAndNoSignRepeats) {
    const std::string a = CRandomText::CallSigns(50, 1700000000);
    EXPECT_EQ(a, CRandomText::CallSigns(50, 1700000000));
    EXPECT_NE(a, CRandomText::CallSigns(50, 1700000001));
    std::istringstream words(a);
    std::vector<std::string> signs;
    for (std::string sign; words >> sign;) {
        signs.push_back(sign);
    }
    ASSERT_EQ(signs.size(), 50u);
    for (std::size_t i = 0; i < signs.size(); ++i) {
        // No sign is contained in the text before it.
        const std::string before = a.substr(0, a.find(signs[i] + " "));
        EXPECT_EQ(before.find(signs[i]), std::string::npos) << signs[i];
    }
    EXPECT_EQ(CRandomText::CallSigns(0, 1700000000), "");
    EXPECT_EQ(CRandomText::CallSigns(-3, 1700000000), "");
}

TEST(CallSigns, FirstSignUsesStartMinusTen) {
    EXPECT_EQ(CRandomText::CallSigns(1, 1000), CRandomText::CallSign(990) + " ");
}

TEST(CallSigns, StepsOncePerAcceptedSign) {
    int steps = 0;
    CRandomText::CallSigns(7, 42, [&] { ++steps; });
    EXPECT_EQ(steps, 7);
}

}  // namespace
