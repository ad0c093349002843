// SPDX-License-Identifier: GPL-3.0-or-later
// The listening session in the real window, keyed through the test sound server: the button, the
// displays, the key lamp, the progress bar and the clock follow what the worker posts, and the
// tones are heard at the sink.
#include <QAction>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QTextEdit>
#include <vector>

#include "../audio/SinkRecorder.h"
#include "AppTestFixture.h"
#include "res/TonwerkResources.h"
#include "widgets/CClockDisplay.h"
#include "widgets/CImageButton.h"
#include "widgets/CKeyLamp.h"
#include "widgets/CSegmentDisplay.h"
#include "widgets/CStatusProgress.h"

namespace {

/// What the form showed right after the view handled one posted message.
struct Seen {
    unsigned message = 0;
    qint64 atMs = 0;
    QString previous;
    QString current;
    QString next;
    bool lampDown = false;
    int progress = -1;
};

}  // namespace

class TonwerkViewSessionTest : public QObject, public AppTestFixture {
    Q_OBJECT

    CImageButton* Listen() { return Control<CImageButton>(1005); }
    CKeyLamp* Lamp() { return Control<CKeyLamp>(1000); }
    QString Display(int id) { return Control<CSegmentDisplay>(id)->Text(); }
    QString ClockText() { return Control<CClockDisplay>(1040)->Text(); }
    QString StatusText() { return Frame().findChild<QLabel*>("paneMessage")->text(); }

    /// A frame with the lamp animated, a practice text, a speed and a pitch.
    void Prepare(const QString& text, int wordsPerMinute, bool animateKey = true) {
        NewProfile();
        Profile().WriteInt("UserSettings", "AntimateKey", animateKey ? 1 : 0);
        Profile().WriteInt("UserSettings", "ToneMHz", 800);
        NewFrame();
        Control<QTextEdit>(1002)->setPlainText(text);
        Control<QSlider>(1003)->setValue(wordsPerMinute);
        Follow();
    }

    /// Notes what the form shows after each posted message.
    void Follow() {
        m_seen.clear();
        m_clock.start();
        connect(&View(), &CTonwerkView::AppMessage, this, [this](unsigned message) {
            CStatusProgress* progress = Frame().Progress();
            m_seen.push_back({message - kAppMessage, m_clock.elapsed(), Display(1037),
                              Display(1006), Display(1010), Lamp()->IsKeyDown(),
                              progress ? progress->Pos() : -1});
        });
    }

    std::vector<Seen> Only(unsigned message) const {
        std::vector<Seen> found;
        for (const Seen& seen : m_seen) {
            if (seen.message == message) {
                found.push_back(seen);
            }
        }
        return found;
    }

    bool SessionControlsEnabled(bool enabled) {
        for (const int id : {1046, 1003, 1039, 1009}) {
            if (View().Control(id)->isEnabled() != enabled) {
                return false;
            }
        }
        return true;
    }

    std::vector<Seen> m_seen;
    QElapsedTimer m_clock;

private slots:
    void initTestCase() { NewProfile(); }

    void sessionFollowsTheWorkerAndIsHeard() {
        Prepare(QStringLiteral("E E"), 12);
        SinkRecorder sink;
        QVERIFY(sink.Running());
        Listen()->click();
        QCOMPARE(Listen()->text(), QStringLiteral("&Stop"));
        QVERIFY(SessionControlsEnabled(false));
        CStatusProgress* progress = Frame().Progress();
        QVERIFY(progress != nullptr);
        QCOMPARE(progress->Upper(), 3);
        QCOMPARE(progress->BarImage(), QString::fromLatin1(tonwerk::res::kBarSession));

        // E, a word gap, E at 12 WPM: 1.1 s of code after the output has opened.
        QTRY_VERIFY_WITH_TIMEOUT(!Only(1).empty(), 5000);
        const std::vector<std::int16_t> samples = sink.Stop();

        const std::vector<Seen> characters = Only(2);
        QCOMPARE(characters.size(), std::size_t{2});
        // The first two characters come from the text as typed, so the blank after a one-letter
        // word becomes the current character and the second E never shows as current.
        QCOMPARE(characters[0].current, QStringLiteral("E"));
        QCOMPARE(characters[0].next, QStringLiteral(" "));
        QCOMPARE(characters[1].previous, QStringLiteral("E"));
        QCOMPARE(characters[1].current, QStringLiteral(" "));
        QCOMPARE(View().ListeningCursor().ListeningText(), std::string("EE"));
        // The worker steps the bar after each character, the blank included.
        QCOMPARE(characters[0].progress, 0);
        QCOMPARE(characters[1].progress, 2);
        const qint64 run = Only(1).front().atMs - characters[0].atMs;
        QVERIFY2(run >= 1000 && run <= 1600, qPrintable(QString::number(run)));

        // The lamp went down with each tone and up after it.
        const std::vector<Seen> toneOn = Only(4);
        const std::vector<Seen> toneOff = Only(3);
        QCOMPARE(toneOn.size(), std::size_t{2});
        QCOMPARE(toneOff.size(), std::size_t{2});
        for (std::size_t i = 0; i < 2; ++i) {
            QVERIFY(toneOn[i].lampDown);
            QVERIFY(!toneOff[i].lampDown);
        }

        QCOMPARE(Listen()->text(), QStringLiteral("&Listen"));
        QVERIFY(SessionControlsEnabled(true));
        QVERIFY(!Lamp()->IsKeyDown());
        QCOMPARE(Frame().Progress()->Pos(), 0);
        QCOMPARE(StatusText(), QStringLiteral("Ready"));

        // At the sink: two dits of 100 ms at the pitch, 800 ms from onset to onset.
        const std::vector<HeardTone> tones = SinkRecorder::FindTones(samples);
        QCOMPARE(tones.size(), std::size_t{2});
        for (const HeardTone& tone : tones) {
            QVERIFY2(std::abs(tone.lengthMs - 100.0) < 3.0,
                     qPrintable(QString::number(tone.lengthMs)));
            QVERIFY2(std::abs(tone.frequency - 800.0) < 20.0,
                     qPrintable(QString::number(tone.frequency)));
        }
        const double spacing = tones[1].startMs - tones[0].startMs;
        QVERIFY2(std::abs(spacing - 800.0) < 5.0, qPrintable(QString::number(spacing)));
    }

