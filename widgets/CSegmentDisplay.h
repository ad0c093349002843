// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QFrame>
#include <QString>

/// Sunken display of a short text, drawn by the widget itself so that it stays sharp at any
/// size. With kStyleSegments every character is drawn as a lit fourteen-segment cell (unlit
/// segments faintly visible, so an empty display shows one unlit cell); otherwise the text is
/// drawn in the widget's font, scaled to fit. Zero characters in the text show as nothing.
class CSegmentDisplay : public QFrame {
    Q_OBJECT
public:
    /// Style flags, combinable.
    enum Style : unsigned {
        kStyleSegments = 1,   ///< fourteen-segment cells, like a LED display
        kStyleGradient = 16,  ///< background shaded from the first to the second colour
    };

    explicit CSegmentDisplay(QWidget* parent = nullptr);

    /// Foreground (lit segments or text) on a plain background.
    void SetColours(const QColor& foreground, const QColor& background);
    /// Background shaded from top to bottom, with the foreground colour for the text.
    void SetColours(const QColor& backgroundTop, const QColor& backgroundBottom,
                    const QColor& foreground);
    void SetStyleFlags(unsigned flags);
    unsigned StyleFlags() const { return m_styleFlags; }

    void SetText(const QString& text);
    QString Text() const { return m_text; }

    QColor Foreground() const { return m_foreground; }
    QColor BackgroundTop() const { return m_backgroundTop; }
    QColor BackgroundBottom() const { return m_backgroundBottom; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// A left click on the display (the clock uses it to refresh the estimate).
    void clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    /// Whether text is drawn as segments even without kStyleSegments (the clock's digits).
    virtual bool UsesSegmentsFor(const QString& text) const;

private:
    void PaintFontText(QPainter& painter, const QRectF& area, const QString& text);

    QString m_text;
    QColor m_foreground{Qt::black};
    QColor m_backgroundTop{Qt::white};
    QColor m_backgroundBottom{Qt::white};
    unsigned m_styleFlags = 0;
};
