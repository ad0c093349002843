// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QRect>
#include <QWidget>
#include <vector>

#include "training/CopyScore.h"

/// The sent text with every character marked as the copy was taken: correct in green, wrong in
/// red with what was typed above it, missed in grey, extra (typed but never sent) struck through.
/// Lines wrap between words, like a paragraph.
class CCopyResultView : public QWidget {
    Q_OBJECT

public:
    explicit CCopyResultView(QWidget* parent = nullptr);

    void SetCells(std::vector<CopyCell> cells);
    const std::vector<CopyCell>& Cells() const { return m_cells; }

    /// Where cell i is drawn at the widget's width: the typed row above the sent one.
    QRect CellRect(std::size_t index) const;
    static QColor MarkColor(CopyMark mark);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// The top-left corner of every cell, wrapped at width; the last entry is the end.
    std::vector<QPoint> Layout(int width) const;
    int CellWidth() const;
    int RowHeight() const;

    std::vector<CopyCell> m_cells;
};
