// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFrame>
#include <QPixmap>
#include <QString>
#include <vector>

/// A stack of named bitmaps, each with an id, any of which can be shown or hidden; visible
/// layers are painted bottom to top, scaled to the control. It takes the keyboard focus, reports
/// clicks, and reports the Enter key going down and up without consuming it.
class CLayeredBitmap : public QFrame {
    Q_OBJECT
public:
    explicit CLayeredBitmap(QWidget* parent = nullptr);

    /// Adds a layer on top; a layer with an id already present is replaced in place.
    void AddLayer(int id, const QString& name, const QPixmap& pixmap, bool visible = false);
    /// Shows or hides one layer; an unknown id is ignored. Returns whether the id was known.
    bool ShowLayer(int id, bool show = true);
    bool HideLayer(int id) { return ShowLayer(id, false); }
    bool IsLayerVisible(int id) const;
    bool HasLayer(int id) const;
    /// The layer's name, empty for an unknown id.
    QString LayerName(int id) const;
    /// Ids of the visible layers, bottom to top.
    std::vector<int> VisibleLayers() const;
    int LayerCount() const { return static_cast<int>(m_layers.size()); }

    QSize sizeHint() const override;

signals:
    void clicked();
    /// Enter (Return or the keypad's Enter) pressed while focused; autoRepeat for held keys.
    void enterPressed(bool autoRepeat);
    /// Enter released while focused.
    void enterReleased(bool autoRepeat);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

private:
    struct Layer {
        int id = 0;
        QString name;
        QPixmap pixmap;
        bool visible = false;
    };
    Layer* Find(int id);
    const Layer* Find(int id) const;

    std::vector<Layer> m_layers;
};
