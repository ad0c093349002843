// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CClockDisplay.h"
#include "widgets/CSegmentDisplay.h"
#include "widgets/CSegmentPainter.h"

#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

namespace {

// Counts pixels near a colour in a rendered widget.
int CountColour(const QImage& image, const QColor& colour, int tolerance = 40) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (std::abs(c.red() - colour.red()) <= tolerance &&
                std::abs(c.green() - colour.green()) <= tolerance &&
                std::abs(c.blue() - colour.blue()) <= tolerance) {
                ++count;
            }
        }
    }
    return count;
}

QImage Render(QWidget& widget) {
    return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

}  // namespace

class SegmentDisplayTest : public QObject {
    Q_OBJECT
private slots:
    void segmentsOfCharacters_data();
    void segmentsOfCharacters();
    void everySelectableCharacterHasSegments();
    void clockFormat_data();
    void clockFormat();
    void textAndStyleAreKept();
    void segmentStyleLightsSegmentsInForeground();
    void gradientStyleShadesBackground();
    void differentCharactersDrawDifferently();
    void drawsAtAnySize();
    void clockClickIsReported();
    void saveRenderingsForInspection();
};

void SegmentDisplayTest::segmentsOfCharacters_data() {
    using P = CSegmentPainter;
    QTest::addColumn<QChar>("character");
    QTest::addColumn<uint>("segments");
    QTest::newRow("blank") << QChar(u' ') << uint(0);
    QTest::newRow("zero char") << QChar(0) << uint(0);
    QTest::newRow("1") << QChar(u'1') << uint(P::kB | P::kC | P::kJ);
    QTest::newRow("8") << QChar(u'8')
                       << uint(P::kA | P::kB | P::kC | P::kD | P::kE | P::kF | P::kG1 | P::kG2);
    QTest::newRow("E") << QChar(u'E') << uint(P::kA | P::kD | P::kE | P::kF | P::kG1);
    QTest::newRow("e folds to E") << QChar(u'e') << uint(P::kA | P::kD | P::kE | P::kF | P::kG1);
    QTest::newRow("minus") << QChar(u'-') << uint(P::kG1 | P::kG2);
    QTest::newRow("colon") << QChar(u':') << uint(P::kColonUpper | P::kColonLower);
    QTest::newRow("period") << QChar(u'.') << uint(P::kDot);
    QTest::newRow("underscore") << QChar(u'_') << uint(P::kD);
    QTest::newRow("beyond ASCII") << QChar(u'\u00e9') << uint(0);
    QTest::newRow("tab") << QChar(u'\t') << uint(0);
}

void SegmentDisplayTest::segmentsOfCharacters() {
    QFETCH(QChar, character);
    QFETCH(uint, segments);
    QCOMPARE(uint(CSegmentPainter::SegmentsOf(character)), segments);
}

void SegmentDisplayTest::everySelectableCharacterHasSegments() {
    // Every character the trainer can send must show on the next/previous displays.
    const QString sendable =
        QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789\"#+&=/-@_^%();*!$:'?,.");
    for (QChar c : sendable) {
        QVERIFY2(CSegmentPainter::SegmentsOf(c) != 0, qPrintable(QString(c)));
    }
    QVERIFY(CSegmentPainter::CanShow(QStringLiteral("AB 12:00")));
    QVERIFY(!CSegmentPainter::CanShow(QStringLiteral("caf\u00e9")));
    // Distinct characters that look alike on paper must not collapse onto one pattern here.
    QVERIFY(CSegmentPainter::SegmentsOf(u'0') != CSegmentPainter::SegmentsOf(u'O'));
    QVERIFY(CSegmentPainter::SegmentsOf(u'8') != CSegmentPainter::SegmentsOf(u'B'));
}

void SegmentDisplayTest::clockFormat_data() {
    QTest::addColumn<int>("hours");
    QTest::addColumn<int>("minutes");
    QTest::addColumn<int>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("start") << 0 << 0 << 0 << "00:00:00";
    QTest::newRow("padded") << 1 << 2 << 3 << "01:02:03";
    QTest::newRow("last second") << 23 << 59 << 59 << "23:59:59";
    QTest::newRow("three digits kept") << 100 << 0 << 5 << "100:00:05";
    QTest::newRow("negative as printf") << -1 << 0 << 0 << "-1:00:00";
}

