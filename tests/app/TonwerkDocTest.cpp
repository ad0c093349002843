// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CTonwerkDoc.h"

#include <sys/stat.h>
#include <QElapsedTimer>
#include <QFile>
#include <QTextEdit>
#include <cerrno>
#include <cstring>

#include "../support/FileSizeLimit.h"
#include "AppTestFixture.h"
#include "model/CCodeFile.h"

namespace {

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void WriteAll(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

}  // namespace

class TonwerkDocTest : public QObject, public AppTestFixture {
    Q_OBJECT

    QTextEdit* Practice() { return Control<QTextEdit>(1002); }
    QTextEdit* Code() { return Control<QTextEdit>(1001); }

private slots:
    void init() {
        NewProfile();
        NewFrame();
    }

    void editsMarkTheDocumentModified() {
        QVERIFY(!Doc().IsModified());
        Practice()->setPlainText("CQ");
        QVERIFY(Doc().IsModified());
        Doc().SetModifiedFlag(false);
        Code()->setPlainText(" -.-. --.-");
        QVERIFY(Doc().IsModified());
    }

    void newOnAModifiedDocumentAndCancelKeepsBothTexts() {
        Practice()->setPlainText("CQ DX");
        Code()->setPlainText(" -.-. --.- / -.. -..-");
        CModalSeam::QueueButton(QMessageBox::Cancel);
        Doc().OnFileNew();
        QCOMPARE(CModalSeam::Messages(), QStringList{QStringLiteral("Save Changes?")});
        QCOMPARE(Practice()->toPlainText(), QStringLiteral("CQ DX"));
        QCOMPARE(Code()->toPlainText(), QStringLiteral(" -.-. --.- / -.. -..-"));
        QVERIFY(Doc().IsModified());
    }

    void newWithNoEmptiesTheTextsAndTitlesUnknown() {
        Practice()->setPlainText("CQ DX");
        CModalSeam::QueueButton(QMessageBox::No);
        Doc().OnFileNew();
        QVERIFY(Practice()->toPlainText().isEmpty());
        QVERIFY(Code()->toPlainText().isEmpty());
        QCOMPARE(Doc().Title(), QStringLiteral("Unknown"));
        QCOMPARE(Frame().windowTitle(), QStringLiteral("Unknown - Tonwerk"));
        QVERIFY(!Doc().IsModified());
        QVERIFY(Doc().PathName().isEmpty());
    }

    void newWithYesSavesFirst() {
        const QString path = TempPath("first.code");
        Practice()->setPlainText("E");
        Code()->setPlainText(" .");
        CModalSeam::QueueButton(QMessageBox::Yes);
        CModalSeam::QueueFileName(path);
        Doc().OnFileNew();
        QCOMPARE(ReadAll(path), QByteArray("\x01"
                                           "E"
                                           "\x02"
                                           " .",
                                           5));
        QVERIFY(Practice()->toPlainText().isEmpty());
    }

    void saveOfAnUntitledDocumentGoesThroughSaveAs() {
        const QString path = TempPath("lesson.code");
        Practice()->setPlainText("AB");
        Code()->setPlainText(" .- -...");
        CModalSeam::QueueFileName(path);
        Doc().OnFileSave();
        QCOMPARE(ReadAll(path), QByteArray("\x02"
                                           "AB"
                                           "\x08"
                                           " .- -...",
                                           12));
        QCOMPARE(Doc().PathName(), path);
        QCOMPARE(Doc().Title(), QStringLiteral("lesson.code"));
        QCOMPARE(Frame().windowTitle(), QStringLiteral("lesson.code - Tonwerk"));
        QVERIFY(!Doc().IsModified());

        // Now titled: Save writes to the same path without asking.
        Practice()->setPlainText("ABC");
        Doc().OnFileSave();
        QCOMPARE(ReadAll(path).left(4), QByteArray("\x03"
                                                   "ABC"));
    }

    void lengthPrefixesOnDisk_data() {
        QTest::addColumn<int>("length");
        QTest::addColumn<QByteArray>("prefix");
        QTest::newRow("254") << 254 << QByteArray("\xFE", 1);
        QTest::newRow("255") << 255 << QByteArray("\xFF\xFF\x00", 3);
        QTest::newRow("empty") << 0 << QByteArray("\x00", 1);
    }

