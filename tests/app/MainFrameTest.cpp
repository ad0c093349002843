// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CMainFrame.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QMimeData>
#include <QScreen>
#include <QSlider>
#include <QStatusBar>
#include <QToolBar>
#include <QToolTip>
#include <QUrl>

#include "AppTestFixture.h"
#include "app/CAboutDlg.h"
#include "app/CAppMessageEvent.h"
#include "app/CLockIndicators.h"
#include "app/CPropSheet.h"
#include "app/CTonwerkApp.h"
#include "widgets/CStatusProgress.h"

#include <thread>

class MainFrameTest : public QObject, public AppTestFixture {
    Q_OBJECT

private slots:
    void init() { NewProfile(); }

    void firstStartUsesTheDefaultPlacementAndSettings() {
        CMainFrame& frame = NewFrame();
        // The default placement, within what the screen holds (the test screen is small).
        const QRect screen = frame.screen()->availableGeometry();
        QCOMPARE(frame.size(), QSize(875, 700).boundedTo(screen.size()));
        QVERIFY(screen.contains(QRect(frame.pos(), frame.size())));
        QCOMPARE(Control<QSlider>(1039)->value(), 1000);
        QCOMPARE(Control<QSlider>(1003)->value(), 15);
        QCOMPARE(Control<QLabel>(1004)->text(), QStringLiteral("Set Words/Minute: 15"));
        QCOMPARE(Control<QLabel>(1089)->text(), QStringLiteral("Pitch: 1000"));
        QCOMPARE(frame.windowTitle(), QStringLiteral("Untitled - Tonwerk"));
        QVERIFY(!Doc().IsModified());

        CPropSheet sheet(&Doc());
        sheet.LoadFromProfile();
        const std::pair<int, const char*> fields[] = {{1046, "1"}, {1047, "3"},   {1048, "3"},
                                                      {1049, "7"}, {1051, "750"}, {1052, "15"}};
        for (const auto& [id, text] : fields) {
            QCOMPARE(sheet.Speed().Field(id)->text(), QString::fromLatin1(text));
        }
        QCOMPARE(sheet.Speech().findChild<QLineEdit*>("editSpeechDelay")->text(),
                 QStringLiteral("125"));
        auto* amy = sheet.Speech().findChild<QAbstractButton*>("radioActor0");
        QCOMPARE(amy->text(), QStringLiteral("Amy"));
        QVERIFY(amy->isChecked());
    }

    void midiCheckReportsAMachineWithoutOutputs() {
        CTonwerkView::SetDefaultAudioHooks(Hooks(0));
        NewFrame();
        QCOMPARE(CModalSeam::Messages(),
                 QStringList{QStringLiteral("There are no MIDI output devices.")});
        CTonwerkView::SetDefaultAudioHooks(Hooks(2));
        NewFrame();
        QVERIFY(CModalSeam::Messages().isEmpty());
        CTonwerkView::SetDefaultAudioHooks(Hooks(1));
    }

    // A stored placement that fits is used as it is; one off every screen comes onto the nearest,
    // and a size beyond the screen is cut to it.
    void storedPlacementComesOnScreen_data() {
        QTest::addColumn<QList<int>>("stored");  // x, y, width, height
        QTest::addColumn<bool>("kept");
        constexpr int kHuge = 2147483647;
        QTest::newRow("fits") << QList<int>{20, 30, 300, 200} << true;
        QTest::newRow("far left") << QList<int>{-5000, 40, 300, 200} << false;
        QTest::newRow("far right") << QList<int>{2500, 40, 300, 200} << false;
        QTest::newRow("huge") << QList<int>{kHuge, kHuge, kHuge, kHuge} << false;
        QTest::newRow("no size") << QList<int>{20, 30, 0, -5} << false;
    }

    void storedPlacementComesOnScreen() {
        QFETCH(QList<int>, stored);
        QFETCH(bool, kept);
        const char* entries[] = {"TopLeftX", "TopLeftY", "SizeX", "SizeY"};
        for (int i = 0; i < 4; ++i) {
            Profile().WriteInt("WindowSettings", entries[i], stored[i]);
        }
        CMainFrame& frame = NewFrame();
        const QRect placed(frame.pos(), frame.size());
        QVERIFY2(frame.screen()->availableGeometry().contains(placed),
                 qPrintable(QStringLiteral("%1 %2 %3 %4")
                                .arg(placed.x())
                                .arg(placed.y())
                                .arg(placed.width())
                                .arg(placed.height())));
        if (kept) {
            QCOMPARE(placed, QRect(stored[0], stored[1], stored[2], stored[3]));
        }
    }

