// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CTonwerkView.h"

#include <QApplication>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSet>
#include <QSlider>
#include <QTextCursor>
#include <QTextEdit>

#include "AppTestFixture.h"
#include "model/CMorseAlphabet.h"
#include "widgets/CClockDisplay.h"
#include "widgets/CHtmlToolTip.h"
#include "widgets/CStatusProgress.h"

class TonwerkViewTest : public QObject, public AppTestFixture {
    Q_OBJECT

    QTextEdit* Practice() { return Control<QTextEdit>(1002); }
    QTextEdit* Code() { return Control<QTextEdit>(1001); }
    void Click(int id) { Control<QAbstractButton>(id)->click(); }

private slots:
    void init() {
        NewProfile();
        NewFrame();
    }

    void formHasItsControlsInTabOrder() {
        QList<int> ids;
        for (QObject* child : View().children()) {
            if (const QVariant id = child->property("controlId"); id.isValid()) {
                ids.append(id.toInt());
                QVERIFY(!child->objectName().isEmpty());
            }
        }
        QCOMPARE(ids.size(), 85);
        QCOMPARE(QSet<int>(ids.begin(), ids.end()).size(), 85);
        const QList<int> head = {1006, 1000, 1004, 1049, 1050, 1052, 1051, 1003, 1045, 1042, 1041,
                                 1044, 1043, 1010, 1037, 1040, 1005, 1046, 1009, 1038, 1079, 1080,
                                 1081, 1082, 1083, 1084, 1085, 1086, 1087, 1078, 1039};
        QCOMPARE(ids.mid(0, head.size()), head);
        QCOMPARE(ids.at(head.size()), 1056);
        QCOMPARE(ids.at(head.size() + 21), 1077);
        QCOMPARE(ids.at(head.size() + 22), 1011);
        QCOMPARE(ids.mid(ids.size() - 7), (QList<int>{1036, 1002, 1007, 1008, 1001, 1088, 1089}));
    }

    void captionsAndInitialValues() {
        QCOMPARE(Control<QAbstractButton>(1059)->text(), QStringLiteral("&&"));
        QCOMPARE(Control<QAbstractButton>(1062)->text(), QStringLiteral("--"));
        QCOMPARE(Control<QAbstractButton>(1011)->text(), QStringLiteral("A"));
        QCOMPARE(Control<QAbstractButton>(1078)->text(), QStringLiteral("0"));
        QCOMPARE(Control<QAbstractButton>(1007)->text(), QStringLiteral("&Text to Morse Code"));
        QCOMPARE(Control<QAbstractButton>(1008)->text(), QStringLiteral("&Morse Code to Text"));
        QCOMPARE(Control<QLabel>(1049)->text(), QStringLiteral("Farnsworth Factor:"));
        QCOMPARE(Practice()->toPlainText(), QStringLiteral("Welcome to learning MORSE CODE"));
        QCOMPARE(Code()->toPlainText(), QString::fromStdString(CMorseAlphabet::TextToCode(
                                            "Welcome to learning MORSE CODE", false)));
        QCOMPARE(Control<QLineEdit>(1041)->text(), QStringLiteral("20"));
        QCOMPARE(Control<QLineEdit>(1043)->text(), QStringLiteral("5"));
        QCOMPARE(Control<QLineEdit>(1050)->text(), QStringLiteral("0"));
        QVERIFY(!Control<QCheckBox>(1051)->isChecked());
        QCOMPARE(Control<CClockDisplay>(1040)->Text(), QStringLiteral("00:00:20"));
    }

    void wordRateSliderStoresTheRate_data() {
        QTest::addColumn<int>("position");
        QTest::newRow("lowest") << 5;
        QTest::newRow("middle") << 30;
        QTest::newRow("highest") << 99;
    }

    void wordRateSliderStoresTheRate() {
        QFETCH(int, position);
        auto* slider = Control<QSlider>(1003);
        QCOMPARE(slider->minimum(), 5);
        QCOMPARE(slider->maximum(), 99);
        Practice()->setPlainText("PARIS ");
        slider->setValue(position);
        QCOMPARE(Profile().GetInt("Settings", "WordRate", -1), position);
        QCOMPARE(Control<QLabel>(1004)->text(),
                 QStringLiteral("Set Words/Minute: %1").arg(position));
        // The estimate follows the rate: 49 units of 1200 / WPM milliseconds.
        const int seconds = static_cast<int>(49 * 1.2 / position);
        QCOMPARE(Control<CClockDisplay>(1040)->Text(),
                 QStringLiteral("00:00:%1").arg(seconds, 2, 10, QLatin1Char('0')));
    }