void SegmentDisplayTest::clockFormat() {
    QFETCH(int, hours);
    QFETCH(int, minutes);
    QFETCH(int, seconds);
    QFETCH(QString, text);
    QCOMPARE(CClockDisplay::FormatTime(hours, minutes, seconds), text);
    CClockDisplay clock;
    clock.SetTime(hours, minutes, seconds);
    QCOMPARE(clock.Text(), text);
}

void SegmentDisplayTest::textAndStyleAreKept() {
    CSegmentDisplay display;
    QCOMPARE(display.Text(), QString());
    display.SetText(QStringLiteral("W"));
    QCOMPARE(display.Text(), QStringLiteral("W"));
    display.SetColours(QColor(152, 180, 253), QColor(142, 168, 243), Qt::black);
    QCOMPARE(display.BackgroundTop(), QColor(152, 180, 253));
    QCOMPARE(display.BackgroundBottom(), QColor(142, 168, 243));
    QCOMPARE(display.Foreground(), QColor(Qt::black));
    display.SetColours(QColor(0, 255, 0), Qt::black);
    QCOMPARE(display.Foreground(), QColor(0, 255, 0));
    QCOMPARE(display.BackgroundTop(), QColor(Qt::black));
    QCOMPARE(display.BackgroundBottom(), QColor(Qt::black));
    display.SetStyleFlags(16);
    QCOMPARE(display.StyleFlags(), 16u);
}

void SegmentDisplayTest::segmentStyleLightsSegmentsInForeground() {
    CSegmentDisplay display;
    display.resize(60, 60);
    display.SetColours(QColor(0, 255, 0), Qt::black);
    display.SetStyleFlags(CSegmentDisplay::kStyleSegments);
    const int blankLit = CountColour(Render(display), QColor(0, 255, 0));
    QCOMPARE(blankLit, 0);
    // Empty, it still shows the faint unlit segments of one cell.
    QVERIFY(CountColour(Render(display), QColor(0, 28, 0), 12) > 30);
    display.SetStyleFlags(0);
    QCOMPARE(CountColour(Render(display), QColor(0, 28, 0), 12), 0);
    display.SetStyleFlags(CSegmentDisplay::kStyleSegments);
    // A line break of the practice text arrives as a zero character and shows as nothing.
    display.SetText(QString(QChar(0)));
    QCOMPARE(CountColour(Render(display), QColor(0, 255, 0)), 0);
    display.SetText(QStringLiteral("8"));
    const int eightLit = CountColour(Render(display), QColor(0, 255, 0));
    display.SetText(QStringLiteral("1"));
    const int oneLit = CountColour(Render(display), QColor(0, 255, 0));
    QVERIFY(oneLit > 20);
    QVERIFY2(eightLit > 2 * oneLit,
             qPrintable(QStringLiteral("8: %1, 1: %2").arg(eightLit).arg(oneLit)));
    // The background stays black around the segments.
    QVERIFY(CountColour(Render(display), Qt::black, 10) > 60 * 60 / 3);
}

void SegmentDisplayTest::gradientStyleShadesBackground() {
    CSegmentDisplay display;
    display.resize(80, 80);
    display.SetColours(QColor(152, 180, 253), QColor(142, 168, 243), Qt::black);
    display.SetStyleFlags(CSegmentDisplay::kStyleGradient);
    const QImage image = Render(display);
    const QColor top = image.pixelColor(40, 5);
    const QColor bottom = image.pixelColor(40, 74);
    QVERIFY2(std::abs(top.red() - 152) <= 3 && std::abs(top.blue() - 253) <= 3,
             qPrintable(top.name()));
    QVERIFY2(std::abs(bottom.red() - 142) <= 3 && std::abs(bottom.blue() - 243) <= 3,
             qPrintable(bottom.name()));
    // The big display draws its character with the font: some black ink appears.
    QFont font;
    font.setBold(true);
    font.setItalic(true);
    display.setFont(font);
    display.SetText(QStringLiteral("Q"));
    QVERIFY(CountColour(Render(display), Qt::black, 60) > 30);
}

