// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QTest>

#include "AppTestFixture.h"
#include "app/CCopyPracticePanel.h"
#include "app/CCopyResultView.h"
#include "history/CHistoryStore.h"

/// The copy-practice tests' common ground: the history in a temporary data folder of its own,
/// emptied before each test, and the panel's parts as the learner sees them.
class CopyPracticeFixture : public AppTestFixture {
public:
    CopyPracticeFixture() { qputenv("XDG_DATA_HOME", m_data.path().toLocal8Bit()); }

    static void RemoveHistory() {
        QDir(QFileInfo(CHistoryStore::DefaultPath()).absolutePath()).removeRecursively();
    }

    /// Puts a file that is no database where the history belongs.
    static bool DamageHistory() {
        const QString path = CHistoryStore::DefaultPath();
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(QByteArray(4096, 'x')) == 4096;
    }

    /// A frame on a fresh profile with the panel open, shown as the learner sees it.
    CCopyPracticePanel& OpenPanel() {
        NewProfile();
        Profile().WriteInt("CopyPractice", "Open", 1);
        NewFrame();
        Frame().show();
        if (!QTest::qWaitForWindowExposed(&Frame())) {
            qFatal("the frame was never shown");
        }
        return *Panel();
    }

    CCopyPracticePanel* Panel() { return Frame().CopyPanel(); }
    QPlainTextEdit* CopyEdit() { return Panel()->findChild<QPlainTextEdit*>("editCopy"); }
    CCopyResultView* Result() { return Panel()->findChild<CCopyResultView*>("copyResult"); }
    QString Summary() { return Panel()->findChild<QLabel*>("labelCopySummary")->text(); }

    /// The marks of the result, one letter a cell: c correct, w wrong, m missed, x extra.
    QString Marks() {
        QString marks;
        for (const CopyCell& cell : Result()->Cells()) {
            marks += QLatin1Char("cwmx"[static_cast<int>(cell.mark)]);
        }
        return marks;
    }

    /// Whether cell i is drawn in its mark's colour (a few pixels of it, for the antialiasing).
    bool DrawnInItsColour(std::size_t index) {
        const QImage image = Result()->grab().toImage();
        const QColor wanted = CCopyResultView::MarkColor(Result()->Cells().at(index).mark);
        const QRect rect = Result()->CellRect(index);
        int found = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            for (int x = rect.left(); x <= rect.right(); ++x) {
                found += image.pixelColor(x, y) == wanted ? 1 : 0;
            }
        }
        return found >= 3;
    }

    QList<StoredSession> StoredSessions() {
        CHistoryStore store;
        if (!store.Open()) {
            return {};
        }
        const std::vector<StoredSession> sessions = store.Sessions();
        return QList<StoredSession>(sessions.begin(), sessions.end());
    }

private:
    QTemporaryDir m_data;
};
