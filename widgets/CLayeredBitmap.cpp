// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CLayeredBitmap.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <algorithm>

namespace {
bool IsEnter(const QKeyEvent* event) {
    return event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
}
}  // namespace

CLayeredBitmap::CLayeredBitmap(QWidget* parent) : QFrame(parent) {
    // The straight key is the Enter key on this control, so it must be reachable by Tab and
    // by a click.
    setFocusPolicy(Qt::StrongFocus);
}

CLayeredBitmap::Layer* CLayeredBitmap::Find(int id) {
    auto it = std::find_if(m_layers.begin(), m_layers.end(),
                           [id](const Layer& layer) { return layer.id == id; });
    return it == m_layers.end() ? nullptr : &*it;
}

const CLayeredBitmap::Layer* CLayeredBitmap::Find(int id) const {
    return const_cast<CLayeredBitmap*>(this)->Find(id);
}

void CLayeredBitmap::AddLayer(int id, const QString& name, const QPixmap& pixmap, bool visible) {
    if (Layer* layer = Find(id)) {
        *layer = Layer{id, name, pixmap, visible};
    } else {
        m_layers.push_back(Layer{id, name, pixmap, visible});
    }
    updateGeometry();
    update();
}

bool CLayeredBitmap::ShowLayer(int id, bool show) {
    Layer* layer = Find(id);
    if (layer == nullptr) {
        return false;
    }
    if (layer->visible != show) {
        layer->visible = show;
        update();
    }
    return true;
}

bool CLayeredBitmap::IsLayerVisible(int id) const {
    const Layer* layer = Find(id);
    return layer != nullptr && layer->visible;
}

bool CLayeredBitmap::HasLayer(int id) const {
    return Find(id) != nullptr;
}

QString CLayeredBitmap::LayerName(int id) const {
    const Layer* layer = Find(id);
    return layer == nullptr ? QString() : layer->name;
}

std::vector<int> CLayeredBitmap::VisibleLayers() const {
    std::vector<int> ids;
    for (const Layer& layer : m_layers) {
        if (layer.visible) {
            ids.push_back(layer.id);
        }
    }
    return ids;
}

QSize CLayeredBitmap::sizeHint() const {
    QSize size(32, 32);
    for (const Layer& layer : m_layers) {
        size = size.expandedTo(layer.pixmap.deviceIndependentSize().toSize());
    }
    return size;
}

void CLayeredBitmap::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    const QRect inner = contentsRect().adjusted(2, 2, -2, -2);
    for (const Layer& layer : m_layers) {
        if (!layer.visible || layer.pixmap.isNull()) {
            continue;
        }
        // Keep the bitmap's proportions, centred in the control.
        const QSizeF source = layer.pixmap.deviceIndependentSize();
        QSizeF target = source.scaled(QSizeF(inner.size()), Qt::KeepAspectRatio);
        QRectF where(QPointF(0, 0), target);
        where.moveCenter(QRectF(inner).center());
        painter.drawPixmap(where, layer.pixmap, QRectF(layer.pixmap.rect()));
    }
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.rect = rect().adjusted(1, 1, -1, -1);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

void CLayeredBitmap::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        emit clicked();
    }
    QFrame::mouseReleaseEvent(event);
}

void CLayeredBitmap::keyPressEvent(QKeyEvent* event) {
    if (IsEnter(event)) {
        emit enterPressed(event->isAutoRepeat());
    }
    // Passed on, never swallowed: the form may have its own use for the key.
    QFrame::keyPressEvent(event);
}

void CLayeredBitmap::keyReleaseEvent(QKeyEvent* event) {
    if (IsEnter(event)) {
        emit enterReleased(event->isAutoRepeat());
    }
    QFrame::keyReleaseEvent(event);
}