    void lengthPrefixesOnDisk() {
        QFETCH(int, length);
        QFETCH(QByteArray, prefix);
        const QString path = TempPath("long.code");
        Practice()->setPlainText(QString(length, QLatin1Char('E')));
        Code()->clear();
        CModalSeam::QueueFileName(path);
        Doc().OnFileSaveAs();
        const QByteArray bytes = ReadAll(path);
        QCOMPARE(bytes.size(), prefix.size() + length + 1);
        QCOMPARE(bytes.left(prefix.size()), prefix);
        QCOMPARE(bytes.right(1), QByteArray("\x00", 1));
    }

    void openLoadsBothTexts() {
        const QString path = TempPath("saved.code");
        WriteAll(path, QByteArray("\x03"
                                  "SOS"
                                  "\x0C"
                                  " ... --- ...",
                                  17));
        CModalSeam::QueueFileName(path);
        Doc().OnFileOpen();
        QCOMPARE(Practice()->toPlainText(), QStringLiteral("SOS"));
        QCOMPARE(Code()->toPlainText(), QStringLiteral(" ... --- ..."));
        QCOMPARE(Doc().Title(), QStringLiteral("saved.code"));
        QVERIFY(!Doc().IsModified());
        QVERIFY(CModalSeam::Messages().isEmpty());
    }

    void openOfAMissingFileDoesNothing() {
        Practice()->setPlainText("KEEP");
        Doc().SetModifiedFlag(false);
        CModalSeam::QueueFileName(TempPath("missing.code"));
        Doc().OnFileOpen();
        QCOMPARE(Practice()->toPlainText(), QStringLiteral("KEEP"));
        QVERIFY(Doc().Title().isEmpty());
        QVERIFY(CModalSeam::Messages().isEmpty());
    }

    void openOfABrokenFileKeepsTheDocument_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty file") << QByteArray();
        QTest::newRow("length beyond the end") << QByteArray(
            "\x05"
            "AB",
            3);
        QTest::newRow("second string missing") << QByteArray(
            "\x02"
            "AB",
            3);
        QTest::newRow("cut 16-bit length") << QByteArray("\xFF\x10", 2);
    }

    void openOfABrokenFileKeepsTheDocument() {
        QFETCH(QByteArray, bytes);
        const QString path = TempPath("broken.code");
        WriteAll(path, bytes);
        Practice()->setPlainText("KEEP");
        Code()->setPlainText(" -.- . . .--.");
        Doc().SetModifiedFlag(false);
        CModalSeam::QueueFileName(path);
        Doc().OnFileOpen();
        QCOMPARE(CModalSeam::Messages().size(), 1);
        QVERIFY(CModalSeam::Messages().constFirst().contains(QStringLiteral("broken.code")));
        QCOMPARE(Practice()->toPlainText(), QStringLiteral("KEEP"));
        QCOMPARE(Code()->toPlainText(), QStringLiteral(" -.- . . .--."));
        QVERIFY(Doc().Title().isEmpty());
        QVERIFY(Doc().PathName().isEmpty());
    }

