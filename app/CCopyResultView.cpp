// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CCopyResultView.h"

#include <QFontDatabase>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>

namespace {

/// The sent text's size; what was typed above a wrong character is drawn smaller.
constexpr int kSentPointSize = 15;
constexpr int kTypedPointSize = 10;
constexpr int kRowGap = 6;
constexpr int kMargin = 4;
/// A word break that went wrong is shown as a middle dot, so it can be seen.
constexpr char16_t kShownBreak = 0x00B7;

/// The character a cell stands for: what was sent, or for an extra one what was typed.
char Raw(const CopyCell& cell) {
    return cell.sent != 0 ? cell.sent : cell.copied;
}

QString Shown(char c, bool correct) {
    if (c == ' ') {
        return correct ? QStringLiteral(" ") : QString(QChar(kShownBreak));
    }
    return QString(QLatin1Char(c));
}

QFont MonoFont(int pointSize) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(pointSize);
    font.setBold(true);
    return font;
}

}  // namespace

CCopyResultView::CCopyResultView(QWidget* parent) : QWidget(parent) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
}

QColor CCopyResultView::MarkColor(CopyMark mark) {
    switch (mark) {
        case CopyMark::Correct:
            return {0x1b, 0x7f, 0x3b};
        case CopyMark::Wrong:
            return {0xc6, 0x28, 0x28};
        case CopyMark::Missed:
            return {0x9e, 0x9e, 0x9e};
        case CopyMark::Extra:
            return {0x6d, 0x4c, 0x41};
    }
    return {};
}

void CCopyResultView::SetCells(std::vector<CopyCell> cells) {
    m_cells = std::move(cells);
    updateGeometry();
    update();
}

int CCopyResultView::CellWidth() const {
    return QFontMetrics(MonoFont(kSentPointSize)).horizontalAdvance(QLatin1Char('M'));
}

int CCopyResultView::RowHeight() const {
    return QFontMetrics(MonoFont(kTypedPointSize)).height() +
           QFontMetrics(MonoFont(kSentPointSize)).height() + kRowGap;
}

std::vector<QPoint> CCopyResultView::Layout(int width) const {
    const int cell = CellWidth();
    const int row = RowHeight();
    const int columns = std::max(1, (width - 2 * kMargin) / cell);
    std::vector<QPoint> corners;
    corners.reserve(m_cells.size() + 1);
    int column = 0;
    int line = 0;
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        if (Raw(m_cells[i]) != ' ' && column > 0 && Raw(m_cells[i - 1]) == ' ') {
            // A word starts: it goes to the next line when it would not fit on this one.
            const auto end =
                std::find_if(m_cells.begin() + static_cast<std::ptrdiff_t>(i), m_cells.end(),
                             [](const CopyCell& c) { return Raw(c) == ' '; });
            const auto length = end - (m_cells.begin() + static_cast<std::ptrdiff_t>(i));
            if (column + length > columns) {
                column = 0;
                ++line;
            }
        }
        if (column >= columns) {
            column = 0;
            ++line;
        }
        corners.emplace_back(kMargin + column * cell, kMargin + line * row);
        ++column;
    }
    corners.emplace_back(kMargin, kMargin + (line + 1) * row);
    return corners;
}

QRect CCopyResultView::CellRect(std::size_t index) const {
    if (index >= m_cells.size()) {
        return {};
    }
    return {Layout(width())[index], QSize(CellWidth(), RowHeight() - kRowGap)};
}

int CCopyResultView::heightForWidth(int width) const {
    return Layout(width).back().y() + kMargin;
}

QSize CCopyResultView::sizeHint() const {
    constexpr int kColumnsWanted = 40;
    const int width = kColumnsWanted * CellWidth() + 2 * kMargin;
    return {width, heightForWidth(width)};
}

void CCopyResultView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const QFont sentFont = MonoFont(kSentPointSize);
    const QFont typedFont = MonoFont(kTypedPointSize);
    QFont extraFont = sentFont;
    extraFont.setStrikeOut(true);
    const int typedHeight = QFontMetrics(typedFont).height();
    const int sentHeight = QFontMetrics(sentFont).height();
    const int cell = CellWidth();
    const std::vector<QPoint> corners = Layout(width());
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        const CopyCell& c = m_cells[i];
        const QPoint corner = corners[i];
        // A long copy is only drawn where it shows.
        if (!event->rect().intersects(QRect(corner, QSize(cell, typedHeight + sentHeight)))) {
            continue;
        }
        painter.setPen(MarkColor(c.mark));
        if (c.mark == CopyMark::Wrong) {
            painter.setFont(typedFont);
            painter.drawText(QRect(corner.x(), corner.y(), cell, typedHeight), Qt::AlignCenter,
                             Shown(c.copied, false));
        }
        painter.setFont(c.mark == CopyMark::Extra ? extraFont : sentFont);
        painter.drawText(QRect(corner.x(), corner.y() + typedHeight, cell, sentHeight),
                         Qt::AlignCenter, Shown(Raw(c), c.mark == CopyMark::Correct));
    }
}