    void placementOnClose_data() {
        QTest::addColumn<QRect>("rect");
        QTest::addColumn<bool>("saved");
        QTest::newRow("inside") << QRect(300, 150, 900, 650) << true;
        QTest::newRow("upper bounds") << QRect(1999, 1999, 1999, 1999) << true;
        QTest::newRow("lower bounds") << QRect(1, 1, 1000, 700) << true;
        QTest::newRow("x = 0") << QRect(0, 150, 900, 650) << false;
        QTest::newRow("y = 0") << QRect(300, 0, 900, 650) << false;
        QTest::newRow("negative x") << QRect(-8, 150, 900, 650) << false;
        QTest::newRow("wider than 1999") << QRect(300, 150, 2000, 650) << false;
        QTest::newRow("x = 2000") << QRect(2000, 150, 900, 650) << false;
    }

    void placementOnClose() {
        QFETCH(QRect, rect);
        QFETCH(bool, saved);
        const QRect previous(111, 112, 813, 614);
        Profile().WriteInt("WindowSettings", "TopLeftX", previous.x());
        Profile().WriteInt("WindowSettings", "TopLeftY", previous.y());
        Profile().WriteInt("WindowSettings", "SizeX", previous.width());
        Profile().WriteInt("WindowSettings", "SizeY", previous.height());
        CMainFrame& frame = NewFrame();
        frame.show();
        frame.move(rect.topLeft());
        frame.resize(rect.size());
        QTRY_COMPARE(frame.WindowRect(), rect);
        QVERIFY(frame.close());
        const QRect expected = saved ? rect : previous;
        QCOMPARE(Profile().GetInt("WindowSettings", "TopLeftX", -1), expected.x());
        QCOMPARE(Profile().GetInt("WindowSettings", "TopLeftY", -1), expected.y());
        QCOMPARE(Profile().GetInt("WindowSettings", "SizeX", -1), expected.width());
        QCOMPARE(Profile().GetInt("WindowSettings", "SizeY", -1), expected.height());
    }

    void maximisedFrameIsNotSaved() {
        CMainFrame& frame = NewFrame();
        frame.showMaximized();
        QTRY_VERIFY(frame.isMaximized());
        QVERIFY(frame.close());
        QCOMPARE(Profile().GetInt("WindowSettings", "TopLeftX", -1), -1);
        QCOMPARE(Profile().GetInt("WindowSettings", "SizeX", -1), -1);
    }

    void commandsCarryTheirTextsAndPrompts_data() {
        QTest::addColumn<int>("command");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("prompt");
        QTest::addColumn<QString>("tip");  // on the toolbar; none where the prompt has none
        QTest::newRow("new") << int(CMainFrame::kFileNew) << "&New\tCtrl+N"
                             << "Create a new document"
                             << "New";
        QTest::newRow("open") << int(CMainFrame::kFileOpen) << "&Open...\tCtrl+O"
                              << "Open an existing document"
                              << "Open";
        QTest::newRow("save as") << int(CMainFrame::kFileSaveAs) << "Save &As..."
                                 << "Save the active document with a new name"
                                 << "Save As";
        QTest::newRow("config") << int(CMainFrame::kConfig) << "C&onfig"
                                << "Edit Config"
                                << "";
        QTest::newRow("volume") << int(CMainFrame::kVolumeControl) << "Volume Control"
                                << "Launch the volume control utility"
                                << "";
        QTest::newRow("estimate")
            << int(CMainFrame::kCompletionTime) << "&Calculate Completion Time\tCtrl+T"
            << "Run the estimation tool to get exercise completion time\\Calculate Time to "
               "Complete"
            << "";
        QTest::newRow("call signs") << int(CMainFrame::kCallSigns) << "&US Call Signs"
                                    << "Random US Calls Signs"
                                    << "";
        QTest::newRow("read back") << int(CMainFrame::kReadBack) << "Read &Back\tCtrl+B"
                                   << "Read the Letters back to me for checking my answers"
                                   << "";
        QTest::newRow("generate file") << int(CMainFrame::kGenerateFile) << "&Generate File"
                                       << ""
                                       << "";
        QTest::newRow("about") << int(CMainFrame::kAppAbout) << "&About Tonwerk..."
                               << "Display program information, version number and copyright"
                               << "About";
    }