    void pitchSliderStoresToneMHz() {
        auto* slider = Control<QSlider>(1039);
        QCOMPARE(slider->minimum(), 100);
        QCOMPARE(slider->maximum(), 1800);
        slider->setValue(1800);
        QCOMPARE(Profile().GetInt("UserSettings", "ToneMHz", -1), 1800);
        QCOMPARE(Control<QLabel>(1089)->text(), QStringLiteral("Pitch: 1800"));
        slider->setValue(100);
        QCOMPARE(Profile().GetInt("UserSettings", "ToneMHz", -1), 100);
    }

    void volumeLabelArithmetic_data() {
        QTest::addColumn<int>("position");
        QTest::addColumn<QString>("label");
        QTest::newRow("0") << 0 << "Volume: 1";
        QTest::newRow("999") << 999 << "Volume: 1";
        QTest::newRow("1000") << 1000 << "Volume: 2";
        QTest::newRow("32767") << 32767 << "Volume: 33";
        QTest::newRow("65535") << 65535 << "Volume: 66";
    }

    void volumeLabelArithmetic() {
        QFETCH(int, position);
        QFETCH(QString, label);
        int mixer = -1;
        CTonwerkView::AudioHooks hooks = Hooks(1);
        hooks.readVolume = [] { return 12345; };
        hooks.setVolume = [&mixer](int volume) { mixer = volume; };
        CTonwerkView::SetDefaultAudioHooks(hooks);
        NewFrame();
        auto* slider = Control<QSlider>(1038);
        QCOMPARE(slider->value(), 12345);
        QCOMPARE(Control<QLabel>(1088)->text(), QStringLiteral("Volume: 13"));
        slider->setValue(position);
        QCOMPARE(Control<QLabel>(1088)->text(), label);
        QCOMPARE(mixer, position);
        CTonwerkView::SetDefaultAudioHooks(Hooks(1));
    }

    void textToMorseAndBack() {
        Practice()->setPlainText("SOS 73?");
        Click(1007);
        QCOMPARE(Code()->toPlainText(), QStringLiteral(" ... --- ... / --... ...-- ..--.."));
        QVERIFY(Frame().Progress());
        QCOMPARE(Frame().Progress()->Pos(), 0);
        // The converted code is shown on the highlight colour.
        QTextCursor cursor(Code()->document());
        cursor.setPosition(3);
        QCOMPARE(cursor.charFormat().background().color(), QColor(199, 216, 255));
        Practice()->clear();
        Click(1008);
        QCOMPARE(Practice()->toPlainText(), QStringLiteral("SOS 73?"));
    }

    void textToMorseConvertsOneCharacterAtATime() {
        // With Double Space each character's code gets its own trailing blank.
        Profile().WriteInt("UserSettings", "DblSpace", 1);
        Practice()->setPlainText("ET");
        Click(1007);
        QCOMPARE(Code()->toPlainText(), QStringLiteral(" .  - "));
    }

    void morseToTextSkipsEmptyAndUnknownPieces() {
        Code()->setPlainText(".- -...  -.-. / -.. .-.-.-.-.- .");
        Click(1008);
        QCOMPARE(Practice()->toPlainText(), QStringLiteral("ABC DE"));
    }

    void outOfRangeFieldsAreRefused_data() {
        QTest::addColumn<int>("id");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("message");
        const QString count = "Please enter an integer between 1 and 10000.";
        const QString farnsworth = "Please enter an integer between 0 and 99.";
        QTest::newRow("word count 0") << 1041 << "0" << count;
        QTest::newRow("word count 10001") << 1041 << "10001" << count;
        QTest::newRow("word count text") << 1041 << "many"
                                         << "Please enter an integer.";
        QTest::newRow("farnsworth -1") << 1050 << "-1" << farnsworth;
        QTest::newRow("farnsworth 100") << 1050 << "100" << farnsworth;
    }

