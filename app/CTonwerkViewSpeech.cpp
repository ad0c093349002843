// SPDX-License-Identifier: GPL-3.0-or-later
// The practice view's spoken read-back and the Enter key as a straight key.
#include <QCheckBox>
#include <QCoreApplication>
#include <QFile>
#include <QKeyEvent>
#include <QPointer>
#include <QSlider>
#include <QThread>
#include <algorithm>
#include <memory>
#include <vector>

#include "app/CAppMessageEvent.h"
#include "app/CTonwerkDoc.h"
#include "app/CTonwerkView.h"
#include "app/CWaitCursor.h"
#include "model/SpeechClips.h"
#include "res/TonwerkResources.h"
#include "widgets/CKeyLamp.h"

namespace {

/// From this speed on nothing is spoken: the letters would trip over the code.
constexpr int kSpeechBelowWpm = 25;
constexpr unsigned long kReadBackBlankMs = 125;
constexpr unsigned long kReadBackPauseMs = 350;
/// The longest wait before a letter: a hand-edited profile must not hold the form for days.
constexpr int kSpeechDelayMaxMs = 10'000;
/// The clip output is let go once this long has passed without a new letter.
constexpr int kClipIdleMs = 3000;

}  // namespace

/// While Read Back holds the user-interface thread, the form takes no input: only Escape is
/// noticed, and it ends the loop after the letter under way. Everything else that comes meanwhile
/// (keys, clicks, a close request, the messages the sound classes post) waits and is handled in
/// the order it came once the read-back is over.
class CTonwerkView::CReadBackGuard final : public QObject {
public:
    explicit CReadBackGuard(CTonwerkView& view) : m_view(view) {
        QCoreApplication::instance()->installEventFilter(this);
    }
    ~CReadBackGuard() override {
        // What is still waiting to be handled joins the held in the order it came, so nothing
        // posted during the read-back is handled before what was held before it.
        QCoreApplication::processEvents();
        QCoreApplication::instance()->removeEventFilter(this);
        for (Held& held : m_held) {
            if (held.receiver) {
                QCoreApplication::postEvent(held.receiver, held.event.release());
            }
        }
    }
    CReadBackGuard(const CReadBackGuard&) = delete;
    CReadBackGuard& operator=(const CReadBackGuard&) = delete;

    /// Takes in what has happened since the last call; true once Escape has been pressed.
    bool EscapePressed() {
        QCoreApplication::processEvents();
        return m_escape;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        switch (event->type()) {
            case QEvent::KeyPress:
                if (static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Escape) {
                    m_escape = true;
                    return true;  // Escape belongs to the read-back
                }
                break;
            case QEvent::ShortcutOverride:
                // Accepted, so a shortcut waits as its key press, which is held below.
                event->accept();
                return true;
            case QEvent::KeyRelease:
            case QEvent::Shortcut:
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonRelease:
            case QEvent::MouseButtonDblClick:
            case QEvent::MouseMove:
            case QEvent::Wheel:
            case QEvent::ContextMenu:
            case QEvent::TouchBegin:
            case QEvent::TouchUpdate:
            case QEvent::TouchEnd:
                break;
            case QEvent::Close:
                if (!event->spontaneous()) {
                    return false;  // a window closed by the program itself, a tooltip say
                }
                break;
            default:
                if (event->type() != CAppMessageEvent::EventType() || watched != &m_view) {
                    return false;
                }
                const auto* message = static_cast<const CAppMessageEvent*>(event);
                m_held.push_back(
                    {watched, std::make_unique<CAppMessageEvent>(
                                  message->Message(), message->WParam(), message->LParam())});
                return true;
        }
        m_held.push_back({watched, std::unique_ptr<QEvent>(event->clone())});
        return true;
    }

private:
    struct Held {
        QPointer<QObject> receiver;
        std::unique_ptr<QEvent> event;
    };
    CTonwerkView& m_view;
    std::vector<Held> m_held;
    bool m_escape = false;
};

void CTonwerkView::SpeakLetter(const QString& letter) {
    // Only the ASCII letters are spoken, upper-cased as everywhere else in the trainer.
    const bool ascii = letter.size() == 1 && letter.at(0).unicode() < 0x80;
    const int id = ascii ? SpeechClipId(m_doc->Settings().GetActor(),
                                        static_cast<char>(letter.at(0).unicode()))
                         : 0;
    const int wordRate = m_wordRateSlider->value();
    const int delayMs = m_doc->Settings().GetSpeechDelay();
    if (id == 0 || wordRate >= kSpeechBelowWpm ||
        !((m_soundEnabled && m_speech != 0) || m_speech == 2)) {
        return;
    }
    // A negative delay waits not at all rather than for ever.
    QThread::msleep(static_cast<unsigned long>(std::clamp(delayMs, 0, kSpeechDelayMaxMs)));
    PlayClip(QString::fromLatin1(tonwerk::res::kSpeechClipPrefix) + QString::number(id));
}

void CTonwerkView::PlayClip(const QString& resource) {
    if (m_audio.playClip) {
        m_audio.playClip(resource);
        return;
    }
    QFile clip(resource);
    if (!clip.open(QIODevice::ReadOnly)) {
        return;
    }
    const QByteArray image = clip.readAll();
    // Nothing to tell the learner when no output opens: the letter is simply not heard.
    m_clips.Play(image.constData(), static_cast<std::size_t>(image.size()));
    m_clipIdle.start(kClipIdleMs, this);
}

void CTonwerkView::OnReadBack() {
    const CWaitCursor wait;
    if (m_muteCheck->isChecked()) {
        return;
    }
    QString text = m_practiceText;
    text.remove(QLatin1Char('\n'));
    text.remove(QLatin1Char('\r'));
    const int speech = m_speech;
    m_speech = 2;
    {
        CReadBackGuard guard(*this);
        for (const QChar c : text) {
            if (c == QLatin1Char(' ')) {
                QThread::msleep(kReadBackBlankMs);
            } else {
                SpeakLetter(QString(c));
            }
            if (guard.EscapePressed()) {
                break;
            }
            QThread::msleep(kReadBackPauseMs);
        }
    }
    m_speech = speech;
}

void CTonwerkView::OnStraightKeyDown() {
    m_straightKey.KeyDown(CHighResDateTime::Now());
}

void CTonwerkView::OnStraightKeyUp() {
    // Blocks the form for the whole tone: the learner listens to what was keyed.
    const std::uint32_t milliseconds = m_straightKey.KeyUp(CHighResDateTime::Now());
    const auto frequency = static_cast<std::uint32_t>(m_pitch);
    if (m_audio.beep) {
        m_audio.beep(frequency, milliseconds);
    } else {
        m_beeper.Beep(frequency, milliseconds);
    }
}

void CTonwerkView::OnFocusChanged(QWidget* now) {
    if (now != m_keyLamp) {
        m_beeper.Close();
    } else if (!m_audio.beep) {
        m_beeper.Open();
    }
}
