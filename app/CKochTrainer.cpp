// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CKochTrainer.h"

#include <QDateTime>
#include <QLineEdit>
#include <QPushButton>
#include <QTextEdit>

#include "app/CKochLessonDlg.h"
#include "app/CPracticeHistory.h"
#include "app/CTonwerkDoc.h"
#include "app/CTonwerkView.h"
#include "model/CCrtRandom.h"
#include "training/CKochCourse.h"

namespace {

constexpr std::string_view kSection = "CopyPractice";
constexpr std::string_view kLessonEntry = "KochLesson";

// The practice form's fields this uses, by form id.
constexpr int kPracticeTextId = 1002;
constexpr int kWordCountId = 1041;
constexpr int kWordSizeId = 1043;

}  // namespace

CKochTrainer::CKochTrainer(CTonwerkDoc& doc, CTonwerkView& view, CPracticeHistory& history,
                           QObject* parent)
    : QObject(parent), m_doc(doc), m_view(view), m_history(history) {}

int CKochTrainer::CurrentLesson() const {
    const int lesson = m_doc.Settings().Profile().GetInt(kSection, kLessonEntry, 0);
    return lesson >= CKochCourse::kFirstLesson && lesson <= CKochCourse::kLastLesson ? lesson : 0;
}

int CKochTrainer::LessonOf(const QString& sent) const {
    const int lesson = CurrentLesson();
    if (lesson == 0) {
        return 0;
    }
    const std::string_view characters = CKochCourse::LessonCharacters(lesson);
    for (const QChar c : sent) {
        if (!c.isSpace() && characters.find(c.toUpper().toLatin1()) == std::string_view::npos) {
            return 0;
        }
    }
    return lesson;
}

void CKochTrainer::OnKochLesson() {
    CKochLessonDlg dialog(std::max(CurrentLesson(), CKochCourse::kFirstLesson), &m_view);
    if (CKochLessonDlg::Run(dialog) == QDialog::Accepted) {
        StartLesson(dialog.Lesson());
    }
}

void CKochTrainer::StartLesson(int lesson) {
    // A refused word count or size has been reported; nothing changes until it is corrected.
    if (!m_view.UpdateData(true)) {
        return;
    }
    lesson = std::clamp(lesson, CKochCourse::kFirstLesson, CKochCourse::kLastLesson);
    m_doc.Settings().Profile().WriteInt(kSection, kLessonEntry, lesson);

    const std::string_view characters = CKochCourse::LessonCharacters(lesson);
    for (QPushButton* button : m_view.findChildren<QPushButton*>()) {
        const QString selection = button->property("selectionChar").toString();
        if (!selection.isEmpty()) {
            button->setChecked(characters.find(selection.at(0).toLatin1()) !=
                               std::string_view::npos);
        }
    }
    m_view.SaveSelection();

    const int count = qobject_cast<QLineEdit*>(m_view.Control(kWordCountId))->text().toInt();
    const int size = qobject_cast<QLineEdit*>(m_view.Control(kWordSizeId))->text().toInt();
    CHistoryStore* store = m_history.Store();
    CCrtRandom rng(static_cast<std::uint32_t>(QDateTime::currentSecsSinceEpoch()));
    const std::string text =
        CKochCourse::Groups(lesson, count, size, rng,
                            store ? store->RecentCharacters() : std::map<char, CharacterTally>{});
    qobject_cast<QTextEdit*>(m_view.Control(kPracticeTextId))
        ->setPlainText(QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size())));
    m_view.OnTextToMorse();
    m_view.OnCalculateCompletionTime();
}
