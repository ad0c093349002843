// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>
#include <vector>

#include "history/CHistoryStore.h"

class CCharacterHeatmap;
class CPracticeHistory;
class QChartView;
class QLabel;
class QPushButton;
class QTableWidget;

/// View > Progress: accuracy, effective speed and minutes practised over the days, how well each
/// character was copied recently, the characters most often taken for others, the Koch lesson
/// reached and the streak of days in a row; Export to CSV writes every session.
class CProgressWindow : public QWidget {
    Q_OBJECT

public:
    /// How many of the newest sessions the character colours are taken from.
    static constexpr int kRecentSessions = 50;
    static constexpr int kConfusionRows = 10;

    explicit CProgressWindow(CPracticeHistory& history, QWidget* parent = nullptr);

    /// Reads the history again and shows it.
    void Refresh();
    void OnExportCsv();

    QChartView* Chart(const char* name) const;
    CCharacterHeatmap* Heatmap() const { return m_heatmap; }

private:
    void ShowDays(const std::vector<PracticeDay>& days);

    CPracticeHistory& m_history;
    QLabel* m_summary = nullptr;
    QChartView* m_accuracy = nullptr;
    QChartView* m_speed = nullptr;
    QChartView* m_minutes = nullptr;
    CCharacterHeatmap* m_heatmap = nullptr;
    QTableWidget* m_confused = nullptr;
    QPushButton* m_export = nullptr;
};
