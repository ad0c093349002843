// SPDX-License-Identifier: GPL-3.0-or-later
// Copy practice in the real window, keyed through the test sound server: Listen hides the texts,
// the learner types, the run's end marks every character and stores the session.
#include <QCheckBox>
#include <QSlider>
#include <QTextEdit>

#include "CopyPracticeTestSupport.h"
#include "app/CAppMessageEvent.h"
#include "widgets/CImageButton.h"

class CopyPracticeListenTest : public QObject, public CopyPracticeFixture {
    Q_OBJECT

    /// The practice text, the code text and the three character displays.
    bool TextsVisible(bool visible) {
        for (const int id : {1002, 1001, 1006, 1010, 1037}) {
            if (View().Control(id)->isVisible() != visible) {
                return false;
            }
        }
        return true;
    }

    void Listen(const QString& text, int wordsPerMinute) {
        Control<QTextEdit>(1002)->setPlainText(text);
        Control<QSlider>(1003)->setValue(wordsPerMinute);
        Control<CImageButton>(1005)->click();
    }

private slots:
    void init() { RemoveHistory(); }

    void runEndMarksTheCopy_data() {
        QTest::addColumn<bool>("hide");
        QTest::addColumn<QString>("sent");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("marks");
        QTest::addColumn<std::size_t>("markedCell");
        QTest::addColumn<QString>("accuracy");
        QTest::newRow("a wrong letter, texts hidden")
            << true << "PARIS CQ"
            << "paris co"
            << "cccccccw" << std::size_t{7} << "Accuracy 85.7 % (6/7)";
        QTest::newRow("a missed and an extra letter, texts shown")
            << false << "TEST OK"
            << "TST OKR"
            << "cmcccccx" << std::size_t{1} << "Accuracy 71.4 % (5/7)";
    }

    void runEndMarksTheCopy() {
        QFETCH(bool, hide);
        QFETCH(QString, sent);
        QFETCH(QString, typed);
        QFETCH(QString, marks);
        QFETCH(std::size_t, markedCell);
        QFETCH(QString, accuracy);
        CCopyPracticePanel& panel = OpenPanel();
        panel.findChild<QCheckBox*>("checkHideText")->setChecked(hide);
        Listen(sent, 30);
        QVERIFY(TextsVisible(!hide));
        QCOMPARE(Frame().focusWidget(), CopyEdit());
        QTest::keyClicks(CopyEdit(), typed);

        QTRY_VERIFY_WITH_TIMEOUT(panel.LastScore().has_value(), 10000);
        QVERIFY(TextsVisible(true));
        QCOMPARE(Marks(), marks);
        QVERIFY(DrawnInItsColour(0));
        QVERIFY(DrawnInItsColour(markedCell));
        QVERIFY2(Summary().startsWith(accuracy), qPrintable(Summary()));
        QVERIFY2(Summary().contains(QStringLiteral("characters per minute, effective speed")),
                 qPrintable(Summary()));

        const QList<StoredSession> stored = StoredSessions();
        QCOMPARE(stored.size(), 1);
        QCOMPARE(stored[0].info.sent, sent);
        QCOMPARE(stored[0].info.copied, typed);
        QCOMPARE(stored[0].info.wpm, 30);
        QVERIFY(stored[0].info.seconds > 0.5);
        QVERIFY(CModalSeam::Messages().isEmpty());
    }

    void checkDuringTheRunStopsItAndScoresWhatWasSent() {
        CCopyPracticePanel& panel = OpenPanel();
        int announced = 0;
        connect(&View(), &CTonwerkView::AppMessage, this,
                [&](unsigned message) { announced += message == kAppMessage + 2; });
        Listen(QStringLiteral("EEEE EEEE EEEE EEEE"), 12);
        QTest::keyClicks(CopyEdit(), QStringLiteral("EE"));
        QTRY_VERIFY_WITH_TIMEOUT(announced >= 2, 5000);
        QTest::keySequence(CopyEdit(), QKeySequence(QStringLiteral("Ctrl+K")));

        QTRY_VERIFY_WITH_TIMEOUT(panel.LastScore().has_value(), 5000);
        // Only the characters keyed before the stop count; the rest of the text was never sent.
        QCOMPARE(panel.LastScore()->sentCount, announced);
        QVERIFY(announced < 16);
        QCOMPARE(panel.LastScore()->correct, 2);
        QVERIFY(TextsVisible(true));
        QCOMPARE(StoredSessions().size(), 1);
    }

    void brokenHistoryIsReportedOnceAndPractisingGoesOn() {
        QVERIFY(DamageHistory());

        CCopyPracticePanel& panel = OpenPanel();
        for (int run = 0; run < 2; ++run) {
            Listen(QStringLiteral("EE"), 30);
            QTest::keyClicks(CopyEdit(), QStringLiteral("EE"));
            QTRY_VERIFY_WITH_TIMEOUT(panel.LastScore().has_value() && Marks() == "cc", 5000);
            QVERIFY2(Summary().contains(QStringLiteral("not saved")), qPrintable(Summary()));
        }
        QCOMPARE(CModalSeam::Messages().size(), 1);
        const QString message = CModalSeam::Messages()[0];
        QVERIFY2(message.startsWith(QStringLiteral("History is off")) &&
                     message.contains(QStringLiteral("kept as")),
                 qPrintable(message));
    }
};

QTEST_MAIN(CopyPracticeListenTest)
#include "CopyPracticeListenTest.moc"
