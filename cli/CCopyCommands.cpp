// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CCopyCommands.h"

#include <QCoreApplication>

#include <cstdio>
#include <optional>
#include <ostream>

#include "cli/CCommandLineTool.h"
#include "history/CHistoryStore.h"
#include "profile/CQtProfile.h"
#include "training/CCopyScorer.h"

namespace {

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
    const int streak = store.Streak();
    out << sessions.size() << (sessions.size() == 1 ? " session" : " sessions")
        << ", lesson reached " << store.LessonReached() << ", streak " << streak
        << (streak == 1 ? " day\n" : " days\n");
    return CCommandLineTool::kExitOk;
}
