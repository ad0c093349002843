// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <iosfwd>
#include <map>
#include <string>

/// tonwerk-cli's copy-practice commands score and history (koch is one call of the tool's own).
/// Each takes the command's option values and returns the exit status.
namespace CopyCommands {

using Values = std::map<std::string, std::string, std::less<>>;

/// score --sent TEXT --copy TEXT: the two aligned lines, then "accuracy 93.2 % (41/44)".
int Score(const Values& values, std::ostream& out, std::ostream& err);

/// history [--csv] [--database FILE]: the stored sessions, newest first, or all as CSV.
int History(const Values& values, bool csv, std::ostream& out, std::ostream& err);

}  // namespace CopyCommands
