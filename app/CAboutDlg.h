// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

/// "About Tonwerk": icon, version line, a second line and OK.
class CAboutDlg : public QDialog {
    Q_OBJECT

public:
    explicit CAboutDlg(QWidget* parent = nullptr);
};
