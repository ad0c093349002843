// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CSendCommands.h"

#include <cmath>
#include <ostream>

#include "training/DecodeWave.h"

namespace {

constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

}  // namespace

int SendCommands::DecodeAudio(const std::vector<std::string>& files, std::ostream& out,
                              std::ostream& err) {
    if (files.size() != 1) {
        err << "tonwerk-cli decode-audio: one WAV file is needed\n";
        return kExitUsage;
    }
    const DecodedWave decoded = DecodeWaveFile(files.front());
    if (!decoded.error.empty()) {
        err << "tonwerk-cli decode-audio: " << files.front() << ": " << decoded.error << '\n';
        return kExitFailure;
    }
    out << decoded.text << '\n'
        << "estimated " << std::lround(decoded.wordsPerMinute) << " WPM (tone "
        << std::lround(decoded.toneHz) << " Hz)\n";
    return kExitOk;
}
