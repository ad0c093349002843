// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

/// How one position of an aligned copy was taken.
enum class CopyMark {
    Correct,  ///< typed as sent
    Wrong,    ///< another character typed in its place
    Missed,   ///< sent, nothing typed for it
    Extra,    ///< typed, nothing sent there
};

/// One position of the alignment. A word break is the blank ' '; case is already folded to upper.
struct CopyCell {
    CopyMark mark = CopyMark::Correct;
    char sent = 0;    ///< the character sent; 0 for an extra
    char copied = 0;  ///< the character typed; 0 for a missed one
};

/// Sent and correctly copied counts of one character.
struct CharacterTally {
    int sent = 0;
    int correct = 0;
};

/// The result of checking a copy against the text that was sent. Counts leave out word breaks:
/// a missing or doubled blank is shown in the cells but costs no accuracy.
struct CopyScore {
    std::vector<CopyCell> cells;  ///< the alignment, in the order of the text
    int sentCount = 0;            ///< characters sent (word breaks not counted)
    int correct = 0;
    int wrong = 0;
    int missed = 0;
    int extra = 0;
    std::map<char, CharacterTally> characters;        ///< per character sent
    std::map<std::pair<char, char>, int> confusions;  ///< (sent, typed instead) -> times

    /// What the accuracy is taken of: the characters sent plus those typed extra, so a copy
    /// padded with guesses does not score better than an honest one.
    int Judged() const { return sentCount + extra; }

    /// correct / Judged() in percent; 0 when nothing was sent or typed.
    double Accuracy() const;

    /// Characters copied right per minute over a run of the given length; 0 for no time.
    double CharactersPerMinute(double seconds) const;

    /// The effective speed: characters copied right per minute over five (one word is five
    /// characters, as in PARIS).
    double EffectiveWpm(double seconds) const;
};
