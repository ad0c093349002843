// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CKeyingDecoder.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "model/CMorseAlphabet.h"

namespace {

constexpr double kSecondsPerWordUnit = 1.2;  // PARIS: 50 units make a word
constexpr std::size_t kMarkWindow = 32;
constexpr std::size_t kGapWindow = 32;
// Two clusters of marks this far apart (in their means) are dits and dahs; closer ones are one
// kind. Ideal keying gives 3, a hurried hand rarely less than 2.
constexpr double kClusterRatio = 1.8;
// Letter and word gaps: ideal 3 against 7; stretched spacing only widens that.
constexpr double kGapClusterRatio = 1.6;
constexpr double kElementGapBorderUnits = 2.0;
constexpr double kWordGapBorderUnits = 5.0;
// A single cluster of gaps shorter than this is surely letter gaps.
constexpr double kPlainLetterGapUnits = 4.5;
constexpr double kRunEndUnits = 7.0;
constexpr double kOutlierRatio = 4.0;
// Keying held back for the estimate never grows beyond this; then the defaults decide.
constexpr std::size_t kMaxWaiting = 256;

struct Split {
    double low = 0.0;   ///< mean of the shorter cluster
    double high = 0.0;  ///< mean of the longer cluster
    std::size_t lowCount = 0;
    std::size_t highCount = 0;
};

/// The best split of durations into a shorter and a longer cluster, judged on their logarithms
/// (largest variance between the two). A duration over four times the short ones (the tenth
/// percentile, so one glitch does not count) counts as four times them, so a long pause or a key
/// held down does not take a cluster to itself.
Split BestSplit(const std::deque<double>& durations) {
    std::vector<double> sorted(durations.begin(), durations.end());
    std::sort(sorted.begin(), sorted.end());
    const std::size_t n = sorted.size();
    const double longest = n > 0 ? kOutlierRatio * sorted[n / 10] : 0.0;
    double totalLog = 0.0;
    for (double& d : sorted) {
        d = std::min(d, longest);
        totalLog += std::log(d);
    }
    std::size_t best = n;
    double bestScore = -1.0;
    double lowLog = 0.0;
    for (std::size_t k = 1; k < n; ++k) {
        lowLog += std::log(sorted[k - 1]);
        const double highLog = totalLog - lowLog;
        const auto lowN = static_cast<double>(k);
        const auto highN = static_cast<double>(n - k);
        const double score = lowLog * lowLog / lowN + highLog * highLog / highN;
        if (score > bestScore) {
            bestScore = score;
            best = k;
        }
    }
    Split split;
    split.lowCount = std::min(best, n);
    split.highCount = n - split.lowCount;
    const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(split.lowCount);
    if (split.lowCount > 0) {
        split.low =
            std::accumulate(sorted.begin(), middle, 0.0) / static_cast<double>(split.lowCount);
    }
    if (split.highCount > 0) {
        split.high =
            std::accumulate(middle, sorted.end(), 0.0) / static_cast<double>(split.highCount);
    }
    return split;
}

/// Whether the two clusters are of two kinds: the longer at least ratio times the shorter.
bool Apart(const Split& split, double ratio) {
    return split.highCount > 0 && split.high >= ratio * split.low;
}

void Push(std::deque<double>& window, double value, std::size_t limit) {
    window.push_back(value);
    if (window.size() > limit) {
        window.pop_front();
    }
}

std::size_t Index(KeyedKind kind) {
    return static_cast<std::size_t>(kind);
}

}  // namespace

CKeyingDecoder::CKeyingDecoder(double hintWordsPerMinute)
    : m_hintUnit(hintWordsPerMinute > 0.0 ? kSecondsPerWordUnit / hintWordsPerMinute : 0.0) {}

void CKeyingDecoder::Mark(double seconds) {
    if (!(seconds > 0.0) || !std::isfinite(seconds)) {
        return;
    }
    Push(m_marks, seconds, kMarkWindow);
    m_waiting.push_back({true, seconds});
    Estimate();
    Flush();
}

void CKeyingDecoder::Space(double seconds) {
    if (!(seconds > 0.0) || !std::isfinite(seconds) || m_marks.empty()) {
        return;
    }
    m_waiting.push_back({false, seconds});
    Flush();
}

void CKeyingDecoder::Estimate() {
    const Split split = BestSplit(m_marks);
    if (Apart(split, kClusterRatio)) {
        m_unit = split.low;  // the dit is the unit, however long the dahs
        m_markBorder = std::sqrt(split.low * split.high);
        return;
    }
    m_markBorder = 0.0;
    // One kind of mark only: their own length says which once a unit is known.
    double mean = 0.0;
    for (const double m : m_marks) {
        mean += m;
    }
    mean /= static_cast<double>(m_marks.size());
    if (m_unit > 0.0) {
        m_unit = mean < kElementGapBorderUnits * m_unit ? mean : mean / 3.0;
        return;
    }
    // Otherwise the shortest space between them tells: an element gap as long as the marks
    // makes them dits, one a third as long dahs.
    double shortest = 0.0;
    for (const Duration& d : m_waiting) {
        if (!d.mark && (shortest == 0.0 || d.seconds < shortest)) {
            shortest = d.seconds;
        }
    }
    if (shortest > 0.0 && shortest < 0.6 * mean) {
        m_unit = mean / 3.0;
    } else if (shortest > 0.0 && shortest < 1.6 * mean) {
        m_unit = mean;
    } else if (m_hintUnit > 0.0) {
        m_unit = m_hintUnit;
    }
}

