// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <vector>

/// What one keyed duration was taken for.
enum class KeyedKind { Dit, Dah, ElementGap, LetterGap, WordGap };

/// One mark or space as the decoder classed it.
struct KeyedElement {
    KeyedKind kind = KeyedKind::Dit;
    double seconds = 0.0;
};

/// Lengths of one kind of element over a run, in units of the estimated dit.
struct LengthStats {
    int count = 0;
    double meanUnits = 0.0;
    double spreadPercent = 0.0;  ///< standard deviation over the mean
};

/// The timing of a sending run as the feedback shows it.
struct KeyingStats {
    double wordsPerMinute = 0.0;  ///< from the unit: 1.2 s / unit (the character speed)
    double unitSeconds = 0.0;
    LengthStats dit;
    LengthStats dah;
    LengthStats elementGap;
    LengthStats letterGap;
    LengthStats wordGap;
    double ditDahRatio = 0.0;  ///< mean dah over mean dit; 3 is the ideal
};

/// Decodes keyed Morse from its mark and space durations, from a key or from a tone's envelope.
/// The unit is estimated adaptively over the recent marks: their lengths are split into two
/// clusters (dits and dahs) where they differ enough, and the unit is the dits' mean, however
/// long the dahs. Spaces under two units are element gaps; the longer ones are split into letter
/// and word gaps by clustering them too, so stretched (Farnsworth) spacing is read as such; while
/// only one kind has been seen, gaps under 4.5 units are letter gaps and the border is five
/// units. Letters are looked up in the trainer's alphabet, pro signs included; a pattern it does
/// not know is written as '*'. Spaces before the first mark are ignored.
///
/// What is keyed before the unit (from both kinds of mark, or one kind and the gaps between
/// them) and the word border are known waits, and is decoded as soon as they are (or with the
/// speed hint, or at Finish, or once 256 durations wait). Memory stays flat however long the
/// keying runs, unless the timeline is kept.
class CKeyingDecoder {
public:
    /// @param hintWordsPerMinute  the speed assumed while the marks leave the unit open (for
    ///        text of dits only or dahs only); 0 for none
    explicit CKeyingDecoder(double hintWordsPerMinute = 0.0);

    void Mark(double seconds);
    void Space(double seconds);

    /// Ends the run: what is still waiting is decoded and the open letter closed.
    void Finish();

    /// Whether a silence of this length since the last mark ends a sending run (seven units).
    bool RunOver(double silenceSeconds) const;

    /// The decoded text: a blank between words, none at either end.
    const std::string& Text() const { return m_text; }

    /// The estimated speed; 0 while the unit is unknown.
    double WordsPerMinute() const;

    /// The timing statistics of everything decoded so far.
    KeyingStats Stats() const;

    /// Keeps every classed element for a timeline picture (memory grows with the run).
    void SetKeepTimeline(bool keep) { m_keepTimeline = keep; }
    const std::vector<KeyedElement>& Timeline() const { return m_timeline; }

    /// Forgets the run and the estimate.
    void Reset();

private:
    struct Sums {
        int count = 0;
        double sum = 0.0;
        double squares = 0.0;
    };
    struct Duration {
        bool mark = false;
        double seconds = 0.0;
    };

    void Classify(const Duration& duration);
    void Estimate();
    void Flush();
    void Settle();
    void CloseLetter();
    void Add(KeyedKind kind, double seconds);
    LengthStats Lengths(KeyedKind kind) const;

    double m_hintUnit = 0.0;
    double m_unit = 0.0;             ///< 0 while unknown
    double m_markBorder = 0.0;       ///< dit/dah border in seconds; 0: two units
    double m_wordBorder = 0.0;       ///< letter/word gap border in seconds; 0: five units
    std::deque<double> m_marks;      ///< the recent marks the unit is estimated from
    std::deque<double> m_gaps;       ///< the recent spaces of two units and more
    std::deque<Duration> m_waiting;  ///< keyed before the unit was known
    std::string m_pattern;           ///< the open letter
    std::string m_text;
    bool m_wordOpen = false;  ///< a word break is due before the next letter
    Sums m_sums[5];
    bool m_keepTimeline = false;
    std::vector<KeyedElement> m_timeline;
};
