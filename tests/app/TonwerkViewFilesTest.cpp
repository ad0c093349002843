// SPDX-License-Identifier: GPL-3.0-or-later
// Generate File and the session recording, against the test sound server: generation needs a
// recording input, and what is played at its sink is what the recorder hears.
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QTextEdit>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <thread>

#include "../support/FileSizeLimit.h"
#include "AppTestFixture.h"
#include "app/CWaveFileDlg.h"
#include "audio/CPomelSyncPlay.h"
#include "audio/CWave.h"
#include "res/TonwerkResources.h"
#include "widgets/CImageButton.h"
#include "widgets/CStatusProgress.h"

namespace {

/// Zero crossings per second / 2 over 16-bit mono samples.
double PitchOf(const std::int16_t* samples, std::size_t count, double rate) {
    std::size_t crossings = 0;
    for (std::size_t i = 1; i < count; ++i) {
        if ((samples[i - 1] < 0) != (samples[i] < 0)) {
            ++crossings;
        }
    }
    return static_cast<double>(crossings) / 2.0 / (static_cast<double>(count) / rate);
}

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What the save dialog showed, and how the test answered it.
struct DialogRun {
    int shown = 0;
    QString fileName;
    QString folder;
    bool remember = false;
};

}  // namespace

class TonwerkViewFilesTest : public QObject, public AppTestFixture {
    Q_OBJECT

    CImageButton* RecordButton() { return Control<CImageButton>(1046); }
    QString StatusText() { return Frame().findChild<QLabel*>("paneMessage")->text(); }
    QString Stored(const char* entry) {
        return QString::fromStdString(Profile().GetString("WaveFile", entry, "<none>"));
    }
    int StoredRemember() { return Profile().GetInt("WaveFile", "Remember", -1); }

    void GenerateFile() { Frame().Action(CMainFrame::kGenerateFile)->trigger(); }

    /// Answers the next "Save Wave File As:" with these entries, or cancels it; records what
    /// the dialog showed first into run.
    void AnswerWaveFileDialog(DialogRun& run, bool ok, const QString& fileName = {},
                              const QString& folder = {}, bool remember = false) {
        CWaveFileDlg::SetDriver([&run, ok, fileName, folder, remember](CWaveFileDlg& dialog) {
            ++run.shown;
            run.fileName = dialog.FileNameEdit()->text();
            run.folder = dialog.FolderEdit()->text();
            run.remember = dialog.RememberCheck()->isChecked();
            if (!ok) {
                dialog.reject();
                return dialog.result();
            }
            dialog.FileNameEdit()->setText(fileName);
            dialog.FolderEdit()->setText(folder);
            dialog.RememberCheck()->setChecked(remember);
            dialog.accept();
            return dialog.result();
        });
    }

    /// Records one session with a 1000 Hz tone in it and ends it as a finished run does.
    void RecordToneSession() {
        RecordButton()->click();
        View().StartSessionRecording();
        QCOMPARE(CModalSeam::Messages(), QStringList());
        QVERIFY(!RecordButton()->isEnabled());
        std::thread tone([] {
            CPomelSyncPlay player;
            player.OpenDevice();
            player.PlayTone(1000.0, 0.6);
            player.CloseDevice();
        });
        tone.join();
        View().NotifyTarget().PostMessage(kAppMessage + 1, 1, 1);
        QTRY_COMPARE(StatusText(), QStringLiteral("Session Recording is OFF"));
    }

private slots:
    void init() {
        NewProfile();
        NewFrame();
        CWaveFileDlg::SetDriver({});
        QVERIFY(!TempPath(QString()).contains(QStringLiteral("code")));
    }

    void cleanup() { CWaveFileDlg::SetDriver({}); }

    void generateFileProposesTheDocumentsNameWithWavForCode_data() {
        QTest::addColumn<QString>("document");
        QTest::addColumn<QString>("proposed");
        QTest::newRow("untitled") << QString() << QString();
        QTest::newRow("lesson") << "lesson.code"
                                << "lesson.wav";
        QTest::newRow("folder codes") << "codes/x.code"
                                      << "wavs/x.wav";
    }
    void generateFileProposesTheDocumentsNameWithWavForCode() {
        QFETCH(QString, document);
        QFETCH(QString, proposed);
        if (!document.isEmpty()) {
            QVERIFY(QDir(TempPath(QString())).mkpath(QFileInfo(TempPath(document)).path()));
            CModalSeam::QueueFileName(TempPath(document));
            Doc().OnFileSaveAs();
            QCOMPARE(Doc().PathName(), TempPath(document));
            CModalSeam::Reset();
        }
        GenerateFile();
        QCOMPARE(CModalSeam::OfferedNames(),
                 QStringList{proposed.isEmpty() ? QString() : TempPath(proposed)});
    }

