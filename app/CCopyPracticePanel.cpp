// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CCopyPracticePanel.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "app/CCopyResultView.h"
#include "app/CKochTrainer.h"
#include "app/CModalSeam.h"
#include "app/CPracticeHistory.h"
#include "app/CTonwerkDoc.h"
#include "app/CTonwerkView.h"
#include "audio/INotifyTarget.h"
#include "history/CHistoryStore.h"
#include "model/CodePatterns.h"
#include "training/CCopyScorer.h"
#include "training/CKochCourse.h"

namespace {

constexpr std::string_view kSection = "CopyPractice";
constexpr std::string_view kOpenEntry = "Open";
constexpr std::string_view kHideEntry = "HideText";

/// What a learner copying by ear must not see while a run lasts: the practice text, the code
/// text and the current, next and previous characters, by form id.
constexpr int kHiddenWhileListening[] = {1002, 1001, 1006, 1010, 1037};
/// The copy field's height: four lines and a little room.
constexpr int kCopyLines = 4;
constexpr int kCopyPadding = 8;

}  // namespace

CCopyPracticePanel::CCopyPracticePanel(CTonwerkDoc& doc, CTonwerkView& view,
                                       CPracticeHistory& history, CKochTrainer& koch,
                                       QWidget* parent)
    : QDockWidget(tr("Copy Practice"), parent),
      m_doc(doc),
      m_view(view),
      m_history(history),
      m_koch(koch) {
    setObjectName("CopyPracticePanel");
    auto* body = new QWidget(this);
    m_hideCheck = new QCheckBox(tr("&Hide the text while listening"), body);
    m_hideCheck->setObjectName("checkHideText");
    m_hideCheck->setChecked(m_doc.Settings().Profile().GetInt(kSection, kHideEntry, 1) != 0);
    m_copyEdit = new QPlainTextEdit(body);
    m_copyEdit->setObjectName("editCopy");
    m_copyEdit->setPlaceholderText(tr("Type what you hear while listening"));
    m_copyEdit->setFixedHeight(m_copyEdit->fontMetrics().lineSpacing() * kCopyLines +
                               2 * m_copyEdit->frameWidth() + kCopyPadding);
    m_checkAction = new QAction(tr("Chec&k Copy\tCtrl+K"), this);
    m_checkAction->setObjectName("actionCheckCopy");
    m_checkAction->setShortcut(QKeySequence(tr("Ctrl+K")));
    m_checkAction->setStatusTip(tr("Mark what you copied against what was sent"));
    addAction(m_checkAction);
    auto* checkButton = new QPushButton(tr("Check"), body);
    checkButton->setObjectName("buttonCheck");
    checkButton->setToolTip(tr("Mark what you copied against what was sent (Ctrl+K)"));
    m_result = new CCopyResultView(body);
    m_result->setObjectName("copyResult");
    auto* scroll = new QScrollArea(body);
    scroll->setWidgetResizable(true);
    scroll->setWidget(m_result);
    m_summary = new QLabel(body);
    m_summary->setObjectName("labelCopySummary");
    m_summary->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* top = new QHBoxLayout;
    top->addWidget(m_hideCheck, 1);
    top->addWidget(checkButton);
    auto* layout = new QVBoxLayout(body);
    layout->addLayout(top);
    layout->addWidget(m_copyEdit);
    layout->addWidget(scroll, 1);
    layout->addWidget(m_summary);
    setWidget(body);

    connect(m_checkAction, &QAction::triggered, this, &CCopyPracticePanel::OnCheck);
    connect(checkButton, &QPushButton::clicked, this, &CCopyPracticePanel::OnCheck);
    connect(m_hideCheck, &QCheckBox::toggled, this, [this](bool on) {
        m_doc.Settings().Profile().WriteInt(kSection, kHideEntry, on ? 1 : 0);
        if (m_listening) {
            SetTextsHidden(on && isVisible());
        }
    });
    connect(toggleViewAction(), &QAction::triggered, this, &CCopyPracticePanel::StoreOpen);
    connect(&m_view, &CTonwerkView::ListeningStarted, this,
            &CCopyPracticePanel::OnListeningStarted);
    connect(&m_view, &CTonwerkView::ListeningFinished, this,
            &CCopyPracticePanel::OnListeningFinished);
    connect(&m_view, &CTonwerkView::AppMessage, this, [this](unsigned message) {
        if (m_listening && message == kAppMessage + 2) {
            ++m_keyed;
        }
    });
}

void CCopyPracticePanel::RestoreOpen() {
    setVisible(m_doc.Settings().Profile().GetInt(kSection, kOpenEntry, 0) != 0);
}

void CCopyPracticePanel::StoreOpen(bool open) {
    m_doc.Settings().Profile().WriteInt(kSection, kOpenEntry, open ? 1 : 0);
}

void CCopyPracticePanel::closeEvent(QCloseEvent* event) {
    StoreOpen(false);
    QDockWidget::closeEvent(event);
}

