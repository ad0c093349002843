// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CSegmentPainter.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Segment letters: a..f ring, g/G middle left/right, h i j upper diagonal/centre/diagonal,
// k l m lower diagonal/centre/diagonal, '.' point, 'u'/'v' colon dots.
std::uint32_t FromLetters(const char* letters) {
    std::uint32_t bits = 0;
    for (const char* p = letters; *p; ++p) {
        switch (*p) {
            case 'a':
                bits |= CSegmentPainter::kA;
                break;
            case 'b':
                bits |= CSegmentPainter::kB;
                break;
            case 'c':
                bits |= CSegmentPainter::kC;
                break;
            case 'd':
                bits |= CSegmentPainter::kD;
                break;
            case 'e':
                bits |= CSegmentPainter::kE;
                break;
            case 'f':
                bits |= CSegmentPainter::kF;
                break;
            case 'g':
                bits |= CSegmentPainter::kG1;
                break;
            case 'G':
                bits |= CSegmentPainter::kG2;
                break;
            case 'h':
                bits |= CSegmentPainter::kH;
                break;
            case 'i':
                bits |= CSegmentPainter::kI;
                break;
            case 'j':
                bits |= CSegmentPainter::kJ;
                break;
            case 'k':
                bits |= CSegmentPainter::kK;
                break;
            case 'l':
                bits |= CSegmentPainter::kL;
                break;
            case 'm':
                bits |= CSegmentPainter::kM;
                break;
            case '.':
                bits |= CSegmentPainter::kDot;
                break;
            case 'u':
                bits |= CSegmentPainter::kColonUpper;
                break;
            case 'v':
                bits |= CSegmentPainter::kColonLower;
                break;
            default:
                break;
        }
    }
    return bits;
}

// clang-format off
// Printable ASCII 32..95; lower case is folded onto upper case before the lookup.
constexpr std::array<const char*, 64> kGlyphs{
    "",        "bc.",      "ib",       "bcdgGil",  "acdfgGil", "cfjkgG",   "adeghjm", "j",
    "jm",      "hk",       "gGhijklm", "gGil",     "k",        "gG",       ".",       "jk",
    "abcdefjk", "bcj",     "abdegG",   "abcdG",    "bcfgG",    "acdfgG",   "acdefgG", "abc",
    "abcdefgG", "abcdfgG", "uv",       "uk",       "jmg",      "dgG",      "hkG",     "abGl",
    "abdefGi", "abcefgG",  "abcdGil",  "adef",     "abcdil",   "adefg",    "aefg",    "acdefG",
    "bcefgG",  "adil",     "bcde",     "efgjm",    "def",      "bcefhj",   "bcefhm",  "abcdef",
    "abefgG",  "abcdefm",  "abefgGm",  "acdfgG",   "ail",      "bcdef",    "efjk",    "bcefkm",
    "hjkm",    "hjl",      "adjk",     "adef",     "hm",       "abcd",     "km",      "d",
};
// clang-format on

}  // namespace

std::uint32_t CSegmentPainter::SegmentsOf(QChar c) {
    char16_t code = c.unicode();
    if (code >= u'a' && code <= u'z') {
        code = static_cast<char16_t>(code - u'a' + u'A');
    }
    if (code < 32 || code > 95) {
        return 0;
    }
    return FromLetters(kGlyphs[code - 32]);
}

double CSegmentPainter::CellWidthOf(QChar c) {
    return (c == u':' || c == u'.') ? 0.4 : 1.0;
}

bool CSegmentPainter::CanShow(const QString& text) {
    return std::all_of(text.begin(), text.end(),
                       [](QChar c) { return c == u' ' || c == QChar(0) || SegmentsOf(c) != 0; });
}

