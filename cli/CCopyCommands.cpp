// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CCopyCommands.h"

#include <QCoreApplication>

#include <charconv>
#include <cstdio>
#include <optional>
#include <ostream>

#include "cli/CCommandLineTool.h"
#include "history/CHistoryStore.h"
#include "model/CCrtRandom.h"
#include "profile/CQtProfile.h"
#include "training/CCopyScorer.h"
#include "training/CKochCourse.h"

namespace {

constexpr int kDefaultGroups = 20;
constexpr int kDefaultGroupSize = 5;
constexpr long long kMaxGroups = 100000;
constexpr long long kMaxGroupSize = 1000;
constexpr long long kSeedLimit = 1LL << 62;

/// A whole number option within bounds, its fallback when absent; nullopt after saying why.
std::optional<long long> Number(const CopyCommands::Values& values, std::string_view command,
                                std::string_view name, long long lowest, long long highest,
                                std::optional<long long> fallback, std::ostream& err) {
    const auto it = values.find(name);
    if (it == values.end()) {
        if (!fallback) {
            err << "tonwerk-cli " << command << ": " << name << " is required\n";
        }
        return fallback;
    }
    const std::string& text = it->second;
    long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value < lowest ||
        value > highest) {
        err << "tonwerk-cli " << command << ": " << name << " takes a whole number from " << lowest
            << " to " << highest << ", not '" << text << "'\n";
        return std::nullopt;
    }
    return value;
}

std::string Percent(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

}  // namespace

int CopyCommands::Score(const Values& values, std::ostream& out, std::ostream& err) {
    const auto sent = values.find("--sent");
    const auto copy = values.find("--copy");
    if (sent == values.end() || copy == values.end()) {
        err << "tonwerk-cli score: --sent TEXT and --copy TEXT are required\n";
        return CCommandLineTool::kExitUsage;
    }
    const CopyScore score = CCopyScorer::Score(sent->second, copy->second);
    const CCopyScorer::Lines lines = CCopyScorer::AlignedLines(score);
    out << "sent  " << lines.sent << "\ncopy  " << lines.copy << "\naccuracy "
        << Percent(score.Accuracy()) << " % (" << score.correct << '/' << score.Judged() << ")\n";
    return CCommandLineTool::kExitOk;
}

int CopyCommands::Koch(const Values& values, long long defaultSeed, std::ostream& out,
                       std::ostream& err) {
    const auto lesson = Number(values, "koch", "--lesson", CKochCourse::kFirstLesson,
                               CKochCourse::kLastLesson, std::nullopt, err);
    const auto count = Number(values, "koch", "--count", 0, kMaxGroups, kDefaultGroups, err);
    const auto size = Number(values, "koch", "--size", 1, kMaxGroupSize, kDefaultGroupSize, err);
    const auto seed = Number(values, "koch", "--seed", 0, kSeedLimit, defaultSeed, err);
    if (!lesson || !count || !size || !seed) {
        return CCommandLineTool::kExitUsage;
    }
    CCrtRandom rng(static_cast<std::uint32_t>(*seed));
    out << CKochCourse::Groups(static_cast<int>(*lesson), static_cast<int>(*count),
                               static_cast<int>(*size), rng)
        << '\n';
    return CCommandLineTool::kExitOk;
}

int CopyCommands::History(const Values& values, bool csv, std::ostream& out, std::ostream& err) {
    // Qt SQL loads its driver through the application object; the tool has none of its own.
    static int argc = 1;
    static char name[] = "tonwerk-cli";
    static char* argv[] = {name, nullptr};
    std::optional<QCoreApplication> application;
    if (QCoreApplication::instance() == nullptr) {
        application.emplace(argc, argv);
        QCoreApplication::setOrganizationName(QString::fromLatin1(CQtProfile::kOrganization));
        QCoreApplication::setApplicationName(QString::fromLatin1(CQtProfile::kApplication));
    }

    const auto database = values.find("--database");
    CHistoryStore store;
    if (!store.Open(database == values.end() ? QString()
                                             : QString::fromLocal8Bit(database->second))) {
        err << "tonwerk-cli history: " << store.ErrorText().toLocal8Bit().constData() << '\n';
        return CCommandLineTool::kExitFailure;
    }
    if (csv) {
        out << store.Csv().constData();
        return CCommandLineTool::kExitOk;
    }
    const std::vector<StoredSession> sessions = store.Sessions();
    for (const StoredSession& s : sessions) {
        const QString when =
            s.info.started.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
        char line[160];
        std::snprintf(line, sizeof line,
                      "%s  %4.0f s  %3d wpm  lesson %2d  %5.1f %% (%d/%d)  %.1f wpm effective\n",
                      when.toLatin1().constData(), s.info.seconds, s.info.wpm, s.info.lesson,
                      s.accuracy, s.correct, s.sentCount + s.extra, s.effectiveWpm);
        out << line;
    }
    out << sessions.size() << (sessions.size() == 1 ? " session" : " sessions")
        << ", lesson reached " << store.LessonReached() << ", streak " << store.Streak()
        << (store.Streak() == 1 ? " day\n" : " days\n");
    return CCommandLineTool::kExitOk;
}