    void outOfRangeFieldsAreRefused() {
        QFETCH(int, id);
        QFETCH(QString, value);
        QFETCH(QString, message);
        Frame().show();
        QVERIFY(QTest::qWaitForWindowExposed(&Frame()));
        const QString code = Code()->toPlainText();
        Practice()->setPlainText("NEW");
        Control<QLineEdit>(id)->setText(value);
        Click(1007);
        QCOMPARE(CModalSeam::Messages(), QStringList{message});
        QCOMPARE(Code()->toPlainText(), code);  // the conversion did not run
        QTRY_COMPARE(QApplication::focusWidget(), View().Control(id));
    }

    void boundaryFieldValuesAreAccepted() {
        Control<QLineEdit>(1041)->setText("10000");
        Control<QLineEdit>(1050)->setText("99");
        Practice()->setPlainText("E");
        Click(1007);
        QVERIFY(CModalSeam::Messages().isEmpty());
        QCOMPARE(Code()->toPlainText(), QStringLiteral(" ."));
        // Read, not stored: the factor is stored when Listen starts a session.
        QCOMPARE(Profile().GetInt("Settings", "FarnsworthFactor", -1), -1);
    }

    void numericFieldsTakeDigitsOnly_data() {
        QTest::addColumn<int>("id");
        QTest::newRow("word count") << 1041;
        QTest::newRow("word size") << 1043;
        QTest::newRow("farnsworth") << 1050;
    }

    void numericFieldsTakeDigitsOnly() {
        QFETCH(int, id);
        auto* field = Control<QLineEdit>(id);
        field->clear();
        QTest::keyClicks(field, "-1a 2.5");
        QCOMPARE(field->text(), QStringLiteral("125"));
    }

