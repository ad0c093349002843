// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CAnchorLayout.h"

#include <QWidget>
#include <QWidgetItem>
#include <algorithm>
#include <cmath>

CAnchorLayout::CAnchorLayout(QWidget* parent) : QLayout(parent) {
    setContentsMargins(0, 0, 0, 0);
}

CAnchorLayout::~CAnchorLayout() {
    for (Entry& entry : m_entries) {
        delete entry.item;
    }
}

void CAnchorLayout::SetBaseSize(const QSize& size) {
    m_baseSize = size.expandedTo(QSize(0, 0));
    invalidate();
}

void CAnchorLayout::AddWidget(QWidget* widget, const QRect& designRect, const QPoint& topLeftAnchor,
                              const QPoint& bottomRightAnchor) {
    if (widget == nullptr) {
        return;
    }
    if (IndexOf(widget) >= 0) {
        SetDesignRect(widget, designRect);
        SetAnchors(widget, topLeftAnchor, bottomRightAnchor);
        return;
    }
    addChildWidget(widget);
    m_entries.push_back(
        Entry{new QWidgetItem(widget), designRect, topLeftAnchor, bottomRightAnchor});
    invalidate();
}

bool CAnchorLayout::SetAnchors(QWidget* widget, const QPoint& topLeftAnchor,
                               const QPoint& bottomRightAnchor) {
    const int index = IndexOf(widget);
    if (index < 0) {
        return false;
    }
    m_entries[index].topLeft = topLeftAnchor;
    m_entries[index].bottomRight = bottomRightAnchor;
    invalidate();
    return true;
}

bool CAnchorLayout::SetDesignRect(QWidget* widget, const QRect& designRect) {
    const int index = IndexOf(widget);
    if (index < 0) {
        return false;
    }
    m_entries[index].design = designRect;
    invalidate();
    return true;
}

QRect CAnchorLayout::DesignRect(const QWidget* widget) const {
    const int index = IndexOf(widget);
    return index < 0 ? QRect() : m_entries[index].design;
}

QRect CAnchorLayout::AnchoredRect(const QRect& designRect, const QSize& baseSize,
                                  const QSize& formSize, const QPoint& topLeftAnchor,
                                  const QPoint& bottomRightAnchor) {
    const int growX = std::max(0, formSize.width() - baseSize.width());
    const int growY = std::max(0, formSize.height() - baseSize.height());
    // Rounded shares, so two neighbours anchored at 50 meet at the same pixel.
    auto share = [](int growth, int percent) {
        return static_cast<int>(std::lround(growth * static_cast<double>(percent) / 100.0));
    };
    // Corners as exclusive edges: a control anchored (0,0)-(100,0) grows by exactly growX.
    const int left = designRect.left() + share(growX, topLeftAnchor.x());
    const int top = designRect.top() + share(growY, topLeftAnchor.y());
    const int right = designRect.left() + designRect.width() + share(growX, bottomRightAnchor.x());
    const int bottom = designRect.top() + designRect.height() + share(growY, bottomRightAnchor.y());
    return QRect(left, top, std::max(0, right - left), std::max(0, bottom - top));
}

void CAnchorLayout::addItem(QLayoutItem* item) {
    // Items added the generic way keep their place and size as they are now.
    QRect design;
    if (QWidget* widget = item->widget()) {
        design = widget->geometry();
    } else {
        design = QRect(QPoint(0, 0), item->sizeHint());
    }
    m_entries.push_back(Entry{item, design, {0, 0}, {0, 0}});
    invalidate();
}

int CAnchorLayout::count() const {
    return static_cast<int>(m_entries.size());
}

QLayoutItem* CAnchorLayout::itemAt(int index) const {
    return (index >= 0 && index < count()) ? m_entries[index].item : nullptr;
}

QLayoutItem* CAnchorLayout::takeAt(int index) {
    if (index < 0 || index >= count()) {
        return nullptr;
    }
    QLayoutItem* item = m_entries[index].item;
    m_entries.erase(m_entries.begin() + index);
    invalidate();
    return item;
}

QSize CAnchorLayout::sizeHint() const {
    return minimumSize();
}

QSize CAnchorLayout::minimumSize() const {
    QSize size = m_baseSize;
    if (size.isEmpty()) {
        // No base size given: the design rectangles' extent.
        QRect extent;
        for (const Entry& entry : m_entries) {
            extent = extent.united(entry.design);
        }
        size = QSize(extent.right() + 1, extent.bottom() + 1).expandedTo(QSize(0, 0));
    }
    const QMargins margins = contentsMargins();
    return size.grownBy(margins);
}

void CAnchorLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    const QRect inner = rect.marginsRemoved(contentsMargins());
    const QSize base = minimumSize().shrunkBy(contentsMargins());
    for (const Entry& entry : m_entries) {
        QRect where =
            AnchoredRect(entry.design, base, inner.size(), entry.topLeft, entry.bottomRight);
        where.translate(inner.topLeft());
        // Widgets get exactly their anchored rectangle: QWidgetItem would shrink push buttons
        // and other fixed-height controls to their size hints.
        if (QWidget* widget = entry.item->widget()) {
            widget->setGeometry(where);
        } else {
            entry.item->setGeometry(where);
        }
    }
}

Qt::Orientations CAnchorLayout::expandingDirections() const {
    return Qt::Horizontal | Qt::Vertical;
}

int CAnchorLayout::IndexOf(const QWidget* widget) const {
    for (int i = 0; i < count(); ++i) {
        if (m_entries[i].item->widget() == widget) {
            return i;
        }
    }
    return -1;
}
