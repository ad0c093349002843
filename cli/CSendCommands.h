// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

/// tonwerk-cli's sending-practice commands. Each returns the exit status.
namespace SendCommands {

/// decode-audio FILE.wav: the text keyed in the file, then "estimated N WPM (tone F Hz)". A file
/// that cannot be read, is not PCM, is empty or holds no tone: one line on err, exit 1.
int DecodeAudio(const std::vector<std::string>& files, std::ostream& out, std::ostream& err);

}  // namespace SendCommands
