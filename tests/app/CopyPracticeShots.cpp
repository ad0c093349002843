// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures of copy practice for the README: the panel after a checked run and the progress window
// over six weeks of practice. Run by scripts/screenshot-copy under a virtual X server and a
// private sound server, with a profile and a history of its own.
// Usage: copy_practice_shots OUTPUT_FOLDER
#include <QApplication>
#include <QPlainTextEdit>
#include <QSlider>
#include <QTextEdit>
#include <cstdio>

#include "AppTestFixture.h"
#include "app/CCopyPracticePanel.h"
#include "app/CProgressWindow.h"
#include "model/CCrtRandom.h"
#include "training/CCopyScorer.h"
#include "training/CKochCourse.h"
#include "widgets/CImageButton.h"

namespace {

constexpr int kDays = 42;

/// A copy with about one character in `every` taken for a look-alike, or dropped.
std::string Copy(const std::string& sent, int every, CCrtRandom& rng) {
    static const std::pair<char, char> kLookAlikes[] = {{'S', 'H'}, {'U', 'V'}, {'W', 'P'},
                                                        {'O', '0'}, {'R', 'K'}, {'I', 'S'}};
    std::string copy;
    for (const char c : sent) {
        const int draw = rng.Next() % (every * 2);
        if (c != ' ' && draw == 0) {
            continue;
        }
        char typed = c;
        for (const auto& [from, to] : kLookAlikes) {
            if (c == from && draw < 4) {
                typed = to;
            }
        }
        copy += typed;
    }
    return copy;
}

/// Six weeks of sessions: lessons, speed and accuracy rising, a few days missed, the last five
/// practised in a row.
void FillHistory() {
    CHistoryStore store;
    if (!store.Open()) {
        qFatal("%s", qPrintable(store.ErrorText()));
    }
    CCrtRandom rng(7);
    const QDate today = QDate::currentDate();
    for (int day = 0; day < kDays; ++day) {
        if (day < kDays - 5 && rng.Next() % 4 == 0) {
            continue;
        }
        const int lesson = 1 + day * 9 / kDays;
        const int wpm = 12 + day * 8 / kDays;
        for (int session = 0; session < 1 + rng.Next() % 2; ++session) {
            const std::string sent = CKochCourse::Groups(lesson, 25, 5, rng);
            const std::string copy = Copy(sent, 6 + day / 3, rng);
            CopySessionInfo info;
            info.started = QDateTime(today.addDays(day - kDays + 1), QTime(19, 10 * session));
            info.seconds = static_cast<double>(sent.size()) * 60.0 / (wpm * 5.0) * 1.4;
            info.wpm = wpm;
            info.pitch = 700;
            info.lesson = lesson;
            info.sent = QString::fromStdString(sent);
            info.copied = QString::fromStdString(copy);
            store.Save(info, CCopyScorer::Score(sent, copy));
        }
    }
}

bool Save(QWidget& widget, const QString& path) {
    const bool saved = widget.grab().save(path);
    std::printf("%s %s\n", saved ? "Saved" : "Could not save", qPrintable(path));
    return saved;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: copy_practice_shots OUTPUT_FOLDER\n");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    QTemporaryDir scratch;
    qputenv("XDG_DATA_HOME", scratch.filePath(QStringLiteral("data")).toLocal8Bit());
    CModalSeam::SetScripted(true);
    CTonwerkView::SetDefaultAudioHooks(AppTestFixture::Hooks(1));
    FillHistory();

    CQtProfile profile(scratch.filePath(QStringLiteral("profile.conf")));
    profile.WriteInt("CopyPractice", "Open", 1);
    profile.WriteInt("CopyPractice", "KochLesson", 9);
    CMainFrame frame(profile);
    frame.resize(CMainFrame::kDefaultWidth, 940);
    frame.show();
    if (!QTest::qWaitForWindowExposed(&frame)) {
        return 1;
    }

    // A run keyed for real, copied with a letter taken for a 5, one missed and one extra.
    CTonwerkView& view = *frame.View();
    qobject_cast<QTextEdit*>(view.Control(1002))->setPlainText(QStringLiteral("PARIS KMRSU ALPTO"));
    qobject_cast<QSlider*>(view.Control(1003))->setValue(20);
    qobject_cast<CImageButton*>(view.Control(1005))->click();
    auto* copy = frame.CopyPanel()->findChild<QPlainTextEdit*>("editCopy");
    QTest::keyClicks(copy, QStringLiteral("PAR5S KMRU ALPT0O"));
    if (!QTest::qWaitFor([&] { return frame.CopyPanel()->LastScore().has_value(); }, 30000)) {
        std::fprintf(stderr, "the run never ended\n");
        return 1;
    }
    QTest::qWait(300);
    bool saved = Save(frame, out + QStringLiteral("/copy-practice.png"));

    CProgressWindow& progress = *frame.OnProgress();
    progress.resize(1120, 620);
    if (!QTest::qWaitForWindowExposed(&progress)) {
        return 1;
    }
    QTest::qWait(300);
    saved = Save(progress, out + QStringLiteral("/progress.png")) && saved;
    return saved ? 0 : 1;
}
