// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLayout>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <vector>

/// Resizable form layout. Every widget is placed at its design rectangle, given for the form's
/// base size; when the form grows, each corner of the widget moves by a share of the growth:
/// the top-left anchor and the bottom-right anchor are percentages (x of the width growth,
/// y of the height growth). Anchors (0,0)-(0,0) keep a widget in place, (0,0)-(100,100) let it
/// grow with the form. The form never lays out below its base size.
class CAnchorLayout : public QLayout {
    Q_OBJECT
public:
    explicit CAnchorLayout(QWidget* parent = nullptr);
    ~CAnchorLayout() override;

    /// The form size at which design rectangles are given (also the minimum size).
    void SetBaseSize(const QSize& size);
    QSize BaseSize() const { return m_baseSize; }

    /// Adds a widget with its design rectangle and anchors in percent.
    void AddWidget(QWidget* widget, const QRect& designRect, const QPoint& topLeftAnchor = {0, 0},
                   const QPoint& bottomRightAnchor = {0, 0});
    /// Changes the anchors of a widget already added; false for an unknown widget.
    bool SetAnchors(QWidget* widget, const QPoint& topLeftAnchor, const QPoint& bottomRightAnchor);
    /// Changes the design rectangle of a widget already added; false for an unknown widget.
    bool SetDesignRect(QWidget* widget, const QRect& designRect);
    QRect DesignRect(const QWidget* widget) const;

    /// Where a design rectangle goes for a form of the given size (pure geometry, for reuse and
    /// checks): growth below zero counts as zero.
    static QRect AnchoredRect(const QRect& designRect, const QSize& baseSize, const QSize& formSize,
                              const QPoint& topLeftAnchor, const QPoint& bottomRightAnchor);

    void addItem(QLayoutItem* item) override;
    int count() const override;
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;
    Qt::Orientations expandingDirections() const override;

private:
    struct Entry {
        QLayoutItem* item = nullptr;
        QRect design;
        QPoint topLeft;
        QPoint bottomRight;
    };
    int IndexOf(const QWidget* widget) const;

    std::vector<Entry> m_entries;
    QSize m_baseSize;
};
