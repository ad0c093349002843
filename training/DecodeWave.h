// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

/// What was keyed in a sound file.
struct DecodedWave {
    std::string error;  ///< why nothing could be decoded, as one line; empty on success
    std::string text;
    double wordsPerMinute = 0.0;
    double toneHz = 0.0;
};

/// Decodes on/off-keyed Morse from a PCM WAV file at its strongest tone, reading it piece by
/// piece. A file that cannot be read, is not PCM, is empty or holds no keyed tone gives an error.
DecodedWave DecodeWaveFile(const std::string& fileName);