void CCopyPracticePanel::SetTextsHidden(bool hidden) {
    for (const int id : kHiddenWhileListening) {
        if (QWidget* control = m_view.Control(id)) {
            control->setVisible(!hidden);
        }
    }
}

void CCopyPracticePanel::OnListeningStarted(const QString& sentText) {
    // Nothing is keyed for an empty text, and no end will come.
    if (sentText.trimmed().isEmpty()) {
        return;
    }
    m_sent = sentText;
    m_started = QDateTime::currentDateTime();
    m_runClock.start();
    m_keyed = 0;
    m_listening = true;
    m_checkWhenFinished = false;
    m_runStored = false;
    m_score.reset();
    m_copyEdit->clear();
    m_result->SetCells({});
    m_summary->clear();
    if (isVisible()) {
        SetTextsHidden(m_hideCheck->isChecked());
        m_copyEdit->setFocus();
    }
}

void CCopyPracticePanel::OnListeningFinished() {
    // The stop and the worker's own finish may both arrive; the first ends the run.
    if (!m_listening) {
        return;
    }
    m_listening = false;
    m_seconds = static_cast<double>(m_runClock.elapsed()) / 1000.0;
    m_sent = SentPart();
    SetTextsHidden(false);
    if (m_sent.trimmed().isEmpty()) {
        return;  // stopped before the first character: nothing to check
    }
    if (m_checkWhenFinished || (isVisible() && !m_copyEdit->toPlainText().trimmed().isEmpty())) {
        OnCheck();
    }
}

QString CCopyPracticePanel::SentPart() const {
    // The worker announces each character but the blanks as it starts keying it.
    int left = m_keyed;
    for (qsizetype i = 0; i < m_sent.size(); ++i) {
        if (m_sent.at(i) != QLatin1Char(' ') && left-- == 0) {
            return m_sent.left(i);
        }
    }
    return m_sent;
}

void CCopyPracticePanel::OnCheck() {
    if (m_listening) {
        m_checkWhenFinished = true;
        m_view.OnListen();
        return;
    }
    if (isHidden()) {
        show();
        StoreOpen(true);
    }
    raise();
    const QString sent = m_sent.isEmpty() ? m_view.PracticeText() : m_sent;
    CopyScore score = CCopyScorer::Score(PlainPracticeText(sent.toStdString()),
                                         PlainPracticeText(m_copyEdit->toPlainText().toStdString()));
    m_result->SetCells(score.cells);
    m_score = std::move(score);

    bool saved = false;
    if (!m_runStored && !m_sent.isEmpty()) {
        m_runStored = true;
        const CProfileSettings& settings = m_doc.Settings();
        const int lesson = m_koch.LessonOf(m_sent);
        const CopySessionInfo info{m_started,
                                   m_seconds,
                                   settings.GetWordRate(),
                                   settings.GetFarnsworthFactor(),
                                   settings.GetToneMHz(),
                                   lesson,
                                   m_sent,
                                   m_copyEdit->toPlainText()};
        saved = m_history.Save(info, *m_score);
        ShowScore(saved);
        if (saved) {
            emit SessionStored();
        }
        if (lesson > 0 && CKochCourse::OffersNextLesson(lesson, *m_score)) {
            OfferNextLesson(lesson);
        }
        return;
    }
    ShowScore(saved);
}

void CCopyPracticePanel::ShowScore(bool saved) {
    const CopyScore& score = *m_score;
    QString text = tr("Accuracy %1 % (%2/%3): %4 wrong, %5 missed, %6 extra")
                       .arg(score.Accuracy(), 0, 'f', 1)
                       .arg(score.correct)
                       .arg(score.Judged())
                       .arg(score.wrong)
                       .arg(score.missed)
                       .arg(score.extra);
    if (m_seconds > 0) {
        text += tr("\n%1 characters per minute, effective speed %2 WPM")
                    .arg(score.CharactersPerMinute(m_seconds), 0, 'f', 0)
                    .arg(score.EffectiveWpm(m_seconds), 0, 'f', 1);
    }
    if (!saved && !m_history.LastError().isEmpty()) {
        text += tr("\nThis session was not saved: %1").arg(m_history.LastError());
    }
    m_summary->setText(text);
}

void CCopyPracticePanel::OfferNextLesson(int lesson) {
    const char added = CKochCourse::LessonCharacters(lesson + 1).back();
    const QString question =
        tr("You copied %1 % of %2 characters. Go on to Koch lesson %3, which adds %4?")
            .arg(m_score->Accuracy(), 0, 'f', 1)
            .arg(m_score->sentCount)
            .arg(lesson + 1)
            .arg(QLatin1Char(added));
    if (CModalSeam::Message(this, question, QMessageBox::Yes | QMessageBox::No,
                            QMessageBox::Question) == QMessageBox::Yes) {
        m_koch.StartLesson(lesson + 1);
    }
}
