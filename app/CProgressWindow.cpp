// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CProgressWindow.h"

#include <QChart>
#include <QChartView>
#include <QDateTimeAxis>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineSeries>
#include <QPushButton>
#include <QSaveFile>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QValueAxis>
#include <algorithm>
#include <functional>

#include "app/CCharacterHeatmap.h"
#include "app/CModalSeam.h"
#include "app/CPracticeHistory.h"

namespace {

constexpr int kChartWidth = 340;
constexpr int kChartHeight = 230;
/// Room above the highest point of a chart without a fixed top.
constexpr double kHeadroom = 1.15;

QChartView* NewChart(QWidget* parent, const char* name, const QString& title) {
    auto* chart = new QChart;
    chart->setTitle(title);
    chart->legend()->hide();
    chart->setMargins(QMargins(4, 4, 4, 4));
    auto* view = new QChartView(chart, parent);
    view->setObjectName(QString::fromLatin1(name));
    view->setRenderHint(QPainter::Antialiasing);
    view->setMinimumSize(kChartWidth, kChartHeight);
    return view;
}

/// One point per day practised; top is the value axis' end, or 0 to fit the values.
void Plot(QChartView* view, const std::vector<PracticeDay>& days,
          const std::function<double(const PracticeDay&)>& value, double top) {
    QChart* chart = view->chart();
    chart->removeAllSeries();
    for (QAbstractAxis* axis : chart->axes()) {
        chart->removeAxis(axis);
        delete axis;
    }
    auto* series = new QLineSeries;
    series->setPointsVisible(days.size() < 60);
    double highest = 0;
    for (const PracticeDay& day : days) {
        const double y = value(day);
        highest = std::max(highest, y);
        series->append(static_cast<qreal>(day.day.startOfDay().toMSecsSinceEpoch()), y);
    }
    chart->addSeries(series);

    auto* time = new QDateTimeAxis;
    time->setFormat(QStringLiteral("d MMM"));
    time->setTickCount(4);
    const QDate first = days.empty() ? QDate::currentDate() : days.front().day;
    const QDate last = days.empty() ? QDate::currentDate() : days.back().day;
    // A single day still gets a span to stand in.
    time->setRange(first.addDays(first == last ? -1 : 0).startOfDay(),
                   last.addDays(first == last ? 1 : 0).startOfDay());
    auto* values = new QValueAxis;
    values->setRange(0, top > 0 ? top : std::max(1.0, highest * kHeadroom));
    values->setLabelFormat(QStringLiteral("%.0f"));
    chart->addAxis(time, Qt::AlignBottom);
    chart->addAxis(values, Qt::AlignLeft);
    series->attachAxis(time);
    series->attachAxis(values);
}

}  // namespace

CProgressWindow::CProgressWindow(CPracticeHistory& history, QWidget* parent)
    : QWidget(parent, Qt::Window), m_history(history) {
    setObjectName("ProgressWindow");
    setWindowTitle(tr("Progress - Tonwerk"));
    m_summary = new QLabel(this);
    m_summary->setObjectName("labelProgressSummary");
    m_summary->setTextFormat(Qt::PlainText);
    m_export = new QPushButton(tr("&Export to CSV..."), this);
    m_export->setObjectName("buttonExportCsv");
    m_accuracy = NewChart(this, "chartAccuracy", tr("Accuracy per day (%)"));
    m_speed = NewChart(this, "chartSpeed", tr("Effective speed per day (WPM)"));
    m_minutes = NewChart(this, "chartMinutes", tr("Minutes practised per day"));

    auto* heatGroup =
        new QGroupBox(tr("Characters, newest %1 sessions (red: often wrong, grey: not sent)")
                          .arg(kRecentSessions),
                      this);
    m_heatmap = new CCharacterHeatmap(heatGroup);
    m_heatmap->setObjectName("heatmap");
    auto* heatLayout = new QVBoxLayout(heatGroup);
    heatLayout->addWidget(m_heatmap);
    heatLayout->addStretch(1);

    auto* confusedGroup = new QGroupBox(tr("Most confused"), this);
    m_confused = new QTableWidget(0, 3, confusedGroup);
    m_confused->setObjectName("tableConfused");
    m_confused->setHorizontalHeaderLabels({tr("Sent"), tr("Taken for"), tr("Times")});
    m_confused->verticalHeader()->hide();
    m_confused->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_confused->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_confused->setSelectionMode(QAbstractItemView::NoSelection);
    auto* confusedLayout = new QVBoxLayout(confusedGroup);
    confusedLayout->addWidget(m_confused);

    auto* top = new QHBoxLayout;
    top->addWidget(m_summary, 1);
    top->addWidget(m_export);
    auto* grid = new QGridLayout;
    grid->addWidget(m_accuracy, 0, 0);
    grid->addWidget(m_speed, 0, 1);
    grid->addWidget(m_minutes, 0, 2);
    grid->addWidget(heatGroup, 1, 0, 1, 2);
    grid->addWidget(confusedGroup, 1, 2);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(grid, 1);

    connect(m_export, &QPushButton::clicked, this, &CProgressWindow::OnExportCsv);
}

