// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

#include "training/CopyScore.h"

/// Checks what a learner typed against what was sent. The alignment is a character edit distance
/// (substitution, insertion, deletion, each costing one) in which a letter is never taken for a
/// word break, so a dropped or doubled letter shifts only its own word. It is computed in a band
/// around the diagonal, widened once when the path found might be bettered outside it, up to a
/// work limit; far beyond the shorter text the rest counts as missed or extra outright. So a long
/// copy is scored in milliseconds and a runaway one never stalls the caller.
class CCopyScorer {
public:
    /// The text as it is compared: upper case, every run of blanks, tabs and line breaks one
    /// blank, none at either end.
    static std::string Normalize(std::string_view text);

    /// Scores copied against sent (both normalized first).
    static CopyScore Score(std::string_view sent, std::string_view copied);

    /// The alignment as two lines of equal length for a terminal: the sent text with '+' over
    /// each extra character, and below it '.' for a character copied right, the typed character
    /// where it was wrong or extra ('_' for a typed blank), '-' where nothing was typed.
    struct Lines {
        std::string sent;
        std::string copy;
    };
    static Lines AlignedLines(const CopyScore& score);
};
