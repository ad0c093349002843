// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Number of recorded voices; their names in order are Amy, Audrey, Charles, Claire, Crystal,
/// Dave, Lauren, Mike and Rich.
constexpr int kVoiceCount = 9;

/// Resource id of the recording of a letter (either case) in a voice: 134 + base + letter, with
/// base 0 for voice 0 and 36 + 26 × (voice − 1) for voices 1 to 8; a voice outside 0..8 speaks
/// as voice 0. Returns 0 for anything but a letter, which is never spoken.
constexpr int SpeechClipId(int actor, char letter) {
    if (letter >= 'a' && letter <= 'z') {
        letter = static_cast<char>(letter - 'a' + 'A');
    }
    if (letter < 'A' || letter > 'Z') {
        return 0;
    }
    const int base = (actor >= 1 && actor < kVoiceCount) ? 36 + 26 * (actor - 1) : 0;
    return 134 + base + (letter - 'A');
}
