// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CCharacterHeatmap.h"

#include <QGridLayout>
#include <QLabel>

#include "model/CMorseAlphabet.h"

namespace {

constexpr int kColumns = 15;
constexpr int kCellSize = 34;
const QColor kNotSent(0xe0, 0xe0, 0xe0);

}  // namespace

CCharacterHeatmap::CCharacterHeatmap(QWidget* parent) : QWidget(parent) {
    auto* grid = new QGridLayout(this);
    grid->setSpacing(3);
    grid->setContentsMargins(0, 0, 0, 0);
    int index = 0;
    for (const char c : CMorseAlphabet::SelectableCharacters()) {
        auto* cell = new QLabel(QString(QLatin1Char(c)), this);
        cell->setObjectName(QStringLiteral("heat_%1").arg(static_cast<int>(c)));
        cell->setTextFormat(Qt::PlainText);
        cell->setAlignment(Qt::AlignCenter);
        cell->setFixedSize(kCellSize, kCellSize);
        QFont font = cell->font();
        font.setBold(true);
        cell->setFont(font);
        grid->addWidget(cell, index / kColumns, index % kColumns);
        m_cells.emplace(c, cell);
        ++index;
    }
    SetTallies({});
}

QColor CCharacterHeatmap::AccuracyColor(const CharacterTally& tally) {
    if (tally.sent <= 0) {
        return {};
    }
    // Red at half copied or worse, yellow at three in four, green when all were right.
    const double share = static_cast<double>(tally.correct) / tally.sent;
    const double t = std::clamp((share - 0.5) / 0.5, 0.0, 1.0);
    const double hue = t * 120.0 / 360.0;
    return QColor::fromHsvF(static_cast<float>(hue), 0.55f, 0.95f);
}

void CCharacterHeatmap::SetTallies(const std::map<char, CharacterTally>& tallies) {
    for (const auto& [c, cell] : m_cells) {
        const auto found = tallies.find(c);
        const CharacterTally tally = found != tallies.end() ? found->second : CharacterTally{};
        const QColor color = AccuracyColor(tally);
        cell->setStyleSheet(QStringLiteral("background: %1; border-radius: 4px;")
                                .arg((color.isValid() ? color : kNotSent).name()));
        const QString name = QString(QLatin1Char(c));
        cell->setToolTip(tally.sent > 0 ? tr("%1: sent %2 times, copied right %3 (%4 %)")
                                              .arg(name)
                                              .arg(tally.sent)
                                              .arg(tally.correct)
                                              .arg(100.0 * tally.correct / tally.sent, 0, 'f', 1)
                                        : tr("%1: not sent recently").arg(name));
    }
}

QLabel* CCharacterHeatmap::Cell(char c) const {
    const auto found = m_cells.find(c);
    return found != m_cells.end() ? found->second : nullptr;
}