    void stopEndsTheRunAfterItsCharacter() {
        Prepare(QStringLiteral("EEEEEEEEEEEEEEEEEEEE"), 12);
        Listen()->click();
        QTRY_VERIFY_WITH_TIMEOUT(Only(2).size() >= 2, 5000);
        Listen()->click();
        // The session ends at once and once: the stopped run posts nothing more.
        QCOMPARE(Listen()->text(), QStringLiteral("&Listen"));
        QVERIFY(SessionControlsEnabled(true));
        QVERIFY(!Lamp()->IsKeyDown());
        QCOMPARE(StatusText(), QStringLiteral("Ready"));
        const std::size_t announced = Only(2).size();
        QTest::qWait(600);
        QCOMPARE(Only(2).size(), announced);
        QVERIFY(Only(1).empty());
        QCOMPARE(Frame().Progress()->Pos(), 0);
    }

    // Listen right after Stop starts at once, although the old run had 24 s of gaps to go, and
    // nothing of the old run ends or steps the new one.
    void listenRightAfterStopStartsAtOnce() {
        Prepare(QStringLiteral("EEEE"), 5);
        Control<QLineEdit>(1050)->setText(QStringLiteral("99"));
        Listen()->click();
        QTRY_VERIFY_WITH_TIMEOUT(Only(2).size() == 1, 5000);
        QTest::qWait(400);
        Listen()->click();
        Listen()->click();
        QCOMPARE(Listen()->text(), QStringLiteral("&Stop"));
        QTRY_VERIFY_WITH_TIMEOUT(Only(2).size() == 2, 1500);
        QTest::qWait(500);
        QCOMPARE(Listen()->text(), QStringLiteral("&Stop"));
        QVERIFY(Only(1).empty());
        QCOMPARE(Frame().Progress()->Pos(), 0);
        Listen()->click();
    }

    // Closing the window mid-session ends the worker at once, even in a long gap; a profile out
    // of range gives the slowest speed and the largest factor, not a speed of 0.
    void closingDuringASessionEndsItAtOnce() {
        NewProfile();
        Profile().WriteInt("Settings", "WordRate", 0);
        Profile().WriteInt("Settings", "FarnsworthFactor", 1000000);
        Profile().WriteInt("UserSettings", "ToneMHz", 0);
        NewFrame();
        QCOMPARE(Control<QSlider>(1003)->value(), 5);
        QCOMPARE(Control<QLineEdit>(1050)->text(), QStringLiteral("99"));
        Control<QTextEdit>(1002)->setPlainText(QStringLiteral("EEE"));
        Follow();
        Listen()->click();
        QTRY_VERIFY_WITH_TIMEOUT(Only(2).size() == 1, 5000);
        QTest::qWait(1000);  // into the first closing gap
        QElapsedTimer closing;
        closing.start();
        CModalSeam::QueueButton(QMessageBox::No);
        QVERIFY(Frame().close());
        CloseFrame();
        QVERIFY2(closing.elapsed() < 500, qPrintable(QString::number(closing.elapsed())));
    }