    void commandsCarryTheirTextsAndPrompts() {
        QFETCH(int, command);
        QFETCH(QString, text);
        QFETCH(QString, prompt);
        QFETCH(QString, tip);
        NewFrame();
        QAction* action = Frame().Action(command);
        QVERIFY(action);
        QCOMPARE(action->text(), text);
        QCOMPARE(action->statusTip(), prompt);

        QWidget* button = Frame().findChild<QToolBar*>("ToolBar")->widgetForAction(action);
        if (!button) {
            return;  // a menu command only
        }
        Frame().show();
        QVERIFY(QTest::qWaitForWindowExposed(&Frame()));
        QToolTip::hideText();
        QTRY_VERIFY(!QToolTip::isVisible());
        const QPoint inside = button->rect().center();
        QHelpEvent hover(QEvent::ToolTip, inside, button->mapToGlobal(inside));
        QApplication::sendEvent(button, &hover);
        QCOMPARE(QToolTip::isVisible() ? QToolTip::text() : QString(), tip);
        QToolTip::hideText();
    }

    void statusBarHasItsPanes() {
        CMainFrame& frame = NewFrame();
        for (const char* name : {"paneMessage", "paneProgress", "paneCAP", "paneNUM", "paneSCRL"}) {
            QVERIFY2(frame.findChild<QWidget*>(QString::fromLatin1(name)), name);
        }
        QCOMPARE(frame.findChild<QLabel*>("paneMessage")->text(), QStringLiteral("Ready"));
        CStatusProgress* first = frame.Progress();
        QVERIFY(first);
        CStatusProgress* second = frame.ResetProgress();
        QVERIFY(second && second == frame.Progress());
        QCOMPARE(frame.findChildren<CStatusProgress*>().size(), 1);
    }

    void lockPanesFollowTheKeyboard_data() {
        QTest::addColumn<bool>("told");  // does the window system tell the state?
        QTest::addColumn<bool>("caps");
        QTest::addColumn<bool>("num");
        QTest::addColumn<bool>("scroll");
        QTest::newRow("caps") << true << true << false << false;
        QTest::newRow("num and scroll") << true << false << true << true;
        QTest::newRow("not told") << false << true << true << true;
    }

    void lockPanesFollowTheKeyboard() {
        QFETCH(bool, told);
        QFETCH(bool, caps);
        QFETCH(bool, num);
        QFETCH(bool, scroll);
        CMainFrame& frame = NewFrame();
        frame.show();
        QVERIFY(QTest::qWaitForWindowExposed(&frame));
        auto lit = [&frame](const char* pane) {
            return frame.findChild<QLabel*>(QString::fromLatin1(pane))->isEnabled();
        };
        // Without a window system that tells (the test's), every pane is grey.
        QVERIFY(!lit("paneCAP") && !lit("paneNUM") && !lit("paneSCRL"));
        CLockIndicators::State state;
        auto* indicators = frame.findChild<CLockIndicators*>();
        indicators->SetReader([&]() -> std::optional<CLockIndicators::State> {
            return told ? std::optional(state) : std::nullopt;
        });
        // The state is read again after a key, as the lock key's own press changes it.
        state = {caps, num, scroll};
        QTest::keyClick(frame.windowHandle(), Qt::Key_CapsLock);
        QCOMPARE(lit("paneCAP"), told && caps);
        QCOMPARE(lit("paneNUM"), told && num);
        QCOMPARE(lit("paneSCRL"), told && scroll);
        state = {};
        QTest::keyClick(frame.windowHandle(), Qt::Key_CapsLock);
        QVERIFY(!lit("paneCAP") && !lit("paneNUM") && !lit("paneSCRL"));
    }

    void statusBarVisibilityIsRemembered() {
        NewFrame().Action(CMainFrame::kViewStatusBar)->trigger();
        QVERIFY(Frame().statusBar()->isHidden());
        NewFrame();
        QVERIFY(Frame().statusBar()->isHidden());
        QVERIFY(!Frame().Action(CMainFrame::kViewStatusBar)->isChecked());
        Frame().Action(CMainFrame::kViewStatusBar)->trigger();
        NewFrame();
        QVERIFY(!Frame().statusBar()->isHidden());
    }

