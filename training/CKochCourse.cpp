// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CKochCourse.h"

#include <algorithm>

namespace {

constexpr std::string_view kOrder = "KMRSUAPTLOWI.NJEF0Y,VG5/Q9ZH38B?427C1D6X";

// The weighting, in hundredths: every character starts at kBaseWeight, its recent error rate
// adds up to kWeakWeight, and the newest character of the lesson counts kNewestFactor times.
constexpr int kBaseWeight = 100;
constexpr int kWeakWeight = 400;
constexpr int kNewestFactor = 2;

}  // namespace

std::string_view CKochCourse::Order() {
    return kOrder;
}

std::string_view CKochCourse::LessonCharacters(int lesson) {
    const int clamped = std::clamp(lesson, kFirstLesson, kLastLesson);
    return kOrder.substr(0, static_cast<std::size_t>(clamped) + 1);
}

bool CKochCourse::OffersNextLesson(int lesson, const CopyScore& score) {
    return lesson >= kFirstLesson && lesson < kLastLesson &&
           score.sentCount >= kAdvanceCharacters && score.Accuracy() >= kAdvanceAccuracy;
}

std::map<char, int> CKochCourse::Weights(int lesson, const std::map<char, CharacterTally>& recent) {
    const std::string_view characters = LessonCharacters(lesson);
    std::map<char, int> weights;
    for (const char c : characters) {
        int weight = kBaseWeight;
        const auto it = recent.find(c);
        if (it != recent.end() && it->second.sent >= kWeakAfter) {
            const int wrong = it->second.sent - std::min(it->second.correct, it->second.sent);
            weight += kWeakWeight * wrong / it->second.sent;
        }
        if (c == characters.back()) {
            weight *= kNewestFactor;
        }
        weights[c] = weight;
    }
    return weights;
}

std::string CKochCourse::Groups(int lesson, int count, int size, CCrtRandom& rng,
                                const std::map<char, CharacterTally>& recent) {
    std::string text;
    if (count < 1 || size < 1) {
        return text;
    }
    const std::string_view characters = LessonCharacters(lesson);
    const std::map<char, int> weights = Weights(lesson, recent);
    int total = 0;
    for (const auto& [c, weight] : weights) {
        total += weight;
    }
    text.reserve(static_cast<std::size_t>(count) * (static_cast<std::size_t>(size) + 1));
    for (int group = 0; group < count; ++group) {
        for (int i = 0; i < size; ++i) {
            // Two draws make 30 bits, so the remainder is fair for any total of weights.
            const int high = rng.Next();
            int pick = ((high << 15) | rng.Next()) % total;
            for (const char c : characters) {
                pick -= weights.at(c);
                if (pick < 0) {
                    text += c;
                    break;
                }
            }
        }
        text += ' ';
    }
    return text;
}
