// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <functional>

class QLabel;
class QSpinBox;

/// "Koch Lesson": picks a lesson of the Koch course, showing the characters it practises.
class CKochLessonDlg : public QDialog {
    Q_OBJECT

public:
    /// Replaces the modal loop in tests: gets the dialog, returns the dialog result.
    using Driver = std::function<int(CKochLessonDlg&)>;

    explicit CKochLessonDlg(int lesson, QWidget* parent = nullptr);

    int Lesson() const;
    void SetLesson(int lesson);
    /// The lesson's characters as shown, the newest one last.
    QString CharactersText() const;

    static int Run(CKochLessonDlg& dialog);
    static void SetDriver(Driver driver);

private:
    void ShowCharacters(int lesson);

    QSpinBox* m_lesson = nullptr;
    QLabel* m_characters = nullptr;
};