    void cancellingWritesNothingButResetsTheProgressBar() {
        const QString text = Control<QTextEdit>(1002)->toPlainText();
        CStatusProgress* before = Frame().Progress();
        before->SetRange(0, 3);
        QSignalSpy finished(&View(), &CTonwerkView::AppMessage);
        GenerateFile();  // nothing queued: the save dialog is cancelled
        CStatusProgress* progress = Frame().Progress();
        QCOMPARE(progress->Step(), 1);
        QCOMPARE(progress->Lower(), 0);
        QCOMPARE(progress->Upper(), static_cast<int>(text.size()));
        QCOMPARE(progress->Pos(), 0);
        QCOMPARE(progress->BarImage(), QString::fromLatin1(tonwerk::res::kBarSession));
        QCOMPARE(QDir(TempPath(QString())).entryList({"*.wav"}, QDir::Files), QStringList());
        QTest::qWait(50);
        QCOMPARE(finished.count(), 0);
    }

    void generatedFileMatchesTheCommandLineTool() {
        const QString text = QStringLiteral("Paris cq de dl1abc 73?");
        Control<QTextEdit>(1002)->setPlainText(text);
        Control<QSlider>(1003)->setValue(18);
        Control<QLineEdit>(1050)->setText(QStringLiteral("3"));
        QSignalSpy finished(&View(), &CTonwerkView::AppMessage);
        const QString viewFile = TempPath(QStringLiteral("out/view.wav"));
        QVERIFY(QDir(TempPath(QString())).mkpath(QStringLiteral("out")));
        CModalSeam::QueueFileName(viewFile);
        GenerateFile();
        const QByteArray written = ReadAll(viewFile);
        QVERIFY(written.size() > 46);
        // Every character stepped the bar.
        QCOMPARE(Frame().Progress()->Pos(), static_cast<int>(text.size()));
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(finished.at(0).at(0).toUInt(), kAppMessage + 1);

        const QString cliFile = TempPath(QStringLiteral("cli.wav"));
        QProcess cli;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), TempPath(QStringLiteral("config")));
        cli.setProcessEnvironment(env);
        cli.start(qEnvironmentVariable("TONWERK_BINARY_DIR") + QStringLiteral("/cli/tonwerk-cli"),
                  {"wav", "--wpm", "18", "--farnsworth", "3", "-o", cliFile, text});
        QVERIFY(cli.waitForFinished(60000));
        QCOMPARE(cli.exitCode(), 0);
        QCOMPARE(written, ReadAll(cliFile));
    }

    // Generate File that cannot write says why and leaves no file claiming to be a WAV.
    void generateFileThatFailsSaysWhy_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("fullDisk");
        QTest::addColumn<QString>("reason");
        QTest::newRow("folder is a file") << "file/inside.wav" << false << "cannot create";
        QTest::newRow("full disk") << "full.wav" << true << QString::fromLatin1(strerror(EFBIG));
    }

    void generateFileThatFailsSaysWhy() {
        QFETCH(QString, name);
        QFETCH(bool, fullDisk);
        QFETCH(QString, reason);
        QFile file(TempPath(QStringLiteral("file")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        Control<QTextEdit>(1002)->setPlainText(QString(200, QLatin1Char('0')));
        CModalSeam::QueueFileName(TempPath(name));
        {
            const FileSizeLimit full(fullDisk ? 4096 : RLIM_INFINITY);
            GenerateFile();
        }
        QCOMPARE(CModalSeam::Messages().size(), 1);
        QVERIFY2(CModalSeam::Messages().constFirst().contains(reason),
                 qPrintable(CModalSeam::Messages().constFirst()));
        QVERIFY(!QFile::exists(TempPath(name)));
    }

    void recordedSessionIsSavedAndRemembered() {
        DialogRun run;
        const QString folder = TempPath(QStringLiteral("recordings"));
        QVERIFY(QDir().mkpath(folder));
        AnswerWaveFileDialog(run, true, QStringLiteral("session.wav"), folder, true);
        RecordToneSession();
        if (QTest::currentTestFailed()) {
            return;
        }
        QCOMPARE(run.shown, 1);
        // Nothing remembered yet: the defaults.
        QCOMPARE(run.fileName, QStringLiteral("Test01.wav"));
        QCOMPARE(run.folder, QDir::homePath());
        QVERIFY(!run.remember);
        QVERIFY(RecordButton()->isEnabled());
        QCOMPARE(RecordButton()->ImagePath(), QString::fromLatin1(tonwerk::res::kButtonRecordOff));
        QCOMPARE(Stored("Name"), QStringLiteral("session.wav"));
        QCOMPARE(Stored("Path"), folder);
        QCOMPARE(StoredRemember(), 1);

        CWave saved;
        QVERIFY(saved.Load((folder + QStringLiteral("/session.wav")).toStdString()));
        QCOMPARE(saved.GetFormat().samplesPerSec, 44100u);
        QCOMPARE(saved.GetFormat().bitsPerSample, std::uint16_t{16});
        QCOMPARE(saved.GetFormat().channels, std::uint16_t{1});
        const auto* pcm = reinterpret_cast<const std::int16_t*>(saved.GetBuffer());
        const std::uint32_t samples = saved.GetNumSamples();
        std::uint32_t first = 0;
        while (first < samples && std::abs(pcm[first]) < 3000) {
            ++first;
        }
        QVERIFY2(first + 22050 < samples, "no tone recorded");
        QVERIFY(std::abs(PitchOf(pcm + first + 1000, 20000, 44100.0) - 1000.0) < 10.0);
    }

    void untickedRememberStoresNothing() {
        const QString remembered = TempPath(QStringLiteral("remembered"));
        const QString other = TempPath(QStringLiteral("other"));
        QVERIFY(QDir().mkpath(remembered));
        QVERIFY(QDir().mkpath(other));
        Profile().WriteString("WaveFile", "Name", "old.wav");
        Profile().WriteString("WaveFile", "Path", remembered.toStdString());
        Profile().WriteInt("WaveFile", "Remember", 1);

        DialogRun run;
        AnswerWaveFileDialog(run, true, QStringLiteral("new.wav"), other, false);
        RecordToneSession();
        if (QTest::currentTestFailed()) {
            return;
        }
        QCOMPARE(run.shown, 1);
        QCOMPARE(run.fileName, QStringLiteral("old.wav"));
        QCOMPARE(run.folder, remembered);
        QVERIFY(run.remember);
        QVERIFY(QFile::exists(other + QStringLiteral("/new.wav")));
        QCOMPARE(Stored("Name"), QStringLiteral("old.wav"));
        QCOMPARE(Stored("Path"), remembered);
        QCOMPARE(StoredRemember(), 1);

        // Remember does not skip the dialog; it comes back ticked, and Cancel saves nothing.
        DialogRun again;
        AnswerWaveFileDialog(again, false);
        RecordButton()->click();
        View().StartSessionRecording();
        View().NotifyTarget().PostMessage(kAppMessage + 1, 1, 1);
        QTRY_COMPARE(StatusText(), QStringLiteral("Session Recording is OFF"));
        QCOMPARE(again.shown, 1);
        QVERIFY(again.remember);
        QVERIFY(RecordButton()->isEnabled());
        QCOMPARE(QDir(remembered).entryList(QDir::Files), QStringList());
    }

    // A recorded session stopped by hand ends once: one save dialog, the whole recording in the
    // file, and the toggle off so that the next Listen does not record unasked.
    void recordedSessionStoppedByHandIsSavedOnce() {
        DialogRun run;
        const QString folder = TempPath(QStringLiteral("stopped"));
        QVERIFY(QDir().mkpath(folder));
        AnswerWaveFileDialog(run, true, QStringLiteral("stopped.wav"), folder);
        Control<QTextEdit>(1002)->setPlainText(QString(20, QLatin1Char('E')));
        Control<QSlider>(1003)->setValue(12);
        RecordButton()->click();
        auto* listen = Control<CImageButton>(1005);
        listen->click();
        QTest::qWait(1500);
        listen->click();
        QCOMPARE(run.shown, 1);
        QTest::qWait(800);  // longer than the stopped run's closing gaps
        QCOMPARE(run.shown, 1);
        QVERIFY(!RecordButton()->isChecked());
        QVERIFY(RecordButton()->isEnabled());
        CWave saved;
        QVERIFY(saved.Load((folder + QStringLiteral("/stopped.wav")).toStdString()));
        QVERIFY2(saved.GetNumSamples() > 44100, qPrintable(QString::number(saved.GetNumSamples())));
    }

    // A folder that cannot be written says so and offers the recording again instead of
    // dropping it; the second answer saves it.
    void unwritableFolderOffersTheRecordingAgain() {
        const QString missing = TempPath(QStringLiteral("gone/deeper"));
        const QString folder = TempPath(QStringLiteral("kept"));
        QVERIFY(QDir().mkpath(folder));
        int shown = 0;
        CWaveFileDlg::SetDriver([&](CWaveFileDlg& dialog) {
            dialog.FileNameEdit()->setText(QStringLiteral("take.wav"));
            dialog.FolderEdit()->setText(++shown == 1 ? missing : folder);
            dialog.accept();
            return dialog.result();
        });
        RecordToneSession();
        if (QTest::currentTestFailed()) {
            return;
        }
        QCOMPARE(shown, 2);
        QCOMPARE(CModalSeam::Messages().size(), 1);
        QVERIFY(CModalSeam::Messages().constFirst().contains(missing));
        CWave saved;
        QVERIFY(saved.Load((folder + QStringLiteral("/take.wav")).toStdString()));
        QVERIFY(saved.GetNumSamples() > 44100 / 2);
    }

    void browsingStoresThePathEvenWhenCancelled() {
        const QString start = TempPath(QStringLiteral("start"));
        const QString browsed = TempPath(QStringLiteral("browsed"));
        Profile().WriteString("WaveFile", "Path", start.toStdString());
        QString afterCancelledBrowser;
        QString folderShown;
        QString nameShown;
        CWaveFileDlg::SetDriver([&](CWaveFileDlg& dialog) {
            dialog.FileNameEdit()->setText(QStringLiteral("edited.wav"));
            dialog.BrowseButton()->click();  // nothing queued: the browser is cancelled
            afterCancelledBrowser = dialog.FolderEdit()->text();
            CModalSeam::QueueFileName(browsed);
            dialog.BrowseButton()->click();
            folderShown = dialog.FolderEdit()->text();
            nameShown = dialog.FileNameEdit()->text();
            dialog.reject();
            return dialog.result();
        });
        RecordButton()->click();
        View().StartSessionRecording();
        View().FinishSessionRecording();
        QCOMPARE(CModalSeam::OfferedNames(), (QStringList{start, start}));
        QCOMPARE(afterCancelledBrowser, start);
        QCOMPARE(folderShown, browsed);
        // Showing the browsed folder shows every member again, the unchanged file name too.
        QCOMPARE(nameShown, QStringLiteral("Test01.wav"));
        QCOMPARE(Stored("Path"), browsed);
        QCOMPARE(Stored("Name"), QStringLiteral("<none>"));
        QCOMPARE(StoredRemember(), -1);
        QVERIFY(RecordButton()->isEnabled());
    }

    void toggleShowsItsStateAndAFinishedRunEndsIt() {
        DialogRun run;
        AnswerWaveFileDialog(run, false);
        RecordButton()->click();
        QCOMPARE(StatusText(), QStringLiteral("Session Recording is ON"));
        QCOMPARE(RecordButton()->ImagePath(), QString::fromLatin1(tonwerk::res::kButtonRecordOn));
        QCOMPARE(RecordButton()->iconSize(), QSize(40, 32));
        QVERIFY(RecordButton()->isChecked());

        // A generated file ends with the same message as a session: with no recorder started
        // there is nothing to save, and the toggle goes off.
        CModalSeam::QueueFileName(TempPath(QStringLiteral("generated.wav")));
        GenerateFile();
        QTRY_COMPARE(StatusText(), QStringLiteral("Session Recording is OFF"));
        QVERIFY(QFile::exists(TempPath(QStringLiteral("generated.wav"))));
        QCOMPARE(run.shown, 0);
        QCOMPARE(RecordButton()->ImagePath(), QString::fromLatin1(tonwerk::res::kButtonRecordOff));
        QCOMPARE(RecordButton()->iconSize(), QSize(32, 32));
        QVERIFY(!RecordButton()->isChecked());
        QVERIFY(RecordButton()->isEnabled());

        // Off, a finished run leaves the toggle alone and the status bar says "Ready".
        View().NotifyTarget().PostMessage(kAppMessage + 1, 1, 1);
        QTRY_COMPARE(StatusText(), QStringLiteral("Ready"));
        QVERIFY(!RecordButton()->isChecked());
        View().FinishSessionRecording();
        QCOMPARE(run.shown, 0);
        QVERIFY(RecordButton()->isEnabled());
    }

    // Generate File and the recording take the type from the extension or the type box; the
    // quality chosen is remembered for both.
    void soundFileTypesAndTheRememberedQuality() {
        Control<QTextEdit>(1002)->setPlainText(QStringLiteral("PARIS"));
        const QString folder = TempPath(QStringLiteral("types"));
        QVERIFY(QDir().mkpath(folder));
        QSignalSpy finished(&View(), &CTonwerkView::AppMessage);
        CModalSeam::QueueFileName(folder + QStringLiteral("/lesson.ogg"));
        GenerateFile();
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(ReadAll(folder + QStringLiteral("/lesson.ogg")).left(4), QByteArray("OggS"));
        CModalSeam::QueueFileName(folder + QStringLiteral("/lesson.txt"));
        GenerateFile();
        QCOMPARE(CModalSeam::Messages().size(), 1);
        QVERIFY(CModalSeam::Messages().constFirst().contains(QStringLiteral("lesson.txt")));
        CModalSeam::Reset();

        // The type box gives a bare name its extension; the quality box follows the type.
        Profile().WriteInt("SoundFile", "Mp3BitRate", 48);
        int shownBitRate = 0;
        CWaveFileDlg::SetDriver([&](CWaveFileDlg& dialog) {
            dialog.TypeCombo()->setCurrentIndex(1);
            emit dialog.TypeCombo()->activated(1);
            shownBitRate = dialog.QualitySpin()->value();
            dialog.FileNameEdit()->setText(QStringLiteral("session"));
            dialog.FolderEdit()->setText(folder);
            dialog.TypeCombo()->setCurrentIndex(2);
            emit dialog.TypeCombo()->activated(2);
            dialog.QualitySpin()->setValue(3);
            dialog.accept();
            return dialog.result();
        });
        RecordToneSession();
        QCOMPARE(shownBitRate, 48);
        QCOMPARE(ReadAll(folder + QStringLiteral("/session.ogg")).left(4), QByteArray("OggS"));
        QCOMPARE(Profile().GetInt("SoundFile", "Quality", -1), 3);
        QCOMPARE(QDir(folder).entryList(QDir::Files), (QStringList{"lesson.ogg", "session.ogg"}));
    }

    void dialogTexts() {
        CWaveFileDlg dialog(Profile());
        dialog.m_fileName = QStringLiteral("a.wav");
        dialog.m_folder = QStringLiteral("/tmp");
        dialog.m_remember = 1;
        dialog.OnInitDialog();
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Save Wave File As:"));
        QStringList labels;
        for (const QLabel* label : dialog.findChildren<QLabel*>()) {
            labels.append(label->text());
        }
        QCOMPARE(labels, (QStringList{"File Name:", "Folder Name:", "File Type:", "Quality:",
                                      "Output Audio Format is: PCM 44.100 kHz, 16 Bit, Mono"}));
        QCOMPARE(dialog.RememberCheck()->text(),
                 QStringLiteral("Remember these Settings and don't ask again please"));
        QCOMPARE(dialog.BrowseButton()->text(), QStringLiteral("Browse for Folder Location"));
        QCOMPARE(dialog.BrowseButton()->ImagePath(),
                 QString::fromLatin1(tonwerk::res::kButtonBrowse));
        QCOMPARE(dialog.BrowseButton()->iconSize(), QSize(16, 16));
        QCOMPARE(dialog.FileNameEdit()->text(), QStringLiteral("a.wav"));
        QCOMPARE(dialog.FolderEdit()->text(), QStringLiteral("/tmp"));
        QVERIFY(dialog.RememberCheck()->isChecked());
    }
};

QTEST_MAIN(TonwerkViewFilesTest)
#include "TonwerkViewFilesTest.moc"
