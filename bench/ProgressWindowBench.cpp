// SPDX-License-Identifier: GPL-3.0-or-later
// View > Progress over 10,000 stored sessions, from the menu command to the window painted (goal:
// at most 300 ms), beside the same window over an empty history. Each run starts a new main frame,
// so the history is opened afresh as at the first View > Progress of a day. Runs under the display
// in DISPLAY, else offscreen, on a throw-away profile and data folder.
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "app/CMainFrame.h"
#include "app/CModalSeam.h"
#include "app/CProgressWindow.h"
#include "app/CTonwerkView.h"
#include "history/CHistoryStore.h"
#include "model/CCrtRandom.h"
#include "profile/CQtProfile.h"
#include "training/CCopyScorer.h"
#include "training/CKochCourse.h"

namespace {

constexpr int kSessions = 10000;
constexpr int kRuns = 5;

/// Two sessions a day of 300 characters, copied with about one character in twenty wrong.
bool FillHistory() {
    CHistoryStore store;
    if (!store.Open()) {
        std::fprintf(stderr, "%s\n", qPrintable(store.ErrorText()));
        return false;
    }
    CCrtRandom rng(1);
    const QDateTime first = QDateTime::currentDateTime().addDays(-kSessions / 2);
    for (int i = 0; i < kSessions; ++i) {
        const int lesson = 1 + i * 38 / kSessions;
        const std::string sent = CKochCourse::Groups(lesson, 50, 5, rng);
        std::string copy = sent;
        for (char& c : copy) {
            if (c != ' ' && rng.Next() % 20 == 0) {
                c = 'E';
            }
        }
        CopySessionInfo info;
        info.started = first.addSecs(i * 12 * 3600LL);
        info.seconds = 180;
        info.wpm = 20;
        info.lesson = lesson;
        info.sent = QString::fromStdString(sent);
        info.copied = QString::fromStdString(copy);
        if (store.Save(info, CCopyScorer::Score(sent, copy)) == 0) {
            std::fprintf(stderr, "%s\n", qPrintable(store.ErrorText()));
            return false;
        }
    }
    return true;
}

/// The median milliseconds from View > Progress to the window painted, each run in a new frame;
/// negative when a window was never shown.
double ShowProgressMs(CQtProfile& profile) {
    std::vector<double> times;
    for (int run = 0; run < kRuns; ++run) {
        CMainFrame frame(profile);
        frame.show();
        if (!QTest::qWaitForWindowExposed(&frame)) {
            return -1;
        }
        const auto start = std::chrono::steady_clock::now();
        CProgressWindow* window = frame.OnProgress();
        if (!QTest::qWaitForWindowExposed(window)) {
            return -1;
        }
        window->repaint();
        times.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
                .count());
    }
    std::ranges::sort(times);
    return times[times.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
    QTemporaryDir scratch;
    qputenv("XDG_CONFIG_HOME", scratch.filePath(QStringLiteral("config")).toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    CModalSeam::SetScripted(true);
    CTonwerkView::SetDefaultAudioHooks(
        {[] { return 1; }, [] { return 32768; }, [](int) {}, {}, {}});
    CQtProfile profile(scratch.filePath(QStringLiteral("profile.conf")));

    qputenv("XDG_DATA_HOME", scratch.filePath(QStringLiteral("empty")).toLocal8Bit());
    const double emptyMs = ShowProgressMs(profile);
    qputenv("XDG_DATA_HOME", scratch.filePath(QStringLiteral("full")).toLocal8Bit());
    if (!FillHistory()) {
        return 1;
    }
    const double fullMs = ShowProgressMs(profile);
    if (emptyMs < 0 || fullMs < 0) {
        std::fprintf(stderr, "the progress window was never shown\n");
        return 1;
    }
    std::printf(
        "View > Progress over %d sessions: %.1f ms (goal 300 ms); over an empty history %.1f ms, "
        "ratio %.1f\n",
        kSessions, fullMs, emptyMs, fullMs / emptyMs);
    return 0;
}