void CSegmentPainter::PaintCell(QPainter& painter, const QRectF& cell, std::uint32_t segments,
                                const QColor& lit, const QColor& unlit) {
    const double w = cell.width();
    const double h = cell.height();
    if (w < 2 || h < 2) {
        return;
    }
    const double t = std::max(1.0, std::min(w * 0.17, h * 0.1));  // segment thickness
    const double x0 = cell.left() + t;
    const double x1 = cell.right() - t * 1.6;  // room for the point on the right
    const double xm = (x0 + x1) / 2;
    const double y0 = cell.top() + t;
    const double y2 = cell.bottom() - t;
    const double ym = (y0 + y2) / 2;
    const double gap = t * 0.65;

    struct Line {
        std::uint32_t bit;
        QPointF from;
        QPointF to;
        bool diagonal;
    };
    const std::array<Line, 14> lines{{
        {kA, {x0, y0}, {x1, y0}, false},
        {kB, {x1, y0}, {x1, ym}, false},
        {kC, {x1, ym}, {x1, y2}, false},
        {kD, {x0, y2}, {x1, y2}, false},
        {kE, {x0, ym}, {x0, y2}, false},
        {kF, {x0, y0}, {x0, ym}, false},
        {kG1, {x0, ym}, {xm, ym}, false},
        {kG2, {xm, ym}, {x1, ym}, false},
        {kH, {x0, y0}, {xm, ym}, true},
        {kI, {xm, y0}, {xm, ym}, false},
        {kJ, {x1, y0}, {xm, ym}, true},
        {kK, {x0, y2}, {xm, ym}, true},
        {kL, {xm, ym}, {xm, y2}, false},
        {kM, {x1, y2}, {xm, ym}, true},
    }};

    // Slight slant, like the displays of real equipment.
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    QTransform slant;
    slant.translate(cell.center().x(), cell.center().y());
    slant.shear(-0.08, 0);
    slant.translate(-cell.center().x(), -cell.center().y());
    painter.setTransform(slant, true);

    auto drawLine = [&](const Line& line, const QColor& colour) {
        const QPointF d = line.to - line.from;
        const double length = std::hypot(d.x(), d.y());
        const double cut = line.diagonal ? gap * 1.8 : gap;
        if (length <= 2 * cut) {
            return;
        }
        const QPointF unit = d / length;
        QPen pen(colour, line.diagonal ? t * 0.8 : t, Qt::SolidLine, Qt::RoundCap);
        painter.setPen(pen);
        painter.drawLine(line.from + unit * cut, line.to - unit * cut);
    };
    auto drawDot = [&](QPointF centre, const QColor& colour) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawEllipse(centre, t * 0.7, t * 0.7);
    };

    // ':' and '.' get narrow cells of their own: no segment ring, dots centred.
    const bool narrow = w < h * 0.3;
    const double cx = narrow ? cell.center().x() : xm;
    const QPointF upperDot(cx, y0 + (ym - y0) * 0.55);
    const QPointF lowerDot(cx, ym + (y2 - ym) * 0.45);
    const QPointF point(cell.right() - t * 0.8, y2);

    if (unlit.alpha() > 0 && !narrow) {
        for (const Line& line : lines) {
            if ((segments & line.bit) == 0) {
                drawLine(line, unlit);
            }
        }
        if ((segments & kDot) == 0) {
            drawDot(point, unlit);
        }
    }
    for (const Line& line : lines) {
        if (segments & line.bit) {
            drawLine(line, lit);
        }
    }
    if (segments & kDot) {
        drawDot(narrow ? QPointF(cell.center().x(), y2) : point, lit);
    }
    if (segments & kColonUpper) {
        drawDot(upperDot, lit);
    }
    if (segments & kColonLower) {
        drawDot(lowerDot, lit);
    }
    painter.restore();
}

void CSegmentPainter::PaintText(QPainter& painter, const QRectF& rect, const QString& text,
                                const QColor& lit, const QColor& unlit) {
    if (text.isEmpty() || rect.width() < 2 || rect.height() < 2) {
        return;
    }
    double units = 0;
    for (QChar c : text) {
        units += CellWidthOf(c);
    }
    constexpr double kAspect = 0.58;  // cell width to height
    double cellHeight = rect.height();
    if (cellHeight * kAspect * units > rect.width()) {
        cellHeight = rect.width() / (kAspect * units);
    }
    const double cellWidth = cellHeight * kAspect;
    double x = rect.center().x() - cellWidth * units / 2;
    const double y = rect.center().y() - cellHeight / 2;
    for (QChar c : text) {
        const double width = cellWidth * CellWidthOf(c);
        PaintCell(painter, QRectF(x, y, width, cellHeight), SegmentsOf(c), lit, unlit);
        x += width;
    }
}
