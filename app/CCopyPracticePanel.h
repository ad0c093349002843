// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDateTime>
#include <QDockWidget>
#include <QElapsedTimer>
#include <optional>

#include "training/CopyScore.h"

class CCopyResultView;
class CKochTrainer;
class CPracticeHistory;
class CTonwerkDoc;
class CTonwerkView;
class QAction;
class QCheckBox;
class QLabel;
class QPlainTextEdit;

/// View > Copy Practice: the learner types what they hear while Listen runs; when the run ends
/// (or on Check, Ctrl+K) the copy is aligned against what was sent and every character is marked,
/// with the accuracy, characters per minute and effective speed below. The first check of a run
/// is stored in the practice history. While a run lasts, the practice text, the code text and
/// the character displays can be hidden, so only the ears copy.
class CCopyPracticePanel : public QDockWidget {
    Q_OBJECT

public:
    CCopyPracticePanel(CTonwerkDoc& doc, CTonwerkView& view, CPracticeHistory& history,
                       CKochTrainer& koch, QWidget* parent = nullptr);

    /// Shows or closes the panel as the profile last had it.
    void RestoreOpen();

    /// Check (Ctrl+K): scores the copy against the last run's text (the practice text when
    /// nothing was sent yet), opening the panel if it was closed; a run still going is stopped
    /// first and checked when it ends.
    void OnCheck();

    QAction* CheckAction() const { return m_checkAction; }
    /// The last check's score, empty before the first.
    const std::optional<CopyScore>& LastScore() const { return m_score; }

signals:
    /// A checked session went into the history.
    void SessionStored();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void OnListeningStarted(const QString& sentText);
    void OnListeningFinished();
    void SetTextsHidden(bool hidden);
    /// What was sent of the run: the whole text, or up to the last character keyed when it was
    /// stopped early.
    QString SentPart() const;
    void ShowScore(bool saved);
    void OfferNextLesson(int lesson);
    void StoreOpen(bool open);

    CTonwerkDoc& m_doc;
    CTonwerkView& m_view;
    CPracticeHistory& m_history;
    CKochTrainer& m_koch;

    QCheckBox* m_hideCheck = nullptr;
    QPlainTextEdit* m_copyEdit = nullptr;
    QAction* m_checkAction = nullptr;
    CCopyResultView* m_result = nullptr;
    QLabel* m_summary = nullptr;

    // The last run: its text, when it started, how long it lasted and how many characters the
    // worker announced; a run is stored once, at its first check.
    QString m_sent;
    QDateTime m_started;
    QElapsedTimer m_runClock;
    double m_seconds = 0;
    int m_keyed = 0;
    bool m_listening = false;
    bool m_checkWhenFinished = false;
    bool m_runStored = true;
    std::optional<CopyScore> m_score;
};