void SegmentDisplayTest::differentCharactersDrawDifferently() {
    CSegmentDisplay display;
    display.resize(50, 70);
    display.SetColours(QColor(0, 255, 0), Qt::black);
    display.SetStyleFlags(CSegmentDisplay::kStyleSegments);
    display.SetText(QStringLiteral("A"));
    const QImage a = Render(display);
    display.SetText(QStringLiteral("B"));
    const QImage b = Render(display);
    display.SetText(QStringLiteral("A"));
    QCOMPARE(Render(display), a);
    QVERIFY(a != b);
}

void SegmentDisplayTest::drawsAtAnySize() {
    CClockDisplay clock;
    clock.SetColours(QColor(0, 0, 255), Qt::white);
    clock.SetStyleFlags(16);
    clock.SetText(QStringLiteral("00:00:00"));
    for (QSize size : {QSize(1, 1), QSize(8, 6), QSize(120, 30), QSize(900, 400)}) {
        clock.resize(size);
        const QImage image = Render(clock);
        QCOMPARE(image.size(), size);
        if (size.width() >= 120) {
            QVERIFY(CountColour(image, QColor(0, 0, 255), 60) > size.height());
        }
    }
    // A template text that is not a time falls back to the font and still draws.
    clock.resize(160, 40);
    clock.SetText(QStringLiteral("Static Timer"));
    QVERIFY(CountColour(Render(clock), QColor(0, 0, 255), 90) > 10);
}

void SegmentDisplayTest::clockClickIsReported() {
    CClockDisplay clock;
    clock.resize(100, 30);
    QSignalSpy spy(&clock, &CSegmentDisplay::clicked);
    QTest::mouseClick(&clock, Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
    QTest::mouseClick(&clock, Qt::RightButton);
    QCOMPARE(spy.count(), 1);
}

void SegmentDisplayTest::saveRenderingsForInspection() {
    // Written into the build tree so a person can look at the drawing.
    QImage sheet(520, 140, QImage::Format_RGB32);
    sheet.fill(Qt::lightGray);
    QPainter painter(&sheet);
    CSegmentDisplay current;
    QFont font;
    font.setBold(true);
    font.setItalic(true);
    current.setFont(font);
    current.SetColours(QColor(152, 180, 253), QColor(142, 168, 243), Qt::black);
    current.SetStyleFlags(16);
    current.SetText(QStringLiteral("K"));
    current.resize(90, 90);
    current.render(&painter, QPoint(10, 10));
    CSegmentDisplay next;
    next.SetColours(QColor(0, 255, 0), Qt::black);
    next.SetStyleFlags(1);
    next.SetText(QStringLiteral("W"));
    next.resize(50, 60);
    next.render(&painter, QPoint(110, 10));
    next.SetText(QStringLiteral("?"));
    next.render(&painter, QPoint(170, 10));
    CClockDisplay clock;
    clock.SetColours(QColor(0, 0, 255), Qt::white);
    clock.SetStyleFlags(16);
    clock.SetText(QStringLiteral("01:23:45"));
    clock.resize(200, 50);
    clock.render(&painter, QPoint(230, 10));
    CSegmentDisplay alphabet;
    alphabet.SetColours(QColor(0, 255, 0), Qt::black);
    alphabet.SetStyleFlags(1);
    alphabet.SetText(QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/?=+.,"));
    alphabet.resize(500, 30);
    alphabet.render(&painter, QPoint(10, 105));
    painter.end();
    const QString path =
        qEnvironmentVariable("TONWERK_BINARY_DIR", ".") + QStringLiteral("/widgets-displays.png");
    QVERIFY(sheet.save(path));
}

QTEST_MAIN(SegmentDisplayTest)
#include "SegmentDisplayTest.moc"
