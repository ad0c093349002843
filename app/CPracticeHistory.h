// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

#include "history/CHistoryStore.h"

class QWidget;

/// The practice history as the trainer's windows share it. The database is opened on first use;
/// when it cannot be, the learner is told once and practising goes on without history.
class CPracticeHistory : public QObject {
    Q_OBJECT

public:
    /// Messages are shown over window, which also owns the history.
    explicit CPracticeHistory(QWidget* window);

    /// The open store, or nullptr when history is off for this run.
    CHistoryStore* Store();

    /// Stores a checked session; false when it was not saved, with LastError() saying why (and
    /// the first failure of the run shown to the learner).
    bool Save(const CopySessionInfo& info, const CopyScore& score);
    QString LastError() const { return m_lastError; }

private:
    void Report(const QString& text);

    QWidget* m_window;
    CHistoryStore m_store;
    bool m_openTried = false;
    bool m_reported = false;
    QString m_lastError;
};
