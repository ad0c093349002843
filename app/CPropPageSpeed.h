// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include "model/CodeTiming.h"

class QLineEdit;
class QPushButton;

/// The "Speed" page: the four pause values (1 to 500 each), the tone and the word rate, and the
/// two presets.
class CPropPageSpeed : public QWidget {
    Q_OBJECT

public:
    explicit CPropPageSpeed(QWidget* parent = nullptr);

    int PauseChar = 1;
    int PauseDah = 3;
    int PauseDit = 1;
    int PauseWord = 7;
    int ToneMHz = 1000;
    int WordRate = 0;

    /// Data exchange: true pulls (with validation), false pushes the members to the fields.
    bool UpdateData(bool saveAndValidate);

    void OnResetDefaults();
    void OnFarnsworth();

    QLineEdit* Field(int id) const;

signals:
    void Modified();

private:
    /// Sets the six values of a preset (speech fields unused), shows them and marks the page.
    void ApplyPreset(const CodeTiming& preset);
    QLineEdit* m_editDit;
    QLineEdit* m_editDah;
    QLineEdit* m_editChar;
    QLineEdit* m_editWord;
    QLineEdit* m_editTone;
    QLineEdit* m_editRate;
};