void CKeyingDecoder::Flush() {
    if (m_waiting.size() > kMaxWaiting) {
        Settle();
    }
    if (m_unit <= 0.0) {
        return;
    }
    if (m_wordBorder <= 0.0) {
        // Letter and word gaps are told apart once both kinds have been seen, or once the
        // letter gaps are plainly short ones: stretched spacing waits for its first word break.
        std::deque<double> gaps;
        for (const Duration& d : m_waiting) {
            if (!d.mark && d.seconds >= kElementGapBorderUnits * m_unit) {
                gaps.push_back(d.seconds);
            }
        }
        if (gaps.empty()) {
            return;
        }
        const Split split = BestSplit(gaps);
        if (Apart(split, kGapClusterRatio)) {
            m_wordBorder = std::sqrt(split.low * split.high);
        } else if (std::max(split.low, split.high) < kPlainLetterGapUnits * m_unit) {
            m_wordBorder = kWordGapBorderUnits * m_unit;
        } else {
            return;
        }
    }
    while (!m_waiting.empty()) {
        const Duration next = m_waiting.front();
        m_waiting.pop_front();
        Classify(next);
    }
}

void CKeyingDecoder::Settle() {
    if (m_unit <= 0.0 && !m_marks.empty()) {
        m_unit = m_hintUnit > 0.0 ? m_hintUnit : m_marks.back();  // a lone kind: taken as dits
    }
    if (m_unit > 0.0 && m_wordBorder <= 0.0) {
        m_wordBorder = kWordGapBorderUnits * m_unit;
    }
}

void CKeyingDecoder::Classify(const Duration& duration) {
    const double unit = m_unit;
    if (duration.mark) {
        const double border = m_markBorder > 0.0 ? m_markBorder : kElementGapBorderUnits * unit;
        const bool dit = duration.seconds < border;
        m_pattern += dit ? '.' : '-';
        Add(dit ? KeyedKind::Dit : KeyedKind::Dah, duration.seconds);
        return;
    }
    if (duration.seconds < kElementGapBorderUnits * unit) {
        Add(KeyedKind::ElementGap, duration.seconds);
        return;
    }
    Push(m_gaps, duration.seconds, kGapWindow);
    const Split split = BestSplit(m_gaps);
    if (Apart(split, kGapClusterRatio)) {
        m_wordBorder = std::sqrt(split.low * split.high);
    }
    const double border = m_wordBorder > 0.0 ? m_wordBorder : kWordGapBorderUnits * unit;
    CloseLetter();
    if (duration.seconds < border) {
        Add(KeyedKind::LetterGap, duration.seconds);
    } else {
        Add(KeyedKind::WordGap, duration.seconds);
        m_wordOpen = !m_text.empty();
    }
}

void CKeyingDecoder::CloseLetter() {
    if (m_pattern.empty()) {
        return;
    }
    const std::string letter = CMorseAlphabet::PatternToText(m_pattern, false);
    if (m_wordOpen) {
        m_text += ' ';
        m_wordOpen = false;
    }
    m_text.append(letter.empty() ? std::string_view("*") : std::string_view(letter));
    m_pattern.clear();
}

void CKeyingDecoder::Finish() {
    Settle();
    Flush();
    CloseLetter();
    m_wordOpen = false;
}

bool CKeyingDecoder::RunOver(double silenceSeconds) const {
    const double unit = m_unit > 0.0 ? m_unit : m_hintUnit;
    return unit > 0.0 && silenceSeconds >= kRunEndUnits * unit;
}

double CKeyingDecoder::WordsPerMinute() const {
    return m_unit > 0.0 ? kSecondsPerWordUnit / m_unit : 0.0;
}

void CKeyingDecoder::Add(KeyedKind kind, double seconds) {
    Sums& sums = m_sums[Index(kind)];
    ++sums.count;
    sums.sum += seconds;
    sums.squares += seconds * seconds;
    if (m_keepTimeline) {
        m_timeline.push_back({kind, seconds});
    }
}

LengthStats CKeyingDecoder::Lengths(KeyedKind kind) const {
    const Sums& sums = m_sums[Index(kind)];
    LengthStats stats;
    stats.count = sums.count;
    if (sums.count == 0 || m_unit <= 0.0) {
        return stats;
    }
    const double n = sums.count;
    const double mean = sums.sum / n;
    const double variance = std::max(0.0, sums.squares / n - mean * mean);
    stats.meanUnits = mean / m_unit;
    stats.spreadPercent = mean > 0.0 ? 100.0 * std::sqrt(variance) / mean : 0.0;
    return stats;
}

KeyingStats CKeyingDecoder::Stats() const {
    KeyingStats stats;
    stats.unitSeconds = m_unit;
    stats.wordsPerMinute = WordsPerMinute();
    stats.dit = Lengths(KeyedKind::Dit);
    stats.dah = Lengths(KeyedKind::Dah);
    stats.elementGap = Lengths(KeyedKind::ElementGap);
    stats.letterGap = Lengths(KeyedKind::LetterGap);
    stats.wordGap = Lengths(KeyedKind::WordGap);
    if (stats.dit.meanUnits > 0.0) {
        stats.ditDahRatio = stats.dah.meanUnits / stats.dit.meanUnits;
    }
    return stats;
}

void CKeyingDecoder::Reset() {
    const double hint = m_hintUnit;
    const bool keep = m_keepTimeline;
    *this = CKeyingDecoder();
    m_hintUnit = hint;
    m_keepTimeline = keep;
}
