// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

class QButtonGroup;
class QLineEdit;

/// The "Speech" page: the delay before a spoken letter and the voice.
class CPropPageSpeech : public QWidget {
    Q_OBJECT

public:
    static constexpr int kActorCount = 9;

    explicit CPropPageSpeech(QWidget* parent = nullptr);

    int SpeechDelay = 0;
    int Actor = 0;

    bool UpdateData(bool saveAndValidate);
    /// Checks the radio button of Actor and clears the other eight.
    void SetActorChecks();
    void OnResetDefaults();

signals:
    void Modified();

private:
    QLineEdit* m_editDelay;
    QButtonGroup* m_actors;
};
