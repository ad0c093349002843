// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

class CPracticeHistory;
class CTonwerkDoc;
class CTonwerkView;

/// The Koch course on the practice form: a lesson sets the selection buttons to its characters
/// and fills the practice text with groups that draw the newest and the weakest characters more
/// often. The current lesson is kept in the profile.
class CKochTrainer : public QObject {
    Q_OBJECT

public:
    CKochTrainer(CTonwerkDoc& doc, CTonwerkView& view, CPracticeHistory& history,
                 QObject* parent = nullptr);

    /// The lesson kept in the profile; 0 before the learner picked one.
    int CurrentLesson() const;
    /// The lesson a sent text practises: the current one when the text uses only its
    /// characters, otherwise 0.
    int LessonOf(const QString& sent) const;

    /// Random > Koch Lesson...: asks for a lesson and starts it.
    void OnKochLesson();
    /// Makes lesson current: the selection buttons, the profile and new practice text.
    void StartLesson(int lesson);

private:
    CTonwerkDoc& m_doc;
    CTonwerkView& m_view;
    CPracticeHistory& m_history;
};
