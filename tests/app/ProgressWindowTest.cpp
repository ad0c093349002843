// SPDX-License-Identifier: GPL-3.0-or-later
// The progress window over a real SQLite history: the charts, the character colours, the most
// confused pairs, the lesson and the streak, and the CSV export.
#include <QChart>
#include <QChartView>
#include <QLineSeries>
#include <QPushButton>
#include <QTableWidget>

#include "CopyPracticeTestSupport.h"
#include "app/CCharacterHeatmap.h"
#include "app/CProgressWindow.h"
#include "training/CCopyScorer.h"

namespace {

struct Practised {
    int daysAgo;
    int lesson;
    const char* sent;
    const char* copied;
    double seconds;
};

// Three days in a row up to today; H is taken for 5 four times, K always copied right.
const Practised kSessions[] = {
    {2, 2, "KMR KMR", "KMR KMR", 60},
    {1, 3, "HHHH KMRS", "5555 KMRS", 120},
    {0, 3, "KMRS KMRS", "KMRS KMRX", 30},
};

}  // namespace

class ProgressWindowTest : public QObject, public CopyPracticeFixture {
    Q_OBJECT

    static void Store(const Practised& practised) {
        CHistoryStore store;
        QVERIFY(store.Open());
        CopySessionInfo info;
        info.started = QDateTime(QDate::currentDate().addDays(-practised.daysAgo), QTime(12, 0));
        info.seconds = practised.seconds;
        info.wpm = 20;
        info.lesson = practised.lesson;
        info.sent = QString::fromLatin1(practised.sent);
        info.copied = QString::fromLatin1(practised.copied);
        QVERIFY(store.Save(info, CCopyScorer::Score(practised.sent, practised.copied)) > 0);
    }

    static QList<QPointF> Points(CProgressWindow& window, const char* chart) {
        const auto series = window.Chart(chart)->chart()->series();
        return series.isEmpty() ? QList<QPointF>()
                                : qobject_cast<QLineSeries*>(series[0])->points();
    }

    /// The hue (0 red, 120 green) of a heatmap cell's background as drawn.
    static int DrawnHue(CProgressWindow& window, char c) {
        QLabel* cell = window.Heatmap()->Cell(c);
        return cell->grab().toImage().pixelColor(2, cell->height() / 2).hsvHue();
    }

private slots:
    void init() {
        RemoveHistory();
        NewProfile();
        NewFrame();
    }

    void showsTheStoredHistory() {
        for (const Practised& practised : kSessions) {
            Store(practised);
        }
        CProgressWindow& window = *Frame().OnProgress();
        QVERIFY(window.isVisible());
        const QString summary = window.findChild<QLabel*>("labelProgressSummary")->text();
        QVERIFY2(summary.contains(QStringLiteral("3 sessions on 3 days, 4 minutes")),
                 qPrintable(summary));
        QVERIFY2(summary.contains(QStringLiteral("Koch lesson reached: 3.")), qPrintable(summary));
        QVERIFY2(summary.contains(QStringLiteral("Streak: 3 days in a row")), qPrintable(summary));

        // One point a day: 100 %, 4 of 8, 7 of 8 right; right characters per minute over five.
        const QList<QPointF> accuracy = Points(window, "chartAccuracy");
        QCOMPARE(accuracy.size(), 3);
        QCOMPARE(accuracy[0].y(), 100.0);
        QCOMPARE(accuracy[1].y(), 50.0);
        QCOMPARE(accuracy[2].y(), 87.5);
        QVERIFY(accuracy[0].x() < accuracy[1].x() && accuracy[1].x() < accuracy[2].x());
        const QList<QPointF> speed = Points(window, "chartSpeed");
        QCOMPARE(speed.size(), 3);
        QCOMPARE(speed[0].y(), 6.0 / 5.0);
        QCOMPARE(speed[2].y(), 7.0 * 2 / 5.0);
        const QList<QPointF> minutes = Points(window, "chartMinutes");
        QCOMPARE(minutes.size(), 3);
        QCOMPARE(minutes[1].y(), 2.0);

        CCharacterHeatmap* heatmap = window.Heatmap();
        QCOMPARE(heatmap->findChildren<QLabel*>().size(), 58);
        QCOMPARE(heatmap->Cell('H')->toolTip(),
                 QStringLiteral("H: sent 4 times, copied right 0 (0.0 %)"));
        QCOMPARE(heatmap->Cell('K')->toolTip(),
                 QStringLiteral("K: sent 5 times, copied right 5 (100.0 %)"));
        QCOMPARE(heatmap->Cell('Q')->toolTip(), QStringLiteral("Q: not sent recently"));
        QVERIFY(DrawnHue(window, 'H') < 15);
        QVERIFY(std::abs(DrawnHue(window, 'K') - 120) < 15);
        QVERIFY(DrawnHue(window, 'Q') == -1);  // grey

        auto* confused = window.findChild<QTableWidget*>("tableConfused");
        QCOMPARE(confused->rowCount(), 2);
        QCOMPARE(confused->item(0, 0)->text() + confused->item(0, 1)->text() +
                     confused->item(0, 2)->text(),
                 QStringLiteral("H54"));

        const QString csvPath = TempPath(QStringLiteral("history.csv"));
        CModalSeam::QueueFileName(csvPath);
        window.findChild<QPushButton*>("buttonExportCsv")->click();
        QFile csv(csvPath);
        QVERIFY(csv.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = csv.readAll().trimmed().split('\n');
        QCOMPARE(lines.size(), 4);
        QVERIFY(lines[0].startsWith("id,started"));
        QVERIFY(lines[2].contains("HHHH KMRS"));
    }

    void brokenHistoryShowsWhy() {
        QVERIFY(DamageHistory());
        CProgressWindow& window = *Frame().OnProgress();
        QVERIFY(window.findChild<QLabel*>("labelProgressSummary")
                    ->text()
                    .startsWith(QStringLiteral("No history this run: History is off")));
        QVERIFY(!window.findChild<QPushButton*>("buttonExportCsv")->isEnabled());
        QCOMPARE(CModalSeam::Messages().size(), 1);
    }
};

QTEST_MAIN(ProgressWindowTest)
#include "ProgressWindowTest.moc"