    void titleFollowsTheDocument() {
        CMainFrame& frame = NewFrame();
        Doc().OnFileNew();
        QCOMPARE(frame.windowTitle(), QStringLiteral("Unknown - Tonwerk"));
        Doc().SetTitle(QString());
        QCOMPARE(frame.windowTitle(), QStringLiteral("Untitled - Tonwerk"));
    }

    void droppedFileOpensAndBarStateIsStored() {
        const QString path = TempPath("dropped.code");
        {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(
                QByteArray("\x01"
                           "K"
                           "\x04"
                           " -.-",
                           7));
        }
        CMainFrame& frame = NewFrame();
        frame.show();
        QVERIFY(QTest::qWaitForWindowExposed(&frame));
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path)});
        const QPoint centre = frame.rect().center();
        QDragEnterEvent enter(centre, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&frame, &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(centre), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&frame, &drop);
        QCOMPARE(View().PracticeText(), QStringLiteral("K"));
        QCOMPARE(frame.windowTitle(), QStringLiteral("dropped.code - Tonwerk"));
        QVERIFY(frame.close());
        QVERIFY(!Profile().GetString("TonwerkApp", "BarState", "").empty());
    }

    void aCommandLineDocumentThatCannotBeOpenedEndsStartUp_data() {
        QTest::addColumn<QByteArray>("bytes");  // empty: no file at all
        QTest::addColumn<bool>("opened");
        QTest::newRow("missing") << QByteArray() << false;
        QTest::newRow("not a practice file") << QByteArray(
                                                    "\x05"
                                                    "K")
                                             << false;
        QTest::newRow("practice file") << QByteArray(
                                              "\x01"
                                              "K"
                                              "\x04"
                                              " -.-",
                                              7)
                                       << true;
    }

    void aCommandLineDocumentThatCannotBeOpenedEndsStartUp() {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, opened);
        const QString path = TempPath(QStringLiteral("%1.code").arg(QTest::currentDataTag()));
        if (!bytes.isEmpty()) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(bytes);
        }
        CMainFrame& frame = NewFrame();
        QCOMPARE(CTonwerkApp::OpenCommandLineDocument(frame, path), opened);
        // Start-up ends after the message; an opened file is shown without one.
        QCOMPARE(CModalSeam::Messages().size(), opened ? 0 : 1);
        if (opened) {
            QCOMPARE(View().PracticeText(), QStringLiteral("K"));
        } else {
            QVERIFY(CModalSeam::Messages().constFirst().startsWith(
                        QStringLiteral("Cannot open %1").arg(path)) == bytes.isEmpty());
        }
    }

    void closingAModifiedDocumentAsksAndCancelKeepsTheWindow() {
        CMainFrame& frame = NewFrame();
        frame.show();
        View().SetTexts("A", " .-");
        Doc().SetModifiedFlag(true);
        CModalSeam::QueueButton(QMessageBox::Cancel);
        QVERIFY(!frame.close());
        QVERIFY(frame.isVisible());
        CModalSeam::QueueButton(QMessageBox::No);
        QVERIFY(frame.close());
    }

    void aboutBoxTexts() {
        CAboutDlg about;
        QCOMPARE(about.windowTitle(), QStringLiteral("About Tonwerk"));
        QCOMPARE(about.findChild<QLabel*>("labelVersion")->text(),
                 QStringLiteral("Tonwerk Version 1.0"));
    }

    void postedMessagesArriveOnTheViewsThread() {
        NewFrame();
        QList<unsigned> received;
        connect(&View(), &CTonwerkView::AppMessage, this,
                [&received](unsigned message) { received.append(message); });
        std::thread worker([this] {
            for (unsigned n = 1; n <= 4; ++n) {
                View().NotifyTarget().PostMessage(kAppMessage + n, 1, 1);
            }
        });
        worker.join();
        QVERIFY(received.isEmpty());  // nothing runs inside the poster
        QTRY_COMPARE(received.size(), 4);
        QCOMPARE(received.constFirst(), kAppMessage + 1);
        QCOMPARE(received.constLast(), kAppMessage + 4);
    }
};

QTEST_MAIN(MainFrameTest)
#include "MainFrameTest.moc"
