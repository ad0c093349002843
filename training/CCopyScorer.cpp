// SPDX-License-Identifier: GPL-3.0-or-later
#include "training/CCopyScorer.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "model/CodePatterns.h"

namespace {

// The first band reaches this many diagonals beyond the lengths' difference either side.
constexpr std::size_t kFirstBand = 32;
// No more cells than this in one band (one byte each for the way back): some 15 ms of work.
constexpr std::size_t kMaxCells = std::size_t{4} << 20;
// However long the texts, the copy is aligned against at least this much more or less text.
constexpr std::size_t kMinSlack = 256;
constexpr int kImpossible = 1 << 29;

enum Step : std::uint8_t { kNone, kDiagonal, kMissed, kExtra };

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

int SubstitutionCost(char sent, char copied) {
    if (sent == copied) {
        return 0;
    }
    // A letter is never taken for a word break: such a pair is a missed and an extra one.
    return (sent == ' ') != (copied == ' ') ? kImpossible : 1;
}

std::size_t Difference(std::size_t a, std::size_t b) {
    return a > b ? a - b : b - a;
}

/// The alignment of sent against copied within the diagonals first..last (j - i), as steps from
/// the start; returns its cost.
int AlignInBand(std::string_view sent, std::string_view copied, std::ptrdiff_t first,
                std::ptrdiff_t last, std::vector<Step>& steps) {
    const auto rows = static_cast<std::ptrdiff_t>(sent.size());
    const auto columns = static_cast<std::ptrdiff_t>(copied.size());
    const std::ptrdiff_t width = last - first + 1;
    // Costs of the previous and the current row by diagonal, with one unreachable cell beyond
    // either end of the band so the loop needs no bounds tests.
    std::vector<int> previousRow(static_cast<std::size_t>(width + 2), kImpossible);
    std::vector<int> currentRow(static_cast<std::size_t>(width + 2), kImpossible);
    int* previous = previousRow.data() + 1 - first;
    int* current = currentRow.data() + 1 - first;
    std::vector<Step> way(static_cast<std::size_t>((rows + 1) * width), kNone);

    for (std::ptrdiff_t d = std::max<std::ptrdiff_t>(first, 0); d <= std::min(last, columns); ++d) {
        previous[d] = static_cast<int>(d);
        way[static_cast<std::size_t>(d - first)] = d > 0 ? kExtra : kNone;
    }
    for (std::ptrdiff_t i = 1; i <= rows; ++i) {
        Step* const row = way.data() + i * width - first;
        const char s = sent[static_cast<std::size_t>(i - 1)];
        // Only the diagonals whose column lies within the copy.
        std::ptrdiff_t from = std::max(first, -i);
        const std::ptrdiff_t to = std::min(last, columns - i);
        current[from - 1] = kImpossible;
        current[to + 1] = kImpossible;
        if (from == -i) {  // the first column: only missed characters lead there
            current[from] = previous[from + 1] + 1;
            row[from] = kMissed;
            ++from;
        }
        for (std::ptrdiff_t d = from; d <= to; ++d) {
            int best =
                previous[d] + SubstitutionCost(s, copied[static_cast<std::size_t>(i - 1 + d)]);
            Step step = kDiagonal;
            if (previous[d + 1] + 1 < best) {
                best = previous[d + 1] + 1;
                step = kMissed;
            }
            if (current[d - 1] + 1 < best) {
                best = current[d - 1] + 1;
                step = kExtra;
            }
            current[d] = std::min(best, kImpossible);
            row[d] = step;
        }
        std::swap(previous, current);
    }

    steps.clear();
    std::ptrdiff_t i = rows;
    std::ptrdiff_t d = columns - rows;
    const int cost = previous[d];
    while (i > 0 || i + d > 0) {
        const Step step = way[static_cast<std::size_t>(i * width + (d - first))];
        steps.push_back(step);
        if (step == kDiagonal) {
            --i;
        } else if (step == kMissed) {
            --i;
            ++d;
        } else {
            --d;
        }
    }
    std::ranges::reverse(steps);
    return cost;
}

void Tally(CopyScore& score, CopyMark mark, char sent, char copied) {
    score.cells.push_back({mark, sent, copied});
    if (mark == CopyMark::Extra) {
        score.extra += copied != ' ' ? 1 : 0;
        return;
    }
    if (sent == ' ') {
        return;
    }
    ++score.sentCount;
    CharacterTally& tally = score.characters[sent];
    ++tally.sent;
    if (mark == CopyMark::Correct) {
        ++score.correct;
        ++tally.correct;
    } else if (mark == CopyMark::Wrong) {
        ++score.wrong;
        ++score.confusions[{sent, copied}];
    } else {
        ++score.missed;
    }
}

}  // namespace

