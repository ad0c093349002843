// SPDX-License-Identifier: GPL-3.0-or-later
// The practice view's listening session: Listen / Stop, the worker's messages, the clock.
#include <QCheckBox>
#include <QDateTime>
#include <QSlider>
#include <QThread>
#include <QTimerEvent>

#include "app/CMainFrame.h"
#include "app/CTonwerkDoc.h"
#include "app/CTonwerkView.h"
#include "res/TonwerkResources.h"
#include "widgets/CClockDisplay.h"
#include "widgets/CImageButton.h"
#include "widgets/CKeyLamp.h"
#include "widgets/CSegmentDisplay.h"
#include "widgets/CStatusProgress.h"

namespace {

constexpr int kClockPeriodMs = 1000;
/// The learner hears the character before its name is spoken.
constexpr unsigned long kSpeechWaitMs = 750;
/// From this speed on the lamp only follows the tones while muted: it could not keep up.
constexpr int kLampFollowsBelowWpm = 25;

/// A display's text for one character of the listening text; a line break, kept in the text as a
/// zero character, shows as nothing.
QString DisplayText(const std::string& character) {
    return character == std::string(1, '\0') ? QString() : QString::fromLatin1(character);
}

}  // namespace

void CTonwerkView::SetTimeSource(std::function<std::int64_t()> now) {
    m_now = std::move(now);
}

std::int64_t CTonwerkView::NowSeconds() const {
    return m_now ? m_now() : QDateTime::currentSecsSinceEpoch();
}

void CTonwerkView::EnableSessionControls(bool enable) {
    for (QWidget* control :
         std::initializer_list<QWidget*>{m_record, m_wordRateSlider, m_pitchSlider, m_random}) {
        control->setEnabled(enable);
    }
}

void CTonwerkView::OnListen() {
    m_clockTimer.stop();
    // A refused field has been reported; the session goes on with the values that were taken.
    UpdateData(true);
    m_doc->Settings().SetFarnsworthFactor(m_farnsworth);

    if (m_soundGen.IsRunning()) {
        // A stopped run posts nothing more: the session ends here, once.
        m_soundGen.StartStop();
        OnSessionFinished();
        return;
    }

    CStatusProgress* progress = m_frame ? m_frame->ResetProgress() : nullptr;
    const QByteArray text = KeyedText();
    const std::string_view textView(text.constData(), static_cast<std::size_t>(text.size()));
    m_cursor.Reset(textView);
    if (progress) {
        progress->SetStep(1);
        progress->SetRange(0, static_cast<std::int16_t>(text.size()));
        progress->SetBarImage(QString::fromLatin1(tonwerk::res::kBarSession));
    }
    m_sessionProgress.Attach(progress);
    m_pitch = m_doc->Settings().GetToneMHz();
    m_listen->setText(tr("&Stop"));
    if (m_recordSession) {
        StartSessionRecording();
    }

    m_soundGen.SetWordsPerMinute(m_wordRate);
    m_soundGen.SetPitch(m_pitch);
    m_soundGen.SetProgressCtrl(&m_sessionProgress);
    m_soundGen.SetText(textView);
    m_soundGen.SetFarnsworthFactor(m_farnsworth);
    m_soundGen.SetNotifyWindow(&m_notifyTarget);
    m_soundGen.StartStop();

    m_clockTimer.start(kClockPeriodMs, this);
    m_sessionStart = NowSeconds();
    EnableSessionControls(false);
    emit ListeningStarted(QString::fromLatin1(text));
}

void CTonwerkView::OnNextCharacter() {
    m_cursor.NextCharacter();
    const std::pair<CSegmentDisplay*, const std::string*> shown[] = {
        {m_next, &m_cursor.Next()},
        {m_previous, &m_cursor.Previous()},
        {m_current, &m_cursor.Current()}};
    for (const auto& [display, character] : shown) {
        if (!character->empty()) {
            display->SetText(DisplayText(*character));
        }
    }
    const std::string& current = m_cursor.Current();
    if (!current.empty() && ((m_soundEnabled && m_speech != 0) || m_speech == 2)) {
        // Blocks the form, as the learner's pause before the answer always has.
        QThread::msleep(kSpeechWaitMs);
        SpeakLetter(DisplayText(current));
    }
}

void CTonwerkView::OnTone(bool on) {
    if (m_keyLampEnabled == 0 ||
        (m_wordRateSlider->value() >= kLampFollowsBelowWpm && !m_muteCheck->isChecked())) {
        return;
    }
    m_keyLamp->SetKeyDown(on);
}

void CTonwerkView::OnSoundOutput(bool back) {
    if (m_frame) {
        m_frame->SetMessageText(back ? tr("The sound output is back")
                                     : tr("The sound output was lost: keying silently"));
    }
}

void CTonwerkView::OnSessionFinished() {
    m_listen->setText(tr("&Listen"));
    m_keyLamp->SetKeyDown(false);
    if (CStatusProgress* progress = m_frame ? m_frame->Progress() : nullptr) {
        progress->SetPos(0);
    }
    if (m_frame) {
        m_frame->SetMessageText(tr("Ready"));
    }
    EnableSessionControls(true);
    m_clockTimer.stop();
    // A finished run (a listening session or a generated file) ends a requested recording. The
    // toggle goes off before the save dialog opens, so nothing handled meanwhile records again.
    if (m_recordSession) {
        OnRecordSession();
        FinishSessionRecording();
    }
    emit ListeningFinished();
}

void CTonwerkView::OnClockTick() {
    m_clock->SetText(QString::fromStdString(FormatSessionClock(NowSeconds() - m_sessionStart)));
}

void CTonwerkView::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_clockTimer.timerId()) {
        OnClockTick();
        return;
    }
    if (event->timerId() == m_clipIdle.timerId()) {
        m_clipIdle.stop();
        m_clips.Close();
        return;
    }
    QWidget::timerEvent(event);
}
