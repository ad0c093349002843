// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <iterator>
#include <string>

/// A practice text of the given length for the rendering benchmarks: words of every length and
/// character class, so tones, gaps and blanks all take their share.
inline std::string PracticeText(std::size_t length) {
    const std::string words[] = {"PARIS", "CQ",  "DE",   "K5AB",  "73", "QTH",   "BERLIN",
                                 "RST",   "599", "NAME", "HANS",  "?",  "TEST",  "5NN",
                                 "AGN",   "PSE", "K",    "=",     "WX", "SUNNY", "TEMP",
                                 "20C",   "/",   "ANT",  "DIPOLE"};
    std::string text;
    std::size_t i = 0;
    while (text.size() < length) {
        text += words[(i * 7 + i / 3) % std::size(words)];
        text += ' ';
        ++i;
    }
    text.resize(length);
    return text;
}
