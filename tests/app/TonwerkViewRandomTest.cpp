// SPDX-License-Identifier: GPL-3.0-or-later
// Random practice text in the real window: the Random menu and its check marks, the selection
// buttons and their profile values, the generated groups and call signs and what follows them.
#include <QAction>
#include <QPushButton>
#include <QRegularExpression>
#include <QSlider>
#include <QTextEdit>

#include "AppTestFixture.h"
#include "model/CMorseAlphabet.h"
#include "res/TonwerkResources.h"
#include "widgets/CClockDisplay.h"
#include "widgets/CImageButton.h"
#include "widgets/CStatusProgress.h"

class TonwerkViewRandomTest : public QObject, public AppTestFixture {
    Q_OBJECT

    static std::string_view Characters() { return CMorseAlphabet::SelectableCharacters(); }

    QPushButton* Button(char c) {
        for (QPushButton* button : View().findChildren<QPushButton*>()) {
            if (button->property("selectionChar").toString() == QString(QLatin1Char(c))) {
                return button;
            }
        }
        qFatal("no selection button for %c", c);
    }

    /// The selected characters, in the buttons' order.
    QString Checked() {
        QString checked;
        for (const char c : Characters()) {
            if (Button(c)->isChecked()) {
                checked += QLatin1Char(c);
            }
        }
        return checked;
    }

    /// The stored selection, in the same order.
    QString Stored() {
        QString stored;
        for (const char c : Characters()) {
            if (Profile().GetInt("Settings", std::string("Letter_") + c, 0) != 0) {
                stored += QLatin1Char(c);
            }
        }
        return stored;
    }

    int Stored(std::string_view section, std::string_view entry) {
        return Profile().GetInt(section, entry, -1);
    }

    void Trigger(int command) { Frame().Action(command)->trigger(); }
    bool MenuChecked(int command) { return Frame().Action(command)->isChecked(); }
    QString PracticeText() { return Control<QTextEdit>(1002)->toPlainText(); }
    QString CodeText() { return Control<QTextEdit>(1001)->toPlainText(); }
    QString ClockText() { return Control<CClockDisplay>(1040)->Text(); }

    void SetFields(int count, int size) {
        Control<QLineEdit>(1041)->setText(QString::number(count));
        Control<QLineEdit>(1043)->setText(QString::number(size));
    }

    /// "&Random" with only these characters selected.
    void GenerateFrom(std::initializer_list<char> characters, int count, int size) {
        Trigger(CMainFrame::kAllOff);
        for (const char c : characters) {
            Button(c)->click();
        }
        SetFields(count, size);
        Control<CImageButton>(1009)->click();
    }

private slots:
    void init() {
        NewProfile();
        NewFrame();
    }

    void groupsOfTheSelectionFillTheText() {
        Control<QSlider>(1003)->setValue(5);
        Control<QTextEdit>(1002)->setPlainText(QStringLiteral("old text"));
        GenerateFrom({'E'}, 2, 5);

        QCOMPARE(PracticeText(), QStringLiteral("EEEEE EEEEE "));
        // Converted one character at a time: the blank becomes " /".
        QCOMPARE(CodeText(), QStringLiteral(" . . . . . / . . . . . /"));
        // 2 × (5 × 3 + 8) = 46 units of 240 ms: 11.04 s.
        QCOMPARE(ClockText(), QStringLiteral("00:00:11"));
        QCOMPARE(Stored("Settings", "RandomWordCount"), 2);
        QCOMPARE(Stored("Settings", "RandomWordSize"), 5);
        QCOMPARE(Stored(), QStringLiteral("E"));
        // The groups' bar is gone; the one there now is the conversion's, run down again.
        QCOMPARE(Frame().Progress()->BarImage(), QString::fromLatin1(tonwerk::res::kBarConvert));
        QCOMPARE(Frame().Progress()->Pos(), 0);
        QVERIFY(CModalSeam::Messages().isEmpty());
    }

    void groupsUseEverySelectedCharacterAndNothingElse() {
        GenerateFrom({'K', 'M', '7', '?', '/'}, 200, 4);
        const QStringList groups = PracticeText().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        QCOMPARE(groups.size(), 200);
        QSet<QChar> seen;
        for (const QString& group : groups) {
            QCOMPARE(group.size(), 4);
            for (const QChar c : group) {
                seen.insert(c);
            }
        }
        QCOMPARE(seen, (QSet<QChar>{QLatin1Char('K'), QLatin1Char('M'), QLatin1Char('7'),
                                    QLatin1Char('?'), QLatin1Char('/')}));
        // With Double Space on, each character's code is followed by one more blank.
        Trigger(CMainFrame::kDoubleSpace);
        GenerateFrom({'T'}, 1, 2);
        QCOMPARE(PracticeText(), QStringLiteral("TT "));
        QCOMPARE(CodeText(), QStringLiteral(" -  -  / "));
    }

