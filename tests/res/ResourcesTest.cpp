// SPDX-License-Identifier: GPL-3.0-or-later
#include "res/TonwerkResources.h"

#include "audio/CWave.h"
#include "model/SpeechClips.h"

#include <QApplication>
#include <QDirIterator>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QSet>
#include <QSvgRenderer>
#include <QTest>
#include <QXmlStreamReader>

namespace {

QString Path(std::string_view path) {
    return QString::fromLatin1(path.data(), static_cast<qsizetype>(path.size()));
}

// Counts pixels that are not fully transparent.
int InkOf(const QImage& image) {
    int ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 0) {
                ++ink;
            }
        }
    }
    return ink;
}

}  // namespace

class ResourcesTest : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void everyPathRenders_data();
    void everyPathRenders();
    void listedPathsMatchTheResources();
    void pathsAreDistinct();
    void desktopEntryAndMimeType();
    void spokenLettersForEveryVoice();
    void contactSheet();
};

void ResourcesTest::initTestCase() {
    tonwerk::res::InitResources();
    tonwerk::res::InitResources();  // twice is harmless
}

void ResourcesTest::everyPathRenders_data() {
    QTest::addColumn<QString>("path");
    for (std::string_view path : tonwerk::res::kAllPaths) {
        QTest::newRow(path.data()) << Path(path);
    }
}

void ResourcesTest::everyPathRenders() {
    QFETCH(QString, path);
    QVERIFY(QFile::exists(path));
    QSvgRenderer renderer(path);
    QVERIFY2(renderer.isValid(), "not a valid SVG");
    const QIcon icon(path);
    QVERIFY(!icon.isNull());
    const QPixmap small = icon.pixmap(QSize(16, 16));
    const QPixmap large = icon.pixmap(QSize(64, 64));
    QVERIFY(!small.isNull());
    QVERIFY(!large.isNull());
    QVERIFY(!QPixmap(path).isNull());
    // Something is actually drawn, not an empty canvas.
    const QImage image = large.toImage().convertToFormat(QImage::Format_ARGB32);
    QVERIFY2(InkOf(image) > image.width() * image.height() / 10, qPrintable(path));
}

void ResourcesTest::listedPathsMatchTheResources() {
    QSet<QString> listed;
    for (std::string_view path : tonwerk::res::kAllPaths) {
        listed.insert(Path(path));
    }
    QSet<QString> built;
    QDirIterator it(QStringLiteral(":/tonwerk"), QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        built.insert(it.next());
    }
    QCOMPARE(built, listed);
}

void ResourcesTest::pathsAreDistinct() {
    QSet<QString> seen;
    for (std::string_view path : tonwerk::res::kAllPaths) {
        QVERIFY2(!seen.contains(Path(path)), path.data());
        seen.insert(Path(path));
    }
    QCOMPARE(seen.size(), static_cast<qsizetype>(tonwerk::res::kAllPaths.size()));
}

void ResourcesTest::desktopEntryAndMimeType() {
    const QString dir = qEnvironmentVariable("TONWERK_RES_DIR");
    QVERIFY(!dir.isEmpty());
    QFile desktop(dir + QStringLiteral("/tonwerk.desktop"));
    QVERIFY(desktop.open(QIODevice::ReadOnly | QIODevice::Text));
    const QString entry = QString::fromUtf8(desktop.readAll());
    QVERIFY(entry.startsWith(QStringLiteral("[Desktop Entry]\n")));
    QVERIFY(entry.contains(QStringLiteral("\nExec=tonwerk %f\n")));
    QVERIFY(entry.contains(QStringLiteral("\nIcon=tonwerk\n")));
    QVERIFY(entry.contains(QStringLiteral("\nMimeType=application/x-tonwerk-code;\n")));

    QFile mime(dir + QStringLiteral("/tonwerk-mime.xml"));
    QVERIFY(mime.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&mime);
    QString type;
    QString glob;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement) {
            if (xml.name() == QLatin1String("mime-type")) {
                type = xml.attributes().value(QLatin1String("type")).toString();
            } else if (xml.name() == QLatin1String("glob")) {
                glob = xml.attributes().value(QLatin1String("pattern")).toString();
            }
        }
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    QCOMPARE(type, QStringLiteral("application/x-tonwerk-code"));
    QCOMPARE(glob, QStringLiteral("*.code"));
}

void ResourcesTest::spokenLettersForEveryVoice() {
    QSet<QString> expected;
    QSet<QByteArray> recordings;
    for (int actor = 0; actor < kVoiceCount; ++actor) {
        for (char letter = 'A'; letter <= 'Z'; ++letter) {
            const QString path = QString::fromLatin1(tonwerk::res::kSpeechClipPrefix) +
                                 QString::number(SpeechClipId(actor, letter));
            expected.insert(path);
            QFile file(path);
            QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(path));
            const QByteArray image = file.readAll();
            CWave wave;
            QVERIFY2(wave.LoadFromMemory(image.constData(), static_cast<std::size_t>(image.size())),
                     qPrintable(path));
            const WaveFormat& format = wave.GetFormat();
            QCOMPARE(format.formatTag, kWaveFormatPcm);
            QCOMPARE(format.channels, 1);
            QCOMPARE(format.bitsPerSample, 16);
            const double seconds =
                static_cast<double>(wave.GetBufferLength()) / format.avgBytesPerSec;
            QVERIFY2(seconds > 0.15 && seconds < 1.0, qPrintable(path));
            // Trimmed: the letter starts at once, without a lead of silence.
            const auto* samples = reinterpret_cast<const std::int16_t*>(wave.GetBuffer());
            const std::size_t lead = format.samplesPerSec / 50;
            int peak = 0;
            for (std::size_t i = 0; i < lead; ++i) {
                peak = std::max(peak, std::abs(static_cast<int>(samples[i])));
            }
            QVERIFY2(peak > 300, qPrintable(path));
            recordings.insert(QByteArray(wave.GetBuffer(), wave.GetBufferLength()));
        }
    }
    // Every letter in every voice is a recording of its own.
    QCOMPARE(recordings.size(), 26 * kVoiceCount);
    QSet<QString> built;
    QDirIterator it(QString::fromLatin1(tonwerk::res::kSpeechClipPrefix).chopped(1), QDir::Files);
    while (it.hasNext()) {
        built.insert(it.next());
    }
    QCOMPARE(built, expected);
}

void ResourcesTest::contactSheet() {
    // Every image on one sheet in the build tree, at its use size and four times larger.
    constexpr int kCell = 72;
    const int count = static_cast<int>(tonwerk::res::kAllPaths.size());
    QImage sheet(kCell * 9, kCell * ((count + 8) / 9), QImage::Format_RGB32);
    sheet.fill(QColor(236, 236, 236));
    QPainter painter(&sheet);
    for (int i = 0; i < count; ++i) {
        const QIcon icon(Path(tonwerk::res::kAllPaths[i]));
        const QPoint origin((i % 9) * kCell, (i / 9) * kCell);
        painter.drawPixmap(origin + QPoint(2, 2), icon.pixmap(QSize(16, 16)));
        painter.drawPixmap(origin + QPoint(20, 4), icon.pixmap(QSize(48, 48)));
    }
    painter.end();
    QVERIFY(sheet.save(qEnvironmentVariable("TONWERK_BINARY_DIR", ".") +
                       QStringLiteral("/res-contact-sheet.png")));
}

QTEST_MAIN(ResourcesTest)
#include "ResourcesTest.moc"
