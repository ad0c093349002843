// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CKochLessonDlg.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>

#include "training/CKochCourse.h"

namespace {

CKochLessonDlg::Driver& LessonDriver() {
    static CKochLessonDlg::Driver driver;
    return driver;
}

}  // namespace

CKochLessonDlg::CKochLessonDlg(int lesson, QWidget* parent) : QDialog(parent) {
    setObjectName("KochLessonDlg");
    setWindowTitle(tr("Koch Lesson"));
    m_lesson = new QSpinBox(this);
    m_lesson->setObjectName("spinLesson");
    m_lesson->setRange(CKochCourse::kFirstLesson, CKochCourse::kLastLesson);
    m_characters = new QLabel(this);
    m_characters->setObjectName("labelLessonCharacters");
    m_characters->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_lesson, &QSpinBox::valueChanged, this, &CKochLessonDlg::ShowCharacters);

    auto* note = new QLabel(tr("The newest character comes most often, then those you copy worst. "
                               "Copy 100 characters or more at 90 % to be offered the next "
                               "lesson."),
                            this);
    note->setWordWrap(true);

    auto* form = new QFormLayout(this);
    form->addRow(tr("&Lesson (1 to 39):"), m_lesson);
    form->addRow(tr("Characters:"), m_characters);
    form->addRow(note);
    form->addRow(buttons);
    SetLesson(lesson);
    ShowCharacters(Lesson());
}

int CKochLessonDlg::Lesson() const {
    return m_lesson->value();
}

void CKochLessonDlg::SetLesson(int lesson) {
    m_lesson->setValue(lesson);
}

QString CKochLessonDlg::CharactersText() const {
    return m_characters->text();
}

void CKochLessonDlg::ShowCharacters(int lesson) {
    QString shown;
    for (const char c : CKochCourse::LessonCharacters(lesson)) {
        if (!shown.isEmpty()) {
            shown += QLatin1Char(' ');
        }
        shown += QLatin1Char(c);
    }
    m_characters->setText(shown);
}

void CKochLessonDlg::SetDriver(Driver driver) {
    LessonDriver() = std::move(driver);
}

int CKochLessonDlg::Run(CKochLessonDlg& dialog) {
    if (LessonDriver()) {
        return LessonDriver()(dialog);
    }
    return dialog.exec();
}
