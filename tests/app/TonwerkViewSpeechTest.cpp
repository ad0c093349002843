// SPDX-License-Identifier: GPL-3.0-or-later
// Spoken letters and the straight key in the real window: what Read Back and a session say, in
// which voice and when, Escape ending a read-back, and the Enter key's tone; the clips and the
// tone are also heard at the test sound server's sink.
#include <QCheckBox>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QScrollArea>
#include <QSlider>
#include <QTextEdit>
#include <QTimer>
#include <QWindow>
#include <vector>

#include "../audio/SinkRecorder.h"
#include "AppTestFixture.h"
#include "audio/CWave.h"
#include "widgets/CImageButton.h"
#include "widgets/CKeyLamp.h"

namespace {

struct Said {
    QString resource;
    qint64 atMs = 0;
};

struct Beeped {
    std::uint32_t frequency = 0;
    std::uint32_t milliseconds = 0;
};

/// Stretches of sound in a recording: 10 ms windows above a quiet level, joined across pauses
/// shorter than 60 ms, as a listener hears one spoken word.
struct Utterance {
    double startMs = 0.0;
    double lengthMs = 0.0;
};

std::vector<Utterance> FindUtterances(const std::vector<std::int16_t>& samples) {
    constexpr std::size_t kWindow = kSinkRate / 100;
    constexpr int kQuiet = 300;
    constexpr double kJoinMs = 60.0;
    std::vector<Utterance> found;
    for (std::size_t start = 0; start + kWindow <= samples.size(); start += kWindow) {
        int peak = 0;
        for (std::size_t i = start; i < start + kWindow; ++i) {
            peak = std::max(peak, std::abs(static_cast<int>(samples[i])));
        }
        if (peak < kQuiet) {
            continue;
        }
        const double atMs = 1000.0 * static_cast<double>(start) / kSinkRate;
        if (!found.empty() && atMs - (found.back().startMs + found.back().lengthMs) < kJoinMs) {
            found.back().lengthMs = atMs + 10.0 - found.back().startMs;
        } else {
            found.push_back({atMs, 10.0});
        }
    }
    return found;
}

double ClipLengthMs(int id) {
    QFile file(QStringLiteral(":/wave/%1").arg(id));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0.0;
    }
    const QByteArray image = file.readAll();
    CWave wave;
    if (!wave.LoadFromMemory(image.constData(), static_cast<std::size_t>(image.size()))) {
        return 0.0;
    }
    return 1000.0 * wave.GetBufferLength() / wave.GetFormat().avgBytesPerSec;
}

}  // namespace

class TonwerkViewSpeechTest : public QObject, public AppTestFixture {
    Q_OBJECT

    CImageButton* Listen() { return Control<CImageButton>(1005); }
    CKeyLamp* Lamp() { return Control<CKeyLamp>(1000); }

    /// A frame on a fresh profile whose clips and beeps are recorded, not played, unless real.
    void Prepare(const QString& text, bool real = false) {
        NewProfile();
        Profile().WriteInt("UserSettings", "ToneMHz", 700);
        CTonwerkView::AudioHooks hooks = Hooks(1);
        if (!real) {
            hooks.playClip = [this](const QString& resource) {
                m_said.push_back({resource, m_clock.elapsed()});
            };
            hooks.beep = [this](std::uint32_t frequency, std::uint32_t milliseconds) {
                m_beeped.push_back({frequency, milliseconds});
            };
        }
        CTonwerkView::SetDefaultAudioHooks(hooks);
        NewFrame();
        Control<QTextEdit>(1002)->setPlainText(text);
        Control<QSlider>(1003)->setValue(12);
        m_said.clear();
        m_beeped.clear();
    }

    /// Read Back, and how long it held the form.
    qint64 ReadBack() {
        m_clock.start();
        Frame().Action(CMainFrame::kReadBack)->trigger();
        return m_clock.elapsed();
    }

    QStringList SaidResources() const {
        QStringList resources;
        for (const Said& said : m_said) {
            resources << said.resource;
        }
        return resources;
    }

    /// Shows the window and gives the key lamp the focus, so keys arrive as a user's would.
    void FocusLamp() {
        Frame().show();
        QVERIFY(QTest::qWaitForWindowActive(&Frame()));
        Lamp()->setFocus();
        QTRY_VERIFY(Lamp()->hasFocus());
    }