    // What is not a regular file of a sane size is refused at once, without reading it: a FIFO
    // nobody writes to would block for ever, a device would never end.
    void openOfSomethingThatIsNoDocumentIsRefusedAtOnce_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("said");
        QTest::newRow("fifo") << TempPath("pipe.code") << "not a file";
        QTest::newRow("device") << "/dev/zero"
                                << "not a file";
        QTest::newRow("folder") << TempPath(QString()) << "not a file";
        QTest::newRow("over 16 MB") << TempPath("huge.code") << "more than 16 MB";
    }

    void openOfSomethingThatIsNoDocumentIsRefusedAtOnce() {
        QFETCH(QString, path);
        QFETCH(QString, said);
        QFile::remove(TempPath("pipe.code"));
        QCOMPARE(mkfifo(QFile::encodeName(TempPath("pipe.code")).constData(), 0600), 0);
        QFile huge(TempPath("huge.code"));
        QVERIFY(huge.open(QIODevice::WriteOnly));
        QVERIFY(huge.resize(CTonwerkDoc::kMaxFileBytes + 1));
        huge.close();
        Practice()->setPlainText("KEEP");
        Doc().SetModifiedFlag(false);
        QVERIFY(!Doc().OpenFile(path));
        QCOMPARE(CModalSeam::Messages().size(), 1);
        QVERIFY2(CModalSeam::Messages().constFirst().contains(said),
                 qPrintable(CModalSeam::Messages().constFirst()));
        QCOMPARE(Practice()->toPlainText(), QStringLiteral("KEEP"));
    }

    // A practice line of 1 MB without a blank shows at once (Qt took minutes to lay it out
    // wrapped at word boundaries); a text with words still wraps between them.
    void aLineWithoutBlanksShowsAtOnce() {
        CodeDocument document;
        document.practiceText.assign(std::size_t{1} << 20, 'E');
        const QString path = TempPath("line.code");
        WriteAll(path, QByteArray::fromStdString(CCodeFile::Write(document)));
        Frame().show();
        QElapsedTimer shown;
        shown.start();
        QVERIFY(Doc().OpenFile(path));
        Frame().grab();
        QVERIFY2(shown.elapsed() < 30000, qPrintable(QString::number(shown.elapsed())));
        QCOMPARE(Practice()->wordWrapMode(), QTextOption::WrapAnywhere);
        View().SetTexts(QStringLiteral("PARIS PARIS"), QString());
        QCOMPARE(Practice()->wordWrapMode(), QTextOption::WrapAtWordBoundaryOrAnywhere);
    }

    void aFailedSaveKeepsTheOldFile() {
        const QString path = TempPath("kept.code");
        Practice()->setPlainText("OLD");
        Code()->clear();
        CModalSeam::QueueFileName(path);
        Doc().OnFileSave();
        const QByteArray old = ReadAll(path);
        QCOMPARE(old, QByteArray("\x03"
                                 "OLD"
                                 "\x00",
                                 5));

        Practice()->setPlainText(QString(400, QLatin1Char('N')));
        {
            const FileSizeLimit full(64);
            Doc().OnFileSave();
        }
        QCOMPARE(ReadAll(path), old);
        QCOMPARE(CModalSeam::Messages().size(), 1);
        QVERIFY(CModalSeam::Messages().constFirst().startsWith(QStringLiteral("Cannot save")));
        QVERIFY(Doc().IsModified());
    }

    // "Save Changes?" answered Yes on closing: a save that fails keeps the window and the edits,
    // and the message gives the real reason.
    void closingWithAFailedSaveKeepsTheWindow_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("fullDisk");
        QTest::addColumn<QString>("reason");
        QTest::newRow("full disk") << "full.code" << true << QString::fromLatin1(strerror(EFBIG));
        // A folder that is a regular file fails even for root, as a read-only one would.
        QTest::newRow("folder cannot hold it") << "file/inside.code" << false << QString();
        QTest::newRow("save as cancelled") << QString() << false << QString();
    }

    void closingWithAFailedSaveKeepsTheWindow() {
        QFETCH(QString, name);
        QFETCH(bool, fullDisk);
        QFETCH(QString, reason);
        WriteAll(TempPath("file"), "x");
        Practice()->setPlainText(QString(400, QLatin1Char('E')));
        QVERIFY(Doc().IsModified());
        CModalSeam::QueueButton(QMessageBox::Yes);
        if (!name.isEmpty()) {
            CModalSeam::QueueFileName(TempPath(name));
        }
        bool closed = true;
        {
            const FileSizeLimit full(fullDisk ? 64 : RLIM_INFINITY);
            closed = Frame().close();
        }
        QVERIFY(!closed);
        QVERIFY(Doc().IsModified());
        QCOMPARE(Practice()->toPlainText(), QString(400, QLatin1Char('E')));
        QCOMPARE(CModalSeam::Messages().size(), name.isEmpty() ? 1 : 2);
        if (!name.isEmpty()) {
            QVERIFY(CModalSeam::Messages().at(1).startsWith(QStringLiteral("Cannot save")));
            QVERIFY2(CModalSeam::Messages().at(1).endsWith(reason),
                     qPrintable(CModalSeam::Messages().at(1)));
        }
    }

    void saveAsCancelledWritesNothing() {
        Practice()->setPlainText("X");
        Doc().OnFileSaveAs();  // no file name queued: the dialog was cancelled
        QVERIFY(Doc().PathName().isEmpty());
        QVERIFY(Doc().IsModified());
    }

    void textToCodeReadsDoubleSpaceOnEveryCall() {
        QCOMPARE(Doc().TextToCode("E"), std::string(" ."));
        Profile().WriteInt("UserSettings", "DblSpace", 1);
        QCOMPARE(Doc().TextToCode("E"), std::string(" . "));
    }
};

QTEST_MAIN(TonwerkDocTest)
#include "TonwerkDocTest.moc"
