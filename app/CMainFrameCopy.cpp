// SPDX-License-Identifier: GPL-3.0-or-later
// The main frame's copy practice: the panel docked below the form, the Koch course on the Random
// menu and the progress window, all sharing one practice history.
#include <QAction>

#include "app/CCopyPracticePanel.h"
#include "app/CKochTrainer.h"
#include "app/CMainFrame.h"
#include "app/CPracticeHistory.h"
#include "app/CProgressWindow.h"

void CMainFrame::CreateCopyPractice() {
    m_history = new CPracticeHistory(this);
    m_koch = new CKochTrainer(*m_doc, *m_view, *m_history, this);
    m_copyPanel = new CCopyPracticePanel(*m_doc, *m_view, *m_history, *m_koch, this);
    m_copyPanel->setAllowedAreas(Qt::BottomDockWidgetArea | Qt::RightDockWidgetArea |
                                 Qt::LeftDockWidgetArea);
    addDockWidget(Qt::BottomDockWidgetArea, m_copyPanel);
    m_copyPanel->hide();
    QAction* panelAction = m_copyPanel->toggleViewAction();
    panelAction->setText(tr("Copy &Practice"));
    panelAction->setStatusTip(tr("Type what you hear and see every character marked"));

    AddAction(kKochLesson, tr("&Koch Lesson..."),
              tr("Practise a lesson of the Koch course with its characters\nKoch Lesson"));
    AddAction(kViewProgress, tr("Pro&gress"),
              tr("Show your accuracy and speed over the days\nProgress"));
    connect(Action(kKochLesson), &QAction::triggered, m_koch, &CKochTrainer::OnKochLesson);
    connect(Action(kViewProgress), &QAction::triggered, this, &CMainFrame::OnProgress);
    connect(m_copyPanel, &CCopyPracticePanel::SessionStored, this, [this] {
        if (m_progressWindow && m_progressWindow->isVisible()) {
            m_progressWindow->Refresh();
        }
    });
}

CProgressWindow* CMainFrame::OnProgress() {
    if (!m_progressWindow) {
        m_progressWindow = new CProgressWindow(*m_history, this);
    }
    m_progressWindow->Refresh();
    m_progressWindow->show();
    m_progressWindow->raise();
    m_progressWindow->activateWindow();
    return m_progressWindow;
}
