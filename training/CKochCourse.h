// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "model/CCrtRandom.h"
#include "training/CopyScore.h"

/// The Koch method: a lesson adds one character at a time, in a fixed order, once the learner
/// copies the characters so far at 90 %.
class CKochCourse {
public:
    static constexpr int kFirstLesson = 1;
    static constexpr int kLastLesson = 39;
    /// A checked session offers the next lesson from this many characters sent ...
    static constexpr int kAdvanceCharacters = 100;
    /// ... copied at this accuracy (percent) or better.
    static constexpr double kAdvanceAccuracy = 90.0;

    /// The 40 characters in the order they are taught.
    static std::string_view Order();

    /// The characters of a lesson: the first lesson + 1 of Order(); the lesson is clamped to
    /// kFirstLesson..kLastLesson.
    static std::string_view LessonCharacters(int lesson);

    /// Whether a checked session of a lesson offers the next one: below the last lesson, at least
    /// kAdvanceCharacters sent and at least kAdvanceAccuracy copied.
    static bool OffersNextLesson(int lesson, const CopyScore& score);

    /// The relative weight in hundredths with which each lesson character is drawn:
    /// 100 + 400 x the character's recent error rate (1 - correct / sent, only once it was sent
    /// kWeakAfter times or more), and the lesson's newest character counts double. With no
    /// history the newest character comes twice as often as each other; a character copied
    /// half wrong three times as often.
    static std::map<char, int> Weights(int lesson, const std::map<char, CharacterTally>& recent);
    static constexpr int kWeakAfter = 5;

    /// count groups of size characters of the lesson drawn by Weights(), each followed by a
    /// blank, as the Random menu's groups; size and count below 1 give no text.
    static std::string Groups(int lesson, int count, int size, CCrtRandom& rng,
                              const std::map<char, CharacterTally>& recent = {});
};