QChartView* CProgressWindow::Chart(const char* name) const {
    return findChild<QChartView*>(QString::fromLatin1(name));
}

void CProgressWindow::Refresh() {
    CHistoryStore* store = m_history.Store();
    m_export->setEnabled(store != nullptr);
    if (!store) {
        m_summary->setText(tr("No history this run: %1").arg(m_history.LastError()));
        ShowDays({});
        m_heatmap->SetTallies({});
        m_confused->setRowCount(0);
        return;
    }
    const std::vector<PracticeDay> days = store->Days();
    double minutes = 0;
    int sessions = 0;
    for (const PracticeDay& day : days) {
        minutes += day.minutes;
        sessions += day.sessions;
    }
    const int lesson = store->LessonReached();
    const int streak = store->Streak();
    m_summary->setText(tr("%1 sessions on %2 days, %3 minutes in all.   Koch lesson reached: "
                          "%4.   Streak: %5 %6 in a row.")
                           .arg(sessions)
                           .arg(days.size())
                           .arg(minutes, 0, 'f', 0)
                           .arg(lesson > 0 ? QString::number(lesson) : tr("none yet"))
                           .arg(streak)
                           .arg(streak == 1 ? tr("day") : tr("days")));
    ShowDays(days);
    m_heatmap->SetTallies(store->RecentCharacters(kRecentSessions));

    const std::vector<Confusion> confused = store->MostConfused(kConfusionRows);
    m_confused->setRowCount(static_cast<int>(confused.size()));
    for (int row = 0; row < static_cast<int>(confused.size()); ++row) {
        const Confusion& pair = confused[static_cast<std::size_t>(row)];
        const QString cells[] = {QString(QLatin1Char(pair.sent)),
                                 QString(QLatin1Char(pair.takenFor)), QString::number(pair.count)};
        for (int column = 0; column < 3; ++column) {
            auto* item = new QTableWidgetItem(cells[column]);
            item->setTextAlignment(Qt::AlignCenter);
            m_confused->setItem(row, column, item);
        }
    }
}

void CProgressWindow::ShowDays(const std::vector<PracticeDay>& days) {
    constexpr double kFullAccuracy = 100.0;
    Plot(
        m_accuracy, days, [](const PracticeDay& day) { return day.accuracy; }, kFullAccuracy);
    Plot(
        m_speed, days, [](const PracticeDay& day) { return day.effectiveWpm; }, 0);
    Plot(
        m_minutes, days, [](const PracticeDay& day) { return day.minutes; }, 0);
}

void CProgressWindow::OnExportCsv() {
    CHistoryStore* store = m_history.Store();
    if (!store) {
        return;
    }
    const QString path = CModalSeam::SaveFileName(this, QStringLiteral("tonwerk-history.csv"),
                                                  tr("CSV files (*.csv)"), QStringLiteral("csv"));
    if (path.isEmpty()) {
        return;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(store->Csv()) < 0 || !file.commit()) {
        CModalSeam::Message(this, tr("Cannot write %1: %2").arg(path, file.errorString()));
    }
}
