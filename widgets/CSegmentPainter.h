// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QChar>
#include <QColor>
#include <QRectF>
#include <QString>
#include <cstdint>

class QPainter;

/// Draws text as fourteen-segment cells (plus a decimal point and a centred colon), computed
/// from the cell size so the result is sharp at any size.
class CSegmentPainter {
public:
    /// Segment bits: the outer ring a..f, the middle bars g1/g2, the diagonals and centre bars.
    enum Segment : std::uint32_t {
        kA = 1u << 0,
        kB = 1u << 1,
        kC = 1u << 2,
        kD = 1u << 3,
        kE = 1u << 4,
        kF = 1u << 5,
        kG1 = 1u << 6,
        kG2 = 1u << 7,
        kH = 1u << 8,
        kI = 1u << 9,
        kJ = 1u << 10,
        kK = 1u << 11,
        kL = 1u << 12,
        kM = 1u << 13,
        kDot = 1u << 14,
        kColonUpper = 1u << 15,
        kColonLower = 1u << 16,
    };

    /// The lit segments of a character; lower case shows as upper case, anything the cells
    /// cannot show (control characters, characters beyond ASCII) as blank.
    static std::uint32_t SegmentsOf(QChar c);
    /// Relative width of a character's cell: 1 for most, narrower for ':' and '.'.
    static double CellWidthOf(QChar c);
    /// Whether every character of the text has a segment form (blank counts as one).
    static bool CanShow(const QString& text);

    /// Draws one cell; unlit segments are drawn in the unlit colour unless it is transparent.
    static void PaintCell(QPainter& painter, const QRectF& cell, std::uint32_t segments,
                          const QColor& lit, const QColor& unlit);
    /// Draws the text centred in the rectangle, cells as large as the rectangle allows.
    static void PaintText(QPainter& painter, const QRectF& rect, const QString& text,
                          const QColor& lit, const QColor& unlit);
};