    void typographicFormsAreKeyedAsTheirPlainCharacters_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("plain");
        QTest::newRow("quotes") << QString::fromUtf8("It\u2019s \u201COK\u201D") << "It's \"OK\"";
        QTest::newRow("dash and ellipsis") << QString::fromUtf8("A \u2013 B\u2026") << "A - B...";
        QTest::newRow("no code") << QString::fromUtf8("5 \u20AC \u00DF\uFB01") << "5  ";
    }

    void typographicFormsAreKeyedAsTheirPlainCharacters() {
        QFETCH(QString, typed);
        QFETCH(QString, plain);
        Practice()->setPlainText(plain);
        Click(1007);
        const QString code = Code()->toPlainText();
        const QString clock = Control<CClockDisplay>(1040)->Text();
        Practice()->setPlainText(typed);
        Click(1007);
        // Neither a "?" in the code nor a letter in the estimate that the run would not key.
        QCOMPARE(Code()->toPlainText(), code);
        QCOMPARE(Control<CClockDisplay>(1040)->Text(), clock);
    }

    void toolTipTexts_data() {
        QTest::addColumn<int>("id");
        QTest::addColumn<QString>("html");
        QTest::newRow("letter A")
            << 1011
            << "<center><h2>The Letter A</h2></center><br><hr color=green><br><h1>  .- </h1>";
        QTest::newRow("digit 5")
            << 1083
            << "<center><h2>The Number 5</h2></center><br><hr color=green><br><h1>  ..... </h1>";
        QTest::newRow("pro sign #")
            << 1057
            << "<center><h2>The Pro Sign # (AL)</h2></center><br><hr color=green><br><h1> .-.-.. "
               " Paragraph </h1>";
        QTest::newRow("random")
            << 1009
            << "<center><h2>Generate Random</h2></center><br><hr color=green><br><h4>Generates "
               "random sequences<br>of characters and groups<br>them into words</h4>";
    }

    void toolTipTexts() {
        QFETCH(int, id);
        QFETCH(QString, html);
        QCOMPARE(View().ToolTips()->ToolText(View().Control(id)), html);
        QVERIFY(View().ToolTips()->IsActive());
    }

    void selectionButtonsFollowTheProfile() {
        Profile().WriteInt("Settings", "Letter_Q", 1);
        Profile().WriteInt("Settings", "Letter_?", 1);
        NewFrame();
        QVERIFY(Control<QAbstractButton>(1027)->isChecked());  // Q
        QVERIFY(Control<QAbstractButton>(1075)->isChecked());  // ?
        QVERIFY(!Control<QAbstractButton>(1015)->isChecked());
        Click(1015);  // E
        QCOMPARE(Profile().GetInt("Settings", "Letter_E", -1), 1);
        Click(1027);
        QCOMPARE(Profile().GetInt("Settings", "Letter_Q", -1), 0);
        Click(1085);  // 7
        QCOMPARE(Profile().GetInt("Settings", "Letter_7", -1), 1);
    }

    void muteAndSpeechAreStored() {
        Click(1051);
        QCOMPARE(Profile().GetInt("UserSettings", "Mute", -1), 1);
        Click(1051);
        QCOMPARE(Profile().GetInt("UserSettings", "Mute", -1), 0);
        Click(1052);
        QCOMPARE(Profile().GetInt("UserSettings", "Speech", -1), 1);
    }

    void contextMenuOnlyOverTheTextBoxes() {
        Frame().show();
        QVERIFY(QTest::qWaitForWindowExposed(&Frame()));
        QMenu* menu = View().ContextMenu();
        QStringList texts;
        for (QAction* action : menu->actions()) {
            texts << action->text();
        }
        QCOMPARE(texts, (QStringList{"&Undo\tCtrl+Z", "Cu&t\tCtrl+X", "&Copy\tCtrl+C",
                                     "&Paste\tCtrl+V", "Select A&ll\tCtrl+A"}));
        auto shown = [menu] { return menu->property("shownCount").toInt(); };
        auto rightClick = [this](QWidget* widget) {
            const QPoint local = widget->rect().center();
            QContextMenuEvent event(QContextMenuEvent::Mouse, widget->mapTo(&View(), local),
                                    widget->mapToGlobal(local));
            QApplication::sendEvent(&View(), &event);
        };
        rightClick(View().Control(1003));
        QCOMPARE(shown(), 0);
        rightClick(Practice());
        QCOMPARE(shown(), 1);
        rightClick(Code());
        QCOMPARE(shown(), 2);
    }

    void editCommandsActOnTheFocusedControl() {
        Frame().show();
        QVERIFY(QTest::qWaitForWindowExposed(&Frame()));
        Practice()->setPlainText("HELLO");
        Practice()->setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget*>(Practice()));
        View().OnEditCommand(CTonwerkView::kEditSelectAll);
        QCOMPARE(Practice()->textCursor().selectedText(), QStringLiteral("HELLO"));
        View().OnEditCommand(CTonwerkView::kEditCut);
        QVERIFY(Practice()->toPlainText().isEmpty());
        View().OnEditCommand(CTonwerkView::kEditUndo);
        QCOMPARE(Practice()->toPlainText(), QStringLiteral("HELLO"));
        QVERIFY(Code()->toPlainText() != QStringLiteral("HELLO"));
    }

    void volumeControlStartsTheDesktopUtilityWhenPresent() {
        const QByteArray oldPath = qgetenv("PATH");
        const QString bin = TempPath("bin");
        QVERIFY(QDir().mkpath(bin));
        qputenv("PATH", bin.toLocal8Bit());
        QVERIFY(CTonwerkView::VolumeControlProgram().isEmpty());
        View().OnVolumeControl();  // nothing to start: nothing happens, nothing is shown
        QVERIFY(CModalSeam::Messages().isEmpty());

        const QString marker = TempPath("started");
        QFile script(bin + "/pavucontrol");
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write(QStringLiteral("#!/bin/sh\n: > '%1'\n").arg(marker).toLocal8Bit());
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QCOMPARE(CTonwerkView::VolumeControlProgram(), bin + "/pavucontrol");
        View().OnVolumeControl();
        qputenv("PATH", oldPath);
        QTRY_VERIFY(QFile::exists(marker));
    }

    void largeTextConvertsCompletely() {
        QString text;
        for (int i = 0; i < 2000; ++i) {
            text += QStringLiteral("PARIS ");
        }
        Practice()->setPlainText(text);
        Click(1007);
        QCOMPARE(Code()->toPlainText().count(QLatin1Char('/')), 2000);
        QCOMPARE(Frame().Progress()->Upper(), text.size());
    }
};

QTEST_MAIN(TonwerkViewTest)
#include "TonwerkViewTest.moc"