std::string CCopyScorer::Normalize(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    bool pendingBlank = false;
    for (const char c : ToUpperAscii(text)) {
        if (IsBlank(c)) {
            pendingBlank = !result.empty();
            continue;
        }
        if (pendingBlank) {
            result += ' ';
            pendingBlank = false;
        }
        result += c;
    }
    return result;
}

CopyScore CCopyScorer::Score(std::string_view sentText, std::string_view copiedText) {
    const std::string sent = Normalize(sentText);
    const std::string copied = Normalize(copiedText);
    const std::size_t n = sent.size();
    const std::size_t m = copied.size();

    // Far more of one text than of the other: only a slack beyond the shorter one is aligned,
    // the rest is missed or extra outright, so a runaway copy costs no more than a long one.
    auto alignedSizes = [&](std::size_t slack) {
        const std::size_t rows = std::min(n, m + slack);
        return std::pair{rows, std::min(m, rows + slack)};
    };
    auto cells = [&](std::pair<std::size_t, std::size_t> sizes, std::size_t band) {
        return (sizes.first + 1) * (Difference(sizes.first, sizes.second) + 2 * band + 1);
    };
    std::size_t slack = std::max(n, m);
    while (slack > kMinSlack && cells(alignedSizes(slack), kFirstBand) > kMaxCells / 4) {
        slack /= 2;
    }
    const auto [rows, columns] = alignedSizes(slack);
    const std::string_view head(sent.data(), rows);
    const std::string_view copiedHead(copied.data(), columns);

    // A path leaving the band takes at least the lengths' difference plus twice the band in
    // insertions and deletions. So when the first, narrow band's path costs more than that, one
    // wide enough for that cost gives the best alignment, unless the work limit narrows it.
    const auto difference =
        static_cast<std::ptrdiff_t>(columns) - static_cast<std::ptrdiff_t>(rows);
    auto align = [&](std::size_t band, std::vector<Step>& steps) {
        const auto half = static_cast<std::ptrdiff_t>(band);
        return AlignInBand(head, copiedHead, std::min<std::ptrdiff_t>(0, difference) - half,
                           std::max<std::ptrdiff_t>(0, difference) + half, steps);
    };
    std::vector<Step> steps;
    const auto cost = static_cast<std::size_t>(align(kFirstBand, steps));
    const std::size_t certain = Difference(rows, columns) + 2 * kFirstBand;
    if (cost > certain) {
        std::size_t band = (cost - Difference(rows, columns)) / 2 + 1;
        while (band > kFirstBand && cells({rows, columns}, band) > kMaxCells) {
            band = band * 7 / 8;
        }
        if (band > kFirstBand) {
            align(band, steps);
        }
    }

    CopyScore score;
    score.cells.reserve(steps.size() + (n - rows) + (m - columns));
    std::size_t i = 0;
    std::size_t j = 0;
    for (const Step step : steps) {
        if (step == kDiagonal) {
            Tally(score, sent[i] == copied[j] ? CopyMark::Correct : CopyMark::Wrong, sent[i],
                  copied[j]);
            ++i;
            ++j;
        } else if (step == kMissed) {
            Tally(score, CopyMark::Missed, sent[i++], 0);
        } else {
            Tally(score, CopyMark::Extra, 0, copied[j++]);
        }
    }
    for (; i < n; ++i) {
        Tally(score, CopyMark::Missed, sent[i], 0);
    }
    for (; j < m; ++j) {
        Tally(score, CopyMark::Extra, 0, copied[j]);
    }
    return score;
}

CCopyScorer::Lines CCopyScorer::AlignedLines(const CopyScore& score) {
    Lines lines;
    lines.sent.reserve(score.cells.size());
    lines.copy.reserve(score.cells.size());
    for (const CopyCell& cell : score.cells) {
        switch (cell.mark) {
            case CopyMark::Correct:
                lines.sent += cell.sent;
                lines.copy += cell.sent == ' ' ? ' ' : '.';
                break;
            case CopyMark::Wrong:
                lines.sent += cell.sent;
                lines.copy += cell.copied;
                break;
            case CopyMark::Missed:
                lines.sent += cell.sent;
                lines.copy += '-';
                break;
            case CopyMark::Extra:
                lines.sent += '+';
                lines.copy += cell.copied == ' ' ? '_' : cell.copied;
                break;
        }
    }
    return lines;
}
