// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CopyScore.h"

namespace {

constexpr double kCharactersPerWord = 5.0;

}  // namespace

double CopyScore::Accuracy() const {
    return Judged() > 0 ? 100.0 * correct / Judged() : 0.0;
}

double CopyScore::CharactersPerMinute(double seconds) const {
    return seconds > 0 ? correct * 60.0 / seconds : 0.0;
}

double CopyScore::EffectiveWpm(double seconds) const {
    return CharactersPerMinute(seconds) / kCharactersPerWord;
}
