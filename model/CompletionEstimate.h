// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

/// Seconds that sending the text takes: the dit length at the speed times the text's units
/// (CountUnits of the upper-cased text), in double precision.
double EstimateSeconds(std::string_view text, int wordsPerMinute, int farnsworthFactor);

/// The clock text "HH:MM:SS" of an estimate: whole seconds, truncated toward zero, shown as hours
/// of the day, so 25 hours read 01:00:00.
std::string FormatCompletionTime(double seconds);