    void anEmptySelectionIsRefused() {
        Control<QTextEdit>(1002)->setPlainText(QStringLiteral("keep me"));
        Trigger(CMainFrame::kAllOff);
        Control<CImageButton>(1009)->click();
        QCOMPARE(CModalSeam::Messages(),
                 QStringList{QStringLiteral("Please select some characters to use in the "
                                            "generation.")});
        // The field is not refreshed, so it still shows the old text.
        QCOMPARE(PracticeText(), QStringLiteral("keep me"));
    }

    void aRefusedWordCountGeneratesNothing() {
        Control<QTextEdit>(1002)->setPlainText(QStringLiteral("keep me"));
        Trigger(CMainFrame::kAllOn);
        SetFields(20000, 5);
        Control<CImageButton>(1009)->click();
        Trigger(CMainFrame::kCallSigns);
        const QString refused = QStringLiteral("Please enter an integer between 1 and 10000.");
        QCOMPARE(CModalSeam::Messages(), (QStringList{refused, refused}));
        QCOMPARE(PracticeText(), QStringLiteral("keep me"));
        QCOMPARE(Stored("Settings", "RandomWordCount"), -1);
    }

    void theStoredWordCountAndSizeComeBack_data() {
        QTest::addColumn<int>("storedCount");
        QTest::addColumn<int>("storedSize");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("size");
        QTest::newRow("kept") << 7 << 3 << 7 << 3;
        QTest::newRow("count 0") << 0 << 3 << 20 << 3;
        QTest::newRow("count 10001") << 10001 << 4 << 20 << 4;
        QTest::newRow("size -2") << 12 << -2 << 12 << 5;
    }

    void theStoredWordCountAndSizeComeBack() {
        QFETCH(int, storedCount);
        QFETCH(int, storedSize);
        QFETCH(int, count);
        QFETCH(int, size);
        Profile().WriteInt("Settings", "RandomWordCount", storedCount);
        Profile().WriteInt("Settings", "RandomWordSize", storedSize);
        NewFrame();
        // Values the form would refuse fall back quietly: start-up never opens on an error.
        QVERIFY(CModalSeam::Messages().isEmpty());
        QCOMPARE(Control<QLineEdit>(1041)->text(), QString::number(count));
        QCOMPARE(Control<QLineEdit>(1043)->text(), QString::number(size));
        Trigger(CMainFrame::kAllOn);
        Control<CImageButton>(1009)->click();
        QCOMPARE(PracticeText().split(QLatin1Char(' '), Qt::SkipEmptyParts).size(), count);
        QCOMPARE(Stored("Settings", "RandomWordCount"), count);
        QCOMPARE(Stored("Settings", "RandomWordSize"), size);
    }

    void allOnAndAllOffSetEveryButtonAndBothToggles() {
        Trigger(CMainFrame::kAllOn);
        QCOMPARE(Checked().size(), 58);
        QCOMPARE(Stored().size(), 58);
        QCOMPARE(Stored("UserSettings", "NumTog"), 1);
        QCOMPARE(Stored("UserSettings", "RanProSnTog"), 1);
        QVERIFY(MenuChecked(CMainFrame::kNumbersToggle));
        QVERIFY(MenuChecked(CMainFrame::kProSignsToggle));

        Trigger(CMainFrame::kAllOff);
        QCOMPARE(Checked(), QString());
        QCOMPARE(Stored(), QString());
        QCOMPARE(Stored("UserSettings", "NumTog"), 0);
        QCOMPARE(Stored("UserSettings", "RanProSnTog"), 0);
        QVERIFY(!MenuChecked(CMainFrame::kNumbersToggle));
        QVERIFY(!MenuChecked(CMainFrame::kProSignsToggle));
    }

