// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QWidget>
#include <map>

#include "training/CopyScore.h"

class QLabel;

/// All 58 selectable characters in a grid, each coloured by how well it was copied recently, from
/// red (copied wrong) over yellow to green (copied right); grey when it was not sent. Its tooltip
/// gives the counts.
class CCharacterHeatmap : public QWidget {
    Q_OBJECT

public:
    explicit CCharacterHeatmap(QWidget* parent = nullptr);

    void SetTallies(const std::map<char, CharacterTally>& tallies);

    /// The cell of a character, nullptr for one that is not selectable.
    QLabel* Cell(char c) const;
    /// The colour of a share copied right (0 to 1); an invalid colour for none sent.
    static QColor AccuracyColor(const CharacterTally& tally);

private:
    std::map<char, QLabel*> m_cells;
};
