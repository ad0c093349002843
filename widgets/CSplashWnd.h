// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

/// A start-up splash window with the application icon and name. The application keeps a slot
/// for one but never creates it; it is here so that slot has a type.
class CSplashWnd : public QWidget {
    Q_OBJECT
public:
    explicit CSplashWnd(QWidget* parent = nullptr);

    /// Shows the splash centred on the primary screen.
    void ShowSplash();
    /// Closes the splash (what the application would do once its frame is up).
    void CloseSplash();

protected:
    void paintEvent(QPaintEvent* event) override;
};
