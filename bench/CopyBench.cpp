// SPDX-License-Identifier: GPL-3.0-or-later
// Copy practice: scoring a 10,000-character copy against a 10,000-character text beside a plain
// byte comparison of the same texts; storing one session; and the progress window's queries
// over 10,000 stored sessions beside one scan of the sessions table.
// Usage: bench_copy [FOLDER]

#include <QCoreApplication>
#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "history/CHistoryStore.h"
#include "model/CCrtRandom.h"
#include "training/CCopyScorer.h"
#include "training/CKochCourse.h"

namespace {

constexpr std::size_t kTextLength = 10000;
constexpr int kSessions = 10000;
constexpr int kRuns = 9;

/// The median milliseconds of runs of work.
double MedianMs(const std::function<void()>& work, int runs = kRuns) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        times.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
                .count());
    }
    std::ranges::sort(times);
    return times[times.size() / 2];
}

/// A learner's copy: about one character in twenty dropped, doubled or mistaken.
std::string Copy(const std::string& sent, CCrtRandom& rng) {
    std::string copy;
    for (const char c : sent) {
        switch (rng.Next() % 60) {
            case 0:
                break;
            case 1:
                copy += c;
                copy += c;
                break;
            case 2:
                copy += c == 'E' ? 'T' : 'E';
                break;
            default:
                copy += c;
        }
    }
    return copy;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    CCrtRandom rng(1);
    const std::string sent = CKochCourse::Groups(39, kTextLength / 6, 5, rng);
    const std::string copy = Copy(sent, rng);

    int volatile sink = 0;
    const double compareMs = MedianMs([&] {
        int same = 0;
        for (std::size_t i = 0; i < std::min(sent.size(), copy.size()); ++i) {
            same += sent[i] == copy[i] ? 1 : 0;
        }
        sink = same;
    });
    CopyScore score;
    // The processor time beside the wall time tells a busy machine from slow code.
    const std::clock_t cpuStart = std::clock();
    const double scoreMs = MedianMs([&] { score = CCopyScorer::Score(sent, copy); });
    const double cpuMs = 1000.0 * static_cast<double>(std::clock() - cpuStart) / CLOCKS_PER_SEC;
    std::printf(
        "scoring %zu against %zu characters: %.2f ms (goal 50 ms; processor %.2f ms a "
        "run), byte comparison %.4f ms, ratio %.0f; accuracy %.1f %%\n",
        copy.size(), sent.size(), scoreMs, cpuMs / kRuns, compareMs, scoreMs / compareMs,
        score.Accuracy());
    const std::string runaway = copy + std::string(10 * kTextLength, 'E');
    std::printf("a copy ten times longer than the text: %.2f ms\n",
                MedianMs([&] { score = CCopyScorer::Score(sent, runaway); }));
    std::printf("a copy that stops after a tenth: %.2f ms\n", MedianMs([&] {
                    score = CCopyScorer::Score(sent, copy.substr(0, copy.size() / 10));
                }));

    QTemporaryDir scratch;
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : scratch.path();
    const QString file = folder + QStringLiteral("/bench-history.sqlite");
    QFile::remove(file);
    CHistoryStore store;
    if (!store.Open(file)) {
        std::fprintf(stderr, "%s\n", qPrintable(store.ErrorText()));
        return 1;
    }
    // Sessions as a learner leaves them: 300 characters, one or two a day.
    CopySessionInfo info;
    info.seconds = 180;
    info.wpm = 20;
    info.pitch = 700;
    const std::string sessionText = sent.substr(0, 300);
    const CopyScore sessionScore = CCopyScorer::Score(sessionText, Copy(sessionText, rng));
    info.sent = QString::fromStdString(sessionText);
    info.copied = info.sent;
    const QDateTime first = QDateTime::currentDateTime().addDays(-kSessions / 2);
    int saved = 0;
    std::vector<double> saveTimes;
    while (saved < kSessions) {
        info.started = first.addSecs(saved * 12 * 3600LL);
        info.lesson = 1 + saved * 38 / kSessions;
        const auto start = std::chrono::steady_clock::now();
        if (store.Save(info, sessionScore) == 0) {
            std::fprintf(stderr, "%s\n", qPrintable(store.ErrorText()));
            return 1;
        }
        saveTimes.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
                .count());
        ++saved;
    }
    std::ranges::sort(saveTimes);
    std::printf(
        "storing a session: median %.2f ms, 99th percentile %.2f ms, slowest %.2f ms "
        "(goal 20 ms)\n",
        saveTimes[saveTimes.size() / 2], saveTimes[saveTimes.size() * 99 / 100], saveTimes.back());

    store.Close();
    std::printf("opening the history of %d sessions: %.2f ms\n", kSessions,
                MedianMs([&] { store.Open(file); }, 3));

    QSqlDatabase scan = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), "scan");
    scan.setDatabaseName(file);
    scan.open();
    const double scanMs = MedianMs([&] {
        QSqlQuery query(scan);
        query.exec(QStringLiteral("SELECT COUNT(*), SUM(seconds) FROM sessions"));
        query.next();
        sink = query.value(0).toInt();
    });
    std::size_t rows = 0;
    const double progressMs = MedianMs([&] {
        rows = store.Days().size() + store.RecentCharacters().size() + store.MostConfused().size();
        sink = store.LessonReached() + store.Streak();
    });
    std::printf(
        "progress queries over %d sessions: %.2f ms (goal 300 ms, %zu rows), one scan "
        "of the sessions %.2f ms\n",
        kSessions, progressMs, rows, scanMs);
    std::printf("listing all %d sessions: %.2f ms\n", kSessions,
                MedianMs([&] { rows = store.Sessions().size(); }, 3));
    scan.close();
    return 0;
}
