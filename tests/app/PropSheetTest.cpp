// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CPropSheet.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>

#include "AppTestFixture.h"

class PropSheetTest : public QObject, public AppTestFixture {
    Q_OBJECT

    /// Runs the Config command with a driver acting on the sheet in place of the user.
    void Config(const std::function<int(CPropSheet&)>& driver) {
        CPropSheet::SetDriver(driver);
        Doc().OnConfig();
        CPropSheet::SetDriver({});
    }

    int Stored(const char* section, const char* entry) {
        return Profile().GetInt(section, entry, -1);
    }

private slots:
    void init() {
        NewProfile();
        NewFrame();
    }

    void textsAsTheUserSeesThem() {
        CPropSheet sheet(&Doc());
        QCOMPARE(sheet.windowTitle(), QStringLiteral("Tonwerk Configuration"));
        QCOMPARE(sheet.Tabs()->tabText(0), QStringLiteral("Speed"));
        QCOMPARE(sheet.Tabs()->tabText(1), QStringLiteral("Speech"));
        QStringList labels;
        for (QLabel* label : sheet.findChildren<QLabel*>()) {
            labels << label->text();
        }
        for (const char* text :
             {"All uints measured in milli seconds", "Dit Speed:", "Dah Speed:", "Char to Char:",
              "Next Word:", "Tone MHz:", "Words per min:", "Delay speach after code by :"}) {
            QVERIFY2(labels.contains(QString::fromLatin1(text)), text);
        }
        QCOMPARE(sheet.findChild<QPushButton*>("buttonFarnsworth")->text(),
                 QStringLiteral("Fransworth 5 WPM"));
        QStringList actors;
        for (int i = 0; i < CPropPageSpeech::kActorCount; ++i) {
            actors << sheet.findChild<QRadioButton*>(QStringLiteral("radioActor%1").arg(i))->text();
        }
        QCOMPARE(actors, (QStringList{"Amy", "Audrey", "Charles", "Claire", "Crystal", "Dave",
                                      "Lauren", "Mike", "Rich"}));
    }

    void ditSpeedOutOfRangeBlocksOkAndApply_data() {
        QTest::addColumn<QString>("value");
        QTest::newRow("0") << "0";
        QTest::newRow("501") << "501";
    }

    void ditSpeedOutOfRangeBlocksOkAndApply() {
        QFETCH(QString, value);
        CPropSheet sheet(&Doc(), &Frame());
        sheet.LoadFromProfile();
        sheet.show();
        QVERIFY(QTest::qWaitForWindowExposed(&sheet));
        QLineEdit* dit = sheet.Speed().Field(1046);
        dit->setText(value);
        emit dit->textEdited(value);
        QVERIFY(sheet.ApplyButton()->isEnabled());
        sheet.ApplyButton()->click();
        QCOMPARE(CModalSeam::Messages(),
                 QStringList{QStringLiteral("Please enter an integer between 1 and 500.")});
        QCOMPARE(Stored("UserSettings", "PauseDit"), -1);
        QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget*>(dit));
        sheet.OkButton()->click();
        QVERIFY(sheet.isVisible());
        QCOMPARE(sheet.result(), int(QDialog::Rejected));
        QCOMPARE(CModalSeam::Messages().size(), 2);
        // Leaving the page is refused as well.
        sheet.Tabs()->setCurrentIndex(1);
        QCOMPARE(sheet.Tabs()->currentIndex(), 0);
        dit->setText("500");
        sheet.Tabs()->setCurrentIndex(1);
        QCOMPARE(sheet.Tabs()->currentIndex(), 1);
    }

    void farnsworthPresetThenOk() {
        Config([](CPropSheet& sheet) {
            sheet.findChild<QPushButton*>("buttonFarnsworth")->click();
            sheet.accept();
            return sheet.result();
        });
        QCOMPARE(Stored("UserSettings", "PauseChar"), 15);
        QCOMPARE(Stored("UserSettings", "PauseWord"), 35);
        QCOMPARE(Stored("Settings", "WordRate"), 12);
        QCOMPARE(Stored("UserSettings", "ToneMHz"), 750);
        QCOMPARE(Stored("UserSettings", "PauseDit"), 1);
        QCOMPARE(Stored("UserSettings", "PauseDah"), 3);
        QCOMPARE(Stored("UserSettings", "SpeechDelay"), 125);
        QCOMPARE(Stored("UserSettings", "Actor"), 0);
    }

    void speedResetStoresFiveWordsPerMinute() {
        Profile().WriteInt("Settings", "WordRate", 40);
        QString shownRate;
        Config([&shownRate](CPropSheet& sheet) {
            shownRate = sheet.Speed().Field(1052)->text();
            sheet.findChild<QPushButton*>("buttonResetSpeed")->click();
            sheet.accept();
            return sheet.result();
        });
        QCOMPARE(shownRate, QStringLiteral("40"));
        QCOMPARE(Stored("Settings", "WordRate"), 5);
        QCOMPARE(Stored("UserSettings", "PauseChar"), 3);
        QCOMPARE(Stored("UserSettings", "PauseWord"), 7);
    }

    void richThenOkStoresActorEight() {
        Config([](CPropSheet& sheet) {
            sheet.Tabs()->setCurrentIndex(1);
            sheet.findChild<QRadioButton*>("radioActor8")->click();
            sheet.accept();
            return sheet.result();
        });
        QCOMPARE(Stored("UserSettings", "Actor"), 8);
    }

    void onlyOneVoiceIsChecked() {
        Profile().WriteInt("UserSettings", "Actor", 3);
        CPropSheet sheet(&Doc());
        sheet.LoadFromProfile();
        auto radio = [&sheet](int i) {
            return sheet.findChild<QRadioButton*>(QStringLiteral("radioActor%1").arg(i));
        };
        QVERIFY(radio(3)->isChecked());
        radio(6)->click();
        QVERIFY(radio(6)->isChecked());
        QVERIFY(!radio(3)->isChecked());
        sheet.findChild<QPushButton*>("buttonResetSpeech")->click();
        QVERIFY(radio(0)->isChecked());
        QVERIFY(!radio(6)->isChecked());
        QCOMPARE(sheet.Timing().SpeechDelay, 125);
    }

    void cancelKeepsWhatApplyWrote() {
        Config([](CPropSheet& sheet) {
            sheet.Speed().Field(1051)->setText("640");
            if (!sheet.OnApply()) {
                return int(QDialog::Accepted);  // makes the checks below fail
            }
            sheet.Speed().Field(1051)->setText("900");
            sheet.reject();
            return sheet.result();
        });
        QCOMPARE(Stored("UserSettings", "ToneMHz"), 640);
        QCOMPARE(Stored("Settings", "WordRate"), 15);
    }

    void wordRateZeroIsStoredAsIs() {
        Config([](CPropSheet& sheet) {
            sheet.Speed().Field(1052)->setText("0");
            sheet.accept();
            return sheet.result();
        });
        QCOMPARE(Stored("Settings", "WordRate"), 0);
    }
};

QTEST_MAIN(PropSheetTest)
#include "PropSheetTest.moc"
