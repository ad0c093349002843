// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CCommandLineTool.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QTemporaryDir>

#include <sstream>

#include "history/CHistoryStore.h"
#include "model/CMemoryProfile.h"
#include "training/CCopyScorer.h"

namespace {

struct Result {
    int status;
    std::string out;
    std::string err;
};

Result RunCli(const std::vector<std::string>& args) {
    CMemoryProfile profile;
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    CCommandLineTool tool(profile, in, out, err, [] { return 1700000000LL; });
    const int status = tool.Run(args);
    return {status, out.str(), err.str()};
}

TEST(CopyCommands, ScorePrintsTheAlignmentAndTheAccuracy) {
    const Result result =
        RunCli({"score", "--sent", "THE QUICK BROWN FOX", "--copy", "the qick browxn fix"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out,
              "sent  THE QUICK BROW+N FOX\n"
              "copy  ... .-... ....X. .I.\n"
              "accuracy 82.4 % (14/17)\n");
    EXPECT_EQ(RunCli({"score", "--sent", "CQ", "--copy", ""}).out,
              "sent  CQ\ncopy  --\naccuracy 0.0 % (0/2)\n");
    EXPECT_EQ(RunCli({"score", "--sent", "CQ"}).status, CCommandLineTool::kExitUsage);
}

TEST(CopyCommands, KochPrintsLessonGroups) {
    const Result result = RunCli({"koch", "--lesson", "2", "--count", "3", "--size", "4"});
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.out.size(), 16u);
    EXPECT_EQ(result.out.find_first_not_of("KMR \n"), std::string::npos);
    EXPECT_EQ(result.out, RunCli({"koch", "--lesson", "2", "--count", "3", "--size", "4"}).out);
    EXPECT_NE(RunCli({"koch", "--lesson", "2", "--seed", "1"}).out,
              RunCli({"koch", "--lesson", "2", "--seed", "2"}).out);

    struct Bad {
        std::vector<std::string> args;
        const char* message;
    };
    const Bad bad[] = {
        {{"koch"}, "--lesson is required"},
        {{"koch", "--lesson", "40"}, "--lesson takes a whole number from 1 to 39, not '40'"},
        {{"koch", "--lesson", "3", "--size", "0"}, "--size takes a whole number from 1"},
    };
    for (const Bad& b : bad) {
        const Result r = RunCli(b.args);
        EXPECT_EQ(r.status, CCommandLineTool::kExitUsage);
        EXPECT_NE(r.err.find(b.message), std::string::npos) << r.err;
    }
}

TEST(CopyCommands, HistoryListsAndExportsTheStoredSessions) {
    QTemporaryDir folder;
    const std::string file = folder.filePath(QStringLiteral("history.sqlite")).toStdString();
    Result result = RunCli({"history", "--database", file});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "0 sessions, lesson reached 0, streak 0 days\n");

    {
        CHistoryStore store;
        ASSERT_TRUE(store.Open(QString::fromStdString(file)));
        CopySessionInfo info;
        info.started = QDateTime::currentDateTime();
        info.seconds = 120;
        info.wpm = 18;
        info.lesson = 6;
        info.sent = QStringLiteral("KMRSUAP");
        info.copied = QStringLiteral("KMRSUA");
        ASSERT_GT(store.Save(info, CCopyScorer::Score("KMRSUAP", "KMRSUA")), 0);
    }
    result = RunCli({"history", "--database", file});
    EXPECT_NE(result.out.find(" 18 wpm  lesson  6   85.7 % (6/7)  0.6 wpm effective\n"),
              std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find("1 session, lesson reached 6, streak 1 day\n"), std::string::npos);

    result = RunCli({"history", "--csv", "--database", file});
    EXPECT_EQ(result.out.substr(0, 11), "id,started,");
    EXPECT_NE(result.out.find(",KMRSUAP,KMRSUA\n"), std::string::npos) << result.out;

    result = RunCli({"history", "--database", folder.path().toStdString()});
    EXPECT_EQ(result.status, CCommandLineTool::kExitFailure);
    EXPECT_NE(result.err.find("tonwerk-cli history: History is off: "), std::string::npos)
        << result.err;
}

}  // namespace