    /// Enter as a user's key comes, through the window system to the focused control; the
    /// repeats of a held key, which no test route makes, go straight to it.
    void SendEnter(QEvent::Type type, bool autoRepeat = false) {
        if (!autoRepeat) {
            if (type == QEvent::KeyPress) {
                QTest::keyPress(Frame().windowHandle(), Qt::Key_Return);
            } else {
                QTest::keyRelease(Frame().windowHandle(), Qt::Key_Return);
            }
            return;
        }
        QKeyEvent event(type, Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"), true);
        QApplication::sendEvent(QApplication::focusWidget(), &event);
    }

    std::vector<Said> m_said;
    std::vector<Beeped> m_beeped;
    QElapsedTimer m_clock;

private slots:
    void initTestCase() { NewProfile(); }

    void readBackSaysTheLettersWithItsPauses() {
        // Lower case is spoken as upper case; the line break is dropped, the blank waits 125 ms
        // and the digit is silent; every character is followed by 350 ms.
        Prepare(QStringLiteral("h\ni 5"));
        const qint64 took = ReadBack();
        QCOMPARE(SaidResources(),
                 (QStringList{QStringLiteral(":/wave/141"), QStringLiteral(":/wave/142")}));
        // "SpeechDelay" (125 ms) before each letter.
        QVERIFY2(m_said[0].atMs >= 125 && m_said[0].atMs < 200,
                 qPrintable(QString::number(m_said[0].atMs)));
        const qint64 between = m_said[1].atMs - m_said[0].atMs;
        QVERIFY2(between >= 475 && between < 560, qPrintable(QString::number(between)));
        // 125 + 350, twice for the letters, 125 + 350 for the blank, 350 for the digit.
        QVERIFY2(took >= 1775 && took < 2050, qPrintable(QString::number(took)));
        // Speech is forced only while reading back.
        QCOMPARE(Control<QCheckBox>(1052)->checkState(), Qt::Unchecked);
    }

    void theVoiceFollowsTheActorAndTheDelay() {
        Prepare(QStringLiteral("c"));
        Profile().WriteInt("UserSettings", "Actor", 3);
        Profile().WriteInt("UserSettings", "SpeechDelay", 400);
        ReadBack();
        QCOMPARE(SaidResources(), QStringList{QStringLiteral(":/wave/224")});
        QVERIFY2(m_said[0].atMs >= 400, qPrintable(QString::number(m_said[0].atMs)));

        // Voices outside 0..8 speak as the first; a negative delay does not wait at all.
        Profile().WriteInt("UserSettings", "Actor", 12);
        Profile().WriteInt("UserSettings", "SpeechDelay", -5);
        m_said.clear();
        ReadBack();
        QCOMPARE(SaidResources(), QStringList{QStringLiteral(":/wave/136")});
        QVERIFY2(m_said[0].atMs < 100, qPrintable(QString::number(m_said[0].atMs)));
    }

    void muteAndFastCodeSayNothing() {
        Prepare(QStringLiteral("AB"));
        Control<QCheckBox>(1051)->click();
        QVERIFY(ReadBack() < 100);
        QVERIFY(m_said.empty());

        // At 25 WPM the loop walks the text with its pauses but says nothing.
        Prepare(QStringLiteral("AB"));
        Control<QSlider>(1003)->setValue(25);
        const qint64 took = ReadBack();
        QVERIFY(m_said.empty());
        QVERIFY2(took >= 700, qPrintable(QString::number(took)));
    }

    void escapeEndsReadBackAfterTheLetterUnderWay() {
        Prepare(QStringLiteral("ABCDEFGHIJ"));
        // Escape comes the way a user's key does, through the window system to the window.
        Frame().show();
        QVERIFY(QTest::qWaitForWindowActive(&Frame()));
        // Letters are said at about 125, 600, 1075 ms: Escape comes between the second and the
        // third and is seen once the third has been said.
        QTimer::singleShot(800, this,
                           [this] { QTest::keyClick(Frame().windowHandle(), Qt::Key_Escape); });
        const qint64 took = ReadBack();
        QCOMPARE(SaidResources(),
                 (QStringList{QStringLiteral(":/wave/134"), QStringLiteral(":/wave/135"),
                              QStringLiteral(":/wave/136")}));
        QVERIFY2(took < 1300, qPrintable(QString::number(took)));
        // The form takes keys again afterwards.
        Control<QTextEdit>(1002)->setFocus();
        QTest::keyClick(Control<QTextEdit>(1002), Qt::Key_X);
        QVERIFY(Control<QTextEdit>(1002)->toPlainText().contains(QLatin1Char('x')));
        Frame().hide();
    }

    void inputAndPostedMessagesWaitForTheReadBack() {
        Prepare(QStringLiteral("AB"));
        Frame().show();
        QVERIFY(QTest::qWaitForWindowActive(&Frame()));
        auto* practice = Control<QTextEdit>(1002);
        practice->setFocus();
        practice->moveCursor(QTextCursor::End);
        QTRY_VERIFY(practice->hasFocus());
        auto* mute = Control<QCheckBox>(1051);
        // The offscreen screen is narrower than the form: Mute is scrolled into the window first.
        Frame().findChild<QScrollArea*>()->ensureWidgetVisible(mute);
        std::vector<unsigned> delivered;
        const QMetaObject::Connection connection =
            connect(&View(), &CTonwerkView::AppMessage, this,
                    [&delivered](unsigned message) { delivered.push_back(message - kAppMessage); });
        // While the first letter is said: a message, a key, a click on Mute, a message, and the
        // window system asking to close the window, each the way it comes in use.
        QTimer::singleShot(300, this, [this, mute] {
            View().NotifyTarget().PostMessage(kAppMessage + 4, 1, 1);
            QTest::keyClick(Frame().windowHandle(), Qt::Key_X);
            QTest::mouseClick(Frame().windowHandle(), Qt::LeftButton, Qt::NoModifier,
                              mute->mapTo(&Frame(), mute->rect().center()));
            View().NotifyTarget().PostMessage(kAppMessage + 3, 1, 1);
            Frame().windowHandle()->close();
        });
        CModalSeam::QueueButton(QMessageBox::No);  // "Save Changes?" as the window closes
        ReadBack();
        QCOMPARE(SaidResources().size(), 2);
        QVERIFY(delivered.empty());
        QCOMPARE(practice->toPlainText(), QStringLiteral("AB"));
        QVERIFY(Frame().isVisible());
        // Handled afterwards, in the order they came.
        QTRY_COMPARE(delivered, (std::vector<unsigned>{4, 3}));
        QTRY_VERIFY(!Frame().isVisible());
        QCOMPARE(practice->toPlainText(), QStringLiteral("ABx"));
        QVERIFY(mute->isChecked());
        QCOMPARE(CModalSeam::Messages(), QStringList{QStringLiteral("Save Changes?")});
        disconnect(connection);
    }

    void aSessionSaysEachLetterAfterItsCode() {
        Prepare(QStringLiteral("ET"));
        Control<QCheckBox>(1052)->click();
        m_clock.start();
        int announced = 0;
        const QMetaObject::Connection connection =
            connect(&View(), &CTonwerkView::AppMessage, this, [&](unsigned message) {
                if (message == kAppMessage + 2) {
                    ++announced;
                }
            });
        Listen()->click();
        QTRY_COMPARE_WITH_TIMEOUT(Listen()->text(), QStringLiteral("&Listen"), 8000);
        disconnect(connection);
        QCOMPARE(SaidResources(),
                 (QStringList{QStringLiteral(":/wave/138"), QStringLiteral(":/wave/153")}));
        QCOMPARE(announced, 2);
        // Each letter waits 750 ms for the learner and the 125 ms speech delay; the form is held
        // meanwhile, so the second letter's wait starts when the first has been said.
        QVERIFY2(m_said[0].atMs >= 875, qPrintable(QString::number(m_said[0].atMs)));
        const qint64 wait = m_said[1].atMs - m_said[0].atMs;
        QVERIFY2(wait >= 875 && wait < 1000, qPrintable(QString::number(wait)));
    }

    void readBackIsHeardAtTheSink() {
        Prepare(QStringLiteral("hi"), true);
        SinkRecorder sink;
        QVERIFY(sink.Running());
        ReadBack();
        const std::vector<Utterance> heard = FindUtterances(sink.Stop());
        QString found;
        for (const Utterance& utterance : heard) {
            found += QStringLiteral(" %1+%2").arg(utterance.startMs).arg(utterance.lengthMs);
        }
        QVERIFY2(heard.size() == 2, qPrintable(found));
        // Each clip is heard whole, and the second follows the first as Read Back spaced them.
        const double lengths[] = {ClipLengthMs(141), ClipLengthMs(142)};
        for (std::size_t i = 0; i < 2; ++i) {
            QVERIFY(lengths[i] > 100.0);
            QVERIFY2(
                std::abs(heard[i].lengthMs - lengths[i]) < 40.0,
                qPrintable(QStringLiteral("%1 against %2").arg(heard[i].lengthMs).arg(lengths[i])));
        }
        const double spacing = heard[1].startMs - heard[0].startMs;
        QVERIFY2(std::abs(spacing - 475.0) < 40.0, qPrintable(QString::number(spacing)));
    }

    void theStraightKeySoundsTheHold() {
        Prepare(QString());
        FocusLamp();
        // The key's own hold lies between the time from the press's return to the release's
        // sending and the time from the press's sending to the release's return.
        QElapsedTimer outer;
        outer.start();
        SendEnter(QEvent::KeyPress);
        QElapsedTimer inner;
        inner.start();
        // The keyboard repeats a held key as release and press pairs: the hold goes on.
        for (int i = 0; i < 4; ++i) {
            QTest::qWait(50);
            SendEnter(QEvent::KeyRelease, true);
            SendEnter(QEvent::KeyPress, true);
        }
        QTest::qWait(50);
        const qint64 shortest = inner.elapsed();
        SendEnter(QEvent::KeyRelease);
        const qint64 longest = outer.elapsed();
        QCOMPARE(m_beeped.size(), std::size_t{1});
        QCOMPARE(m_beeped[0].frequency, 700u);
        const auto sounded = static_cast<qint64>(m_beeped[0].milliseconds);
        QVERIFY2(
            sounded >= shortest - 1 && sounded <= longest + 1,
            qPrintable(QStringLiteral("%1 for %2 to %3").arg(sounded).arg(shortest).arg(longest)));

        // The pitch slider sets the next tone's pitch.
        Control<QSlider>(1039)->setValue(900);
        SendEnter(QEvent::KeyPress);
        SendEnter(QEvent::KeyRelease);
        QCOMPARE(m_beeped.size(), std::size_t{2});
        QCOMPARE(m_beeped[1].frequency, 900u);
        QVERIFY(m_beeped[1].milliseconds < 50);

        // Enter anywhere else is the other control's, not the key's.
        Control<QTextEdit>(1002)->setFocus();
        QTRY_VERIFY(Control<QTextEdit>(1002)->hasFocus());
        SendEnter(QEvent::KeyPress);
        SendEnter(QEvent::KeyRelease);
        QCOMPARE(m_beeped.size(), std::size_t{2});
        Frame().hide();
    }

    void theStraightKeyIsHeardAtTheSink() {
        Prepare(QString(), true);
        FocusLamp();
        SinkRecorder sink;
        QVERIFY(sink.Running());
        QElapsedTimer held;
        SendEnter(QEvent::KeyPress);
        held.start();
        QTest::qWait(250);
        const qint64 heldMs = held.elapsed();
        SendEnter(QEvent::KeyRelease);  // returns once the tone has been heard
        const std::vector<HeardTone> tones = SinkRecorder::FindTones(sink.Stop());
        QCOMPARE(tones.size(), std::size_t{1});
        QVERIFY2(std::abs(tones[0].lengthMs - static_cast<double>(heldMs)) < 4.0,
                 qPrintable(QStringLiteral("%1 for %2").arg(tones[0].lengthMs).arg(heldMs)));
        QVERIFY2(std::abs(tones[0].frequency - 700.0) < 15.0,
                 qPrintable(QString::number(tones[0].frequency)));
        Frame().hide();
    }

    void cleanupTestCase() { CloseFrame(); }
};

QTEST_MAIN(TonwerkViewSpeechTest)
#include "TonwerkViewSpeechTest.moc"
