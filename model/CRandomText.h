// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "model/CCrtRandom.h"

/// Random practice text: groups of selected characters and US call signs.
class CRandomText {
public:
    /// Called once for every generated group or call sign (the progress bar's step).
    using StepFn = std::function<void()>;

    /// The selection string: the selected characters in the fixed order A to Z, 0 to 9, then the
    /// pro signs, whatever order isSelected is asked in.
    static std::string BuildSelection(const std::function<bool(char)>& isSelected);

    /// count groups of size characters drawn from the selection, each followed by a blank. A
    /// group is complete once it has reached size after a draw above 32, so a size of 0 or less
    /// gives groups of at most one character. The selection must not be empty.
    static std::string Groups(std::string_view selection, int count, int size, CCrtRandom& rng,
                              const StepFn& step = {});

    /// One call sign from a seed, such as K5AB, W1A, KA3XYZ or AB0CD: a one- or two-letter prefix
    /// (K, W, N, or A with a second letter A to L), one digit, a letter suffix; 3 to 6 characters.
    static std::string CallSign(std::uint32_t seed);

    /// count distinct call signs, each followed by a blank, seeded from startTime - 10, - 20, ...
    /// one attempt after the other; a sign already contained in the text is drawn again. The same
    /// start time gives the same list.
    static std::string CallSigns(int count, std::int64_t startTime, const StepFn& step = {});
};