    void letterClassesStartAfreshAndFollowDoubleSpace() {
        Trigger(CMainFrame::kAllOn);
        Trigger(CMainFrame::kOneTone);
        QCOMPARE(Checked(), QStringLiteral("AIMN"));
        QCOMPARE(Stored(), QStringLiteral("AIMN"));
        QCOMPARE(Stored("UserSettings", "NumTog"), 0);
        Trigger(CMainFrame::kFourTones);
        QCOMPARE(Checked(), QString());

        Trigger(CMainFrame::kDoubleSpace);
        QCOMPARE(Stored("UserSettings", "DblSpace"), 1);
        QVERIFY(MenuChecked(CMainFrame::kDoubleSpace));
        Trigger(CMainFrame::kOneTone);
        QCOMPARE(Checked(), QStringLiteral("ET"));
        Trigger(CMainFrame::kFourTones);
        QCOMPARE(Checked(), QStringLiteral("BCFHJLPQVXYZ"));
        Trigger(CMainFrame::kDoubleSpace);
        QCOMPARE(Stored("UserSettings", "DblSpace"), 0);
        QVERIFY(!MenuChecked(CMainFrame::kDoubleSpace));

        Trigger(CMainFrame::kDitCharacters);
        QCOMPARE(Checked(), QStringLiteral("AEFHIJLPRSUVW"));
        Trigger(CMainFrame::kDahCharacters);
        QCOMPARE(Checked(), QStringLiteral("BCDGKMNOQTXYZ"));
    }

    void togglesSetTheirButtonsAndTheProSignsStoreTheNumbers() {
        Trigger(CMainFrame::kAllOff);
        Trigger(CMainFrame::kProSignsToggle);
        QCOMPARE(Checked().size(), 22);
        QVERIFY(Checked().startsWith(QLatin1Char(Characters()[36])));
        QVERIFY(MenuChecked(CMainFrame::kProSignsToggle));
        // The numbers toggle is off, and that is what is stored for the pro signs.
        QCOMPARE(Stored("UserSettings", "RanProSnTog"), 0);

        Trigger(CMainFrame::kNumbersToggle);
        QCOMPARE(Checked().left(10), QStringLiteral("0123456789"));
        QCOMPARE(Stored("UserSettings", "NumTog"), 1);
        Trigger(CMainFrame::kProSignsToggle);
        QCOMPARE(Checked(), QStringLiteral("0123456789"));
        QVERIFY(!MenuChecked(CMainFrame::kProSignsToggle));
        QCOMPARE(Stored("UserSettings", "RanProSnTog"), 1);
        Trigger(CMainFrame::kNumbersToggle);
        QCOMPARE(Checked(), QString());
        QCOMPARE(Stored("UserSettings", "NumTog"), 0);
    }

    void selectionAndTogglesComeBackWithTheNextWindow() {
        Trigger(CMainFrame::kAllOff);
        Trigger(CMainFrame::kNumbersToggle);
        Trigger(CMainFrame::kDoubleSpace);
        Button('Q')->click();
        NewFrame();
        QCOMPARE(Checked(), QStringLiteral("Q0123456789"));
        QVERIFY(MenuChecked(CMainFrame::kNumbersToggle));
        QVERIFY(MenuChecked(CMainFrame::kDoubleSpace));
        QVERIFY(!MenuChecked(CMainFrame::kProSignsToggle));
        // A toggle picks up where the stored state left it.
        Trigger(CMainFrame::kNumbersToggle);
        QCOMPARE(Checked(), QStringLiteral("Q"));
    }

    void callSignsDependOnlyOnTheSecond() {
        std::int64_t now = 1'700'000'000;
        View().SetTimeSource([&now] { return now; });
        Control<QSlider>(1003)->setValue(20);
        SetFields(25, 5);
        Trigger(CMainFrame::kCallSigns);
        const QString first = PracticeText();
        QVERIFY(first.endsWith(QLatin1Char(' ')));
        const QStringList signs = first.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        QCOMPARE(signs.size(), 25);
        const QRegularExpression shape(QStringLiteral("^([KWN][A-Z]?|A[A-L])[0-9][A-Z]+$"));
        for (const QString& sign : signs) {
            QVERIFY2(shape.match(sign).hasMatch(), qPrintable(sign));
            QVERIFY2(sign.size() >= 3 && sign.size() <= 6, qPrintable(sign));
            QCOMPARE(signs.count(sign), 1);
        }
        QCOMPARE(Stored("Settings", "RandomWordCount"), 25);
        // The code text and the estimate follow, as after groups.
        QCOMPARE(CodeText().count(QLatin1Char('/')), 25);
        QVERIFY(ClockText() != QStringLiteral("00:00:00"));

        Trigger(CMainFrame::kCallSigns);
        QCOMPARE(PracticeText(), first);
        now += 1;
        Trigger(CMainFrame::kCallSigns);
        QVERIFY(PracticeText() != first);
    }
};

QTEST_MAIN(TonwerkViewRandomTest)
#include "TonwerkViewRandomTest.moc"