    void emptyTextStartsTheClockButNoSound() {
        Prepare(QString(), 12);
        std::int64_t now = 1'000'000;
        View().SetTimeSource([&now] { return now; });
        // The Farnsworth factor typed into the form is stored as the session starts.
        Control<QLineEdit>(1050)->setText(QStringLiteral("7"));
        QCOMPARE(Profile().GetInt("Settings", "FarnsworthFactor", -1), -1);
        Listen()->click();
        QCOMPARE(Profile().GetInt("Settings", "FarnsworthFactor", -1), 7);
        QCOMPARE(Listen()->text(), QStringLiteral("&Stop"));
        now += 3;
        QTRY_COMPARE_WITH_TIMEOUT(ClockText(), QStringLiteral("00:00:03"), 2500);
        QVERIFY(m_seen.empty());
        // Nothing runs, so the button starts again rather than stopping: no finish is posted.
        Listen()->click();
        QTest::qWait(100);
        QVERIFY(Only(1).empty());
        QCOMPARE(Listen()->text(), QStringLiteral("&Stop"));
        QVERIFY(SessionControlsEnabled(false));
    }

    void clockWrapsAfterADayAndKeepsItsLastValue() {
        Prepare(QStringLiteral("EEEEEEEEEE"), 12);  // 3 s of code
        std::int64_t now = 5'000'000;
        View().SetTimeSource([&now] { return now; });
        Listen()->click();
        now += 25 * 3600 + 61;
        QTRY_COMPARE_WITH_TIMEOUT(ClockText(), QStringLiteral("01:01:01"), 2500);
        QTRY_VERIFY_WITH_TIMEOUT(!Only(1).empty(), 5000);
        now += 10;
        QTest::qWait(1200);
        QCOMPARE(ClockText(), QStringLiteral("01:01:01"));
    }

    void lampFollowsFastCodeOnlyWhenMuted() {
        // Not muted at 25 WPM: the lamp stays up through every tone.
        Prepare(QStringLiteral("EE"), 25);
        Listen()->click();
        QTRY_VERIFY_WITH_TIMEOUT(!Only(1).empty(), 5000);
        QCOMPARE(Only(4).size(), std::size_t{2});
        for (const Seen& seen : Only(4)) {
            QVERIFY(!seen.lampDown);
        }

        // Muted, it follows again; below 25 WPM without animation it never moves.
        Prepare(QStringLiteral("EE"), 25);
        Control<QCheckBox>(1051)->click();
        Listen()->click();
        QTRY_VERIFY_WITH_TIMEOUT(!Only(1).empty(), 5000);
        QCOMPARE(Only(4).size(), std::size_t{2});
        for (const Seen& seen : Only(4)) {
            QVERIFY(seen.lampDown);
        }

        Prepare(QStringLiteral("EE"), 12, false);
        Listen()->click();
        QTRY_VERIFY_WITH_TIMEOUT(!Only(1).empty(), 5000);
        QCOMPARE(Only(4).size(), std::size_t{2});
        for (const Seen& seen : Only(4)) {
            QVERIFY(!seen.lampDown);
        }
    }

    void lineBreaksShowAsNothing() {
        // "AB\nCD": the line break keeps its place in the listening text but shows as nothing.
        Prepare(QStringLiteral("AB\nCD"), 40);
        Listen()->click();
        QTRY_VERIFY_WITH_TIMEOUT(!Only(1).empty(), 5000);
        const std::vector<Seen> characters = Only(2);
        // A line break is announced like any character that is not a blank.
        QCOMPARE(characters.size(), std::size_t{5});
        QCOMPARE(characters[0].current, QStringLiteral("A"));
        QCOMPARE(characters[1].current, QStringLiteral("B"));
        QCOMPARE(characters[1].next, QString());
        QCOMPARE(characters[2].current, QString());
        QCOMPARE(characters[2].next, QStringLiteral("C"));
        QCOMPARE(characters[3].current, QStringLiteral("C"));
        QCOMPARE(characters[3].next, QStringLiteral("D"));
        QCOMPARE(characters[4].previous, QStringLiteral("C"));
        QCOMPARE(characters[4].current, QStringLiteral("D"));
    }

    void randomTextWaitsForTheSession() {
        Prepare(QStringLiteral("EEEEEEEEEE"), 12);
        Frame().Action(CMainFrame::kAllOn)->trigger();
        Listen()->click();
        Control<CImageButton>(1009)->setEnabled(true);  // the menu has no such guard
        Control<CImageButton>(1009)->click();
        QCOMPARE(Control<QTextEdit>(1002)->toPlainText(), QStringLiteral("EEEEEEEEEE"));
        Listen()->click();
        QTRY_COMPARE(Listen()->text(), QStringLiteral("&Listen"));
        Control<CImageButton>(1009)->click();
        QVERIFY(Control<QTextEdit>(1002)->toPlainText() != QStringLiteral("EEEEEEEEEE"));
    }

    void cleanupTestCase() { CloseFrame(); }
};

QTEST_MAIN(TonwerkViewSessionTest)
#include "TonwerkViewSessionTest.moc"
