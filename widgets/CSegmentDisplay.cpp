// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CSegmentDisplay.h"

#include "widgets/CSegmentPainter.h"

#include <QFontMetricsF>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace {
constexpr double kTextShare = 0.78;  // of the inner height, so the text never touches the frame
constexpr int kUnlitAlpha = 28;
}  // namespace

CSegmentDisplay::CSegmentDisplay(QWidget* parent) : QFrame(parent) {
    setFrameStyle(QFrame::Panel | QFrame::Sunken);
    setLineWidth(2);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void CSegmentDisplay::SetColours(const QColor& foreground, const QColor& background) {
    SetColours(background, background, foreground);
}

void CSegmentDisplay::SetColours(const QColor& backgroundTop, const QColor& backgroundBottom,
                                 const QColor& foreground) {
    m_backgroundTop = backgroundTop;
    m_backgroundBottom = backgroundBottom;
    m_foreground = foreground;
    update();
}

void CSegmentDisplay::SetStyleFlags(unsigned flags) {
    m_styleFlags = flags;
    update();
}

void CSegmentDisplay::SetText(const QString& text) {
    if (text == m_text) {
        return;
    }
    m_text = text;
    // Screen readers announce the shown character, not the drawing.
    setAccessibleName(text);
    update();
}

QSize CSegmentDisplay::sizeHint() const {
    return {48, 40};
}

QSize CSegmentDisplay::minimumSizeHint() const {
    return {12, 12};
}

void CSegmentDisplay::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        const QRect inner = contentsRect();
        if (m_styleFlags & kStyleGradient) {
            QLinearGradient gradient(inner.topLeft(), inner.bottomLeft());
            gradient.setColorAt(0, m_backgroundTop);
            gradient.setColorAt(1, m_backgroundBottom);
            painter.fillRect(inner, gradient);
        } else {
            painter.fillRect(inner, m_backgroundTop);
        }

        // The text of a display is often a zero character standing for a line break: nothing.
        QString shown = m_text;
        shown.remove(QChar(0));
        const QRectF area = QRectF(inner).adjusted(3, 3, -3, -3);
        // An empty segment display still shows its unlit cell, as the real thing would.
        if (shown.isEmpty() && (m_styleFlags & kStyleSegments)) {
            shown = QStringLiteral(" ");
        }
        if (!shown.isEmpty() && area.width() > 2 && area.height() > 2) {
            const bool segments = (m_styleFlags & kStyleSegments) || UsesSegmentsFor(shown);
            if (segments && CSegmentPainter::CanShow(shown)) {
                QColor unlit = m_foreground;
                unlit.setAlpha(kUnlitAlpha);
                const double height = area.height() * kTextShare;
                const QRectF cells(area.left(), area.center().y() - height / 2, area.width(),
                                   height);
                CSegmentPainter::PaintText(painter, cells, shown, m_foreground, unlit);
            } else {
                PaintFontText(painter, area, shown);
            }
        }
    }
    QFrame::paintEvent(event);  // the sunken frame on top of the background
}

bool CSegmentDisplay::UsesSegmentsFor(const QString& /*text*/) const {
    return false;
}

void CSegmentDisplay::PaintFontText(QPainter& painter, const QRectF& area, const QString& text) {
    // The widget's font gives family, weight and slant; its size follows the display so the
    // character stays large and clear whatever the form's size.
    QFont font = this->font();
    font.setPixelSize(std::max(4, static_cast<int>(area.height() * kTextShare)));
    const QFontMetricsF metrics(font);
    const double width = metrics.horizontalAdvance(text);
    if (width > area.width()) {
        font.setPixelSize(std::max(4, static_cast<int>(font.pixelSize() * area.width() / width)));
    }
    painter.save();
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    painter.setFont(font);
    painter.setPen(m_foreground);
    painter.drawText(area, Qt::AlignCenter, text);
    painter.restore();
}

void CSegmentDisplay::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        emit clicked();
    }
    QFrame::mouseReleaseEvent(event);
}
