// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The sound generators' own character table, keyed by character code 32 to 95: the blank is
/// " ", "[", "\", "]", "<" and ">" are empty, "^" sounds as K, and every code outside the range
/// (lower case included: the generators upper-case their text first) has the empty pattern.
std::string_view LookupPattern(char c);

/// Upper-cases the ASCII letters a to z and leaves every other byte as it is.
std::string ToUpperAscii(std::string_view text);

/// A UTF-8 practice text as the trainer keys it, ASCII only: the common typographic forms become
/// the characters the code has (curly quotes ' and ", dashes -, the ellipsis ..., the no-break
/// space a blank); every other character beyond ASCII, and every malformed byte, is left out.
std::string PlainPracticeText(std::string_view utf8);

/// Length of a text in dit units as the generators spend them: "." 1 + 1, "-" 3 + 1, a blank
/// 6 + 1 (or trunc(count + 6.0 + 0.5 × F) + 1 with a positive Farnsworth factor F), any other
/// element 1; after every character F + 1 with a positive F, else 1. The text is looked up as it
/// is; callers upper-case it first.
std::int64_t CountUnits(std::string_view text, int farnsworthFactor);
