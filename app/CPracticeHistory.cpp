// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CPracticeHistory.h"

#include <QWidget>

#include "app/CModalSeam.h"

CPracticeHistory::CPracticeHistory(QWidget* window) : QObject(window), m_window(window) {}

CHistoryStore* CPracticeHistory::Store() {
    if (!m_openTried) {
        m_openTried = true;
        if (!m_store.Open()) {
            Report(m_store.ErrorText() + tr("\nPractice goes on without history."));
        }
    }
    return m_store.IsOpen() ? &m_store : nullptr;
}

bool CPracticeHistory::Save(const CopySessionInfo& info, const CopyScore& score) {
    CHistoryStore* store = Store();
    if (!store) {
        m_lastError = m_store.ErrorText();
        return false;
    }
    if (store->Save(info, score) == 0) {
        m_lastError = store->ErrorText();
        Report(m_lastError);
        return false;
    }
    m_lastError.clear();
    return true;
}

void CPracticeHistory::Report(const QString& text) {
    m_lastError = text;
    if (m_reported) {
        return;
    }
    m_reported = true;
    CModalSeam::Message(m_window, text, QMessageBox::Ok, QMessageBox::Warning);
}
