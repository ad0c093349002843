// SPDX-License-Identifier: GPL-3.0-or-later
// The copy-practice panel and the Koch course without sound: the panel kept open or closed, a
// lesson picked from the Random menu, and a good session of a lesson offering the next one.
#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTextEdit>

#include "CopyPracticeTestSupport.h"
#include "app/CKochLessonDlg.h"
#include "app/CKochTrainer.h"
#include "audio/INotifyTarget.h"
#include "model/CMorseAlphabet.h"

class CopyPracticeTest : public QObject, public CopyPracticeFixture {
    Q_OBJECT

    /// The checked selection buttons' characters, in the buttons' order.
    QString Selected() {
        QString selected;
        for (QPushButton* button : View().findChildren<QPushButton*>()) {
            if (button->isChecked() && !button->property("selectionChar").isNull()) {
                selected += button->property("selectionChar").toString();
            }
        }
        std::sort(selected.begin(), selected.end());
        return selected;
    }

    static QString Sorted(std::string_view characters) {
        QString sorted = QString::fromLatin1(characters.data(), characters.size());
        std::sort(sorted.begin(), sorted.end());
        return sorted;
    }

    QString PracticeText() { return Control<QTextEdit>(1002)->toPlainText(); }

    /// Picks a lesson from the Random menu, the dialog answered by the driver.
    void PickLesson(const std::function<int(CKochLessonDlg&)>& answer) {
        CKochLessonDlg::SetDriver(answer);
        Frame().Action(CMainFrame::kKochLesson)->trigger();
        CKochLessonDlg::SetDriver({});
    }

private slots:
    void init() {
        RemoveHistory();
        NewProfile();
    }

    void panelAndItsOptionAreKeptInTheProfile() {
        NewFrame();
        QVERIFY(Panel()->isHidden());
        QVERIFY(Panel()->findChild<QCheckBox*>("checkHideText")->isChecked());
        Panel()->toggleViewAction()->trigger();
        Panel()->findChild<QCheckBox*>("checkHideText")->setChecked(false);
        NewFrame();
        QVERIFY(!Panel()->isHidden());
        QVERIFY(!Panel()->findChild<QCheckBox*>("checkHideText")->isChecked());
        // Closed by its own title-bar button.
        Frame().show();
        QVERIFY(Panel()->close());
        NewFrame();
        QVERIFY(Panel()->isHidden());

        // Ctrl+K opens it with the practice text checked: nothing copied, everything missed.
        Panel()->CheckAction()->trigger();
        QCOMPARE(Summary(), QStringLiteral("Accuracy 0.0 % (0/26): 0 wrong, 26 missed, 0 extra"));
        NewFrame();
        QVERIFY(!Panel()->isHidden());
    }

    void kochLessonSetsTheSelectionAndTheGroups_data() {
        QTest::addColumn<int>("lesson");
        QTest::addColumn<QString>("shown");
        QTest::newRow("first") << 1 << "K M";
        QTest::newRow("fifth") << 5 << "K M R S U A";
        QTest::newRow("last") << 39
                              << "K M R S U A P T L O W I . N J E F 0 Y , V G 5 / Q 9 Z H 3 8 B "
                                 "? 4 2 7 C 1 D 6 X";
    }

    void kochLessonSetsTheSelectionAndTheGroups() {
        QFETCH(int, lesson);
        QFETCH(QString, shown);
        NewFrame();
        Control<QLineEdit>(1041)->setText(QStringLiteral("7"));
        Control<QLineEdit>(1043)->setText(QStringLiteral("4"));
        QString offered;
        PickLesson([&](CKochLessonDlg& dialog) {
            offered = QString::number(dialog.Lesson()) + QLatin1Char('|') + dialog.CharactersText();
            dialog.SetLesson(lesson);
            return int(QDialog::Accepted);
        });
        QCOMPARE(offered, QStringLiteral("1|K M"));
        const QString characters = QString(shown).remove(QLatin1Char(' '));
        QCOMPARE(Selected(), Sorted(characters.toStdString()));

        const QStringList groups = PracticeText().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        QCOMPARE(groups.size(), 7);
        for (const QString& group : groups) {
            QCOMPARE(group.size(), 4);
            for (const QChar c : group) {
                QVERIFY2(characters.contains(c), qPrintable(group));
            }
        }
        QVERIFY(!Control<QTextEdit>(1001)->toPlainText().isEmpty());

        // The lesson is kept: the next start offers it again; Cancel changes nothing.
        NewFrame();
        const QString text = PracticeText();
        PickLesson([&](CKochLessonDlg& dialog) {
            offered = QString::number(dialog.Lesson()) + QLatin1Char('|') + dialog.CharactersText();
            return int(QDialog::Rejected);
        });
        QCOMPARE(offered, QString::number(lesson) + QLatin1Char('|') + shown);
        QCOMPARE(PracticeText(), text);
    }

    void goodLessonSessionOffersTheNextLesson_data() {
        QTest::addColumn<int>("groups");
        QTest::addColumn<int>("wrong");
        QTest::addColumn<bool>("offered");
        QTest::newRow("100 characters, all right") << 25 << 0 << true;
        QTest::newRow("100 characters, 10 wrong") << 25 << 10 << true;
        QTest::newRow("100 characters, 11 wrong") << 25 << 11 << false;
        QTest::newRow("96 characters, all right") << 24 << 0 << false;
    }

    void goodLessonSessionOffersTheNextLesson() {
        QFETCH(int, groups);
        QFETCH(int, wrong);
        QFETCH(bool, offered);
        OpenPanel();
        Control<QLineEdit>(1041)->setText(QString::number(groups));
        Control<QLineEdit>(1043)->setText(QStringLiteral("4"));
        Frame().KochTrainer()->StartLesson(2);
        const QString sent = PracticeText();

        // A run as the view reports it, every character announced as the worker does, copied
        // with the first letters taken for X.
        emit View().ListeningStarted(sent);
        for (int i = 0; i < groups * 4; ++i) {
            emit View().AppMessage(kAppMessage + 2);
        }
        QString copy = sent;
        for (int i = 0, changed = 0; changed < wrong; ++i) {
            if (copy[i] != QLatin1Char(' ')) {
                copy[i] = QLatin1Char('X');
                ++changed;
            }
        }
        CopyEdit()->setPlainText(copy);
        CModalSeam::QueueButton(QMessageBox::Yes);
        emit View().ListeningFinished();

        QVERIFY(Panel()->LastScore().has_value());
        QCOMPARE(Panel()->LastScore()->correct, groups * 4 - wrong);
        if (!offered) {
            QVERIFY(CModalSeam::Messages().isEmpty());
            QCOMPARE(Frame().KochTrainer()->CurrentLesson(), 2);
            return;
        }
        QCOMPARE(CModalSeam::Messages(),
                 QStringList(QStringLiteral("You copied %1 % of 100 characters. Go on to Koch "
                                            "lesson 3, which adds S?")
                                 .arg(100.0 - wrong, 0, 'f', 1)));
        QCOMPARE(Frame().KochTrainer()->CurrentLesson(), 3);
        QCOMPARE(Selected(), Sorted("KMRS"));
        QVERIFY(PracticeText() != sent);
        QCOMPARE(StoredSessions().size(), 1);
        QCOMPARE(StoredSessions()[0].info.lesson, 2);
    }
};

QTEST_MAIN(CopyPracticeTest)
#include "CopyPracticeTest.moc"
