// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/CHistoryStore.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <thread>

#include "training/CCopyScorer.h"

namespace {

const QDate kMonday(2026, 11, 16);

CopySessionInfo Info(const QDate& day, int lesson = 3, const char* sent = "KMR KMR",
                     const char* copied = "KM5 KMR") {
    CopySessionInfo info;
    info.started = QDateTime(day, QTime(19, 30));
    info.seconds = 60;
    info.wpm = 20;
    info.farnsworth = 2;
    info.pitch = 700;
    info.lesson = lesson;
    info.sent = QString::fromLatin1(sent);
    info.copied = QString::fromLatin1(copied);
    return info;
}

qint64 Save(CHistoryStore& store, const CopySessionInfo& info) {
    return store.Save(info, CCopyScorer::Score(info.sent.toStdString(), info.copied.toStdString()));
}

class HistoryStore : public testing::Test {
protected:
    QString File() const { return m_folder.filePath(QStringLiteral("history.sqlite")); }

    QTemporaryDir m_folder;
};

TEST_F(HistoryStore, KeepsSessionsAndAnswersTheProgressQueries) {
    CHistoryStore store;
    ASSERT_TRUE(store.Open(File())) << store.ErrorText().toStdString();
    EXPECT_TRUE(store.Sessions().empty());
    EXPECT_EQ(store.Streak(kMonday), 0);

    ASSERT_GT(Save(store, Info(kMonday.addDays(-3), 2, "KMR", "KMR")), 0);
    ASSERT_GT(Save(store, Info(kMonday.addDays(-1), 3, "HHSS", "5H5S")), 0);
    ASSERT_GT(Save(store, Info(kMonday, 4, "KMRSU,", "KMRS  U,X")), 0);
    ASSERT_GT(Save(store, Info(kMonday, 4, "H", "5")), 0);

    const std::vector<StoredSession> sessions = store.Sessions();
    ASSERT_EQ(sessions.size(), 4u);
    EXPECT_EQ(sessions.back().info.sent, QStringLiteral("KMR"));  // newest first
    EXPECT_EQ(sessions.back().info.started, Info(kMonday.addDays(-3)).started);
    EXPECT_EQ(sessions.back().info.pitch, 700);
    EXPECT_EQ(sessions[1].extra, 1);
    EXPECT_DOUBLE_EQ(sessions.back().effectiveWpm, 3 / 5.0);
    EXPECT_EQ(store.Sessions(1).size(), 1u);

    const std::vector<PracticeDay> days = store.Days();
    ASSERT_EQ(days.size(), 3u);
    EXPECT_EQ(days.front().day, kMonday.addDays(-3));
    EXPECT_EQ(days.back().sessions, 2);
    EXPECT_DOUBLE_EQ(days.back().minutes, 2.0);
    EXPECT_NEAR(days.back().accuracy, 100.0 * 6 / 8, 1e-9);  // 6 right of 7 sent + 1 extra

    const std::map<char, CharacterTally> recent = store.RecentCharacters(2);
    EXPECT_EQ(recent.at('H').sent, 1);
    EXPECT_EQ(recent.at('H').correct, 0);
    EXPECT_EQ(recent.count('R'), 1u);
    EXPECT_EQ(store.RecentCharacters().at('H').sent, 3);

    const std::vector<Confusion> confused = store.MostConfused(1);
    ASSERT_EQ(confused.size(), 1u);
    EXPECT_EQ(confused[0].sent, 'H');
    EXPECT_EQ(confused[0].takenFor, '5');
    EXPECT_EQ(confused[0].count, 2);

    EXPECT_EQ(store.LessonReached(), 4);
    EXPECT_EQ(store.Streak(kMonday), 2);
    EXPECT_EQ(store.Streak(kMonday.addDays(1)), 2);  // today not practised yet
    EXPECT_EQ(store.Streak(kMonday.addDays(2)), 0);
}

TEST_F(HistoryStore, ExportsCsvWithQuotedTexts) {
    CHistoryStore store;
    ASSERT_TRUE(store.Open(File()));
    Save(store, Info(kMonday, 5, "A, \"B\"", "A, B"));
    const QList<QByteArray> lines = store.Csv().split('\n');
    ASSERT_EQ(lines.size(), 3);  // header, one session, the empty end
    EXPECT_TRUE(lines[0].startsWith("id,started,seconds,wpm"));
    EXPECT_TRUE(lines[1].endsWith(",\"A, \"\"B\"\"\",\"A, B\"")) << lines[1].toStdString();
    EXPECT_TRUE(lines[1].contains(",20,2,700,5,")) << lines[1].toStdString();
}

TEST_F(HistoryStore, UpgradesTheFirstSchemaInPlace) {
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), "old");
        db.setDatabaseName(File());
        ASSERT_TRUE(db.open());
        QSqlQuery query(db);
        for (const char* statement :
             {"CREATE TABLE sessions(id INTEGER PRIMARY KEY, started INTEGER NOT NULL,"
              " day TEXT NOT NULL, seconds REAL NOT NULL, wpm INTEGER NOT NULL,"
              " lesson INTEGER NOT NULL, sent TEXT NOT NULL, copied TEXT NOT NULL,"
              " sent_count INTEGER NOT NULL, correct INTEGER NOT NULL, accuracy REAL NOT NULL)",
              "CREATE TABLE characters(session INTEGER NOT NULL, character TEXT NOT NULL,"
              " sent INTEGER NOT NULL, correct INTEGER NOT NULL)",
              "INSERT INTO sessions VALUES(1, 1763000000000, '2025-11-13', 90, 18, 7,"
              " 'KMRS', 'KMR', 4, 3, 75.0)",
              "INSERT INTO characters VALUES(1, 'S', 1, 0)", "PRAGMA user_version = 1"}) {
            ASSERT_TRUE(query.exec(QString::fromLatin1(statement))) << statement;
        }
        db.close();
    }
    QSqlDatabase::removeDatabase("old");

    CHistoryStore store;
    ASSERT_TRUE(store.Open(File())) << store.ErrorText().toStdString();
    std::vector<StoredSession> sessions = store.Sessions();
    ASSERT_EQ(sessions.size(), 1u);
    EXPECT_EQ(sessions[0].info.copied, QStringLiteral("KMR"));
    EXPECT_EQ(sessions[0].missed, 1);
    EXPECT_EQ(store.LessonReached(), 7);
    EXPECT_EQ(store.RecentCharacters().at('S').sent, 1);
    ASSERT_GT(Save(store, Info(kMonday, 8, "H", "5")), 0);
    EXPECT_EQ(store.MostConfused().size(), 1u);
    store.Close();

    CHistoryStore again;  // upgraded once: opens as it is
    ASSERT_TRUE(again.Open(File()));
    EXPECT_EQ(again.Sessions().size(), 2u);
}

TEST_F(HistoryStore, CorruptOrNewerFilesTurnHistoryOffAndAreKept) {
    // A history whose pages after the first were overwritten: it opens, and the first query
    // that reaches them finds the damage.
    QByteArray damaged;
    {
        CHistoryStore store;
        ASSERT_TRUE(store.Open(File()));
        for (int i = 0; i < 20; ++i) {
            Save(store, Info(kMonday.addDays(i)));
        }
        store.Close();
        QFile file(File());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        damaged = file.readAll();
        ASSERT_GT(damaged.size(), 8192);
        damaged.replace(4096, damaged.size() - 4096, QByteArray(damaged.size() - 4096, '\x5a'));
    }
    const std::pair<const char*, QByteArray> cases[] = {
        {"not a database", QByteArray(4096, 'x')},
        {"damaged pages", damaged},
    };
    for (const auto& [name, content] : cases) {
        SCOPED_TRACE(name);
        QFile file(File());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
        file.close();

        CHistoryStore store;
        store.Open(File());
        EXPECT_TRUE(store.Sessions().empty());
        EXPECT_FALSE(store.IsOpen());
        EXPECT_TRUE(store.ErrorText().contains(QLatin1String("is damaged; it was kept as")))
            << store.ErrorText().toStdString();
        QFile aside(store.SetAsidePath());
        ASSERT_TRUE(aside.open(QIODevice::ReadOnly));
        EXPECT_EQ(aside.readAll(), content);
        EXPECT_FALSE(QFile::exists(File()));
        EXPECT_EQ(Save(store, Info(kMonday)), 0);
        EXPECT_TRUE(store.ErrorText().startsWith(QStringLiteral("The session was not saved")));

        CHistoryStore fresh;  // the next start begins a new history
        EXPECT_TRUE(fresh.Open(File()));
    }

    {
        CHistoryStore store;
        ASSERT_TRUE(store.Open(File()));
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), "newer");
        db.setDatabaseName(File());
        ASSERT_TRUE(db.open());
        QSqlQuery(db).exec(QStringLiteral("PRAGMA user_version = 99"));
        db.close();
    }
    QSqlDatabase::removeDatabase("newer");
    CHistoryStore store;
    EXPECT_FALSE(store.Open(File()));
    EXPECT_TRUE(store.ErrorText().contains(QLatin1String("newer Tonwerk")))
        << store.ErrorText().toStdString();
    EXPECT_TRUE(QFile::exists(File()));
    EXPECT_TRUE(store.SetAsidePath().isEmpty());
}

TEST_F(HistoryStore, AFolderThatCannotBeMadeLeavesHistoryOff) {
    QFile blocker(m_folder.filePath(QStringLiteral("file")));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    CHistoryStore store;
    EXPECT_FALSE(store.Open(m_folder.filePath(QStringLiteral("file/history.sqlite"))));
    EXPECT_TRUE(store.ErrorText().contains(QLatin1String("cannot create the folder")));
    EXPECT_EQ(store.LessonReached(), 0);
    EXPECT_EQ(Save(store, Info(kMonday)), 0);
}

/// Runs check in a child process after prepare, which may limit it as the parent must not be.
bool InChildProcess(const std::function<bool()>& prepare, const std::function<bool()>& check) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(prepare() && check() ? 0 : 1);
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

/// Gives up root's rights, for which file permissions do not hold.
bool AsOrdinaryUser() {
    constexpr uid_t kNobody = 65534;
    return geteuid() != 0 || (setgid(kNobody) == 0 && setuid(kNobody) == 0);
}

TEST_F(HistoryStore, AReadOnlyFolderSavesNothingAndKeepsTheFile) {
    {
        CHistoryStore store;
        ASSERT_TRUE(store.Open(File()));
        ASSERT_GT(Save(store, Info(kMonday)), 0);
    }
    const QFile::Permissions readOnly = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther |
                                        QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
    ASSERT_TRUE(QFile::setPermissions(
        File(), readOnly & ~(QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther)));
    ASSERT_TRUE(QFile::setPermissions(m_folder.path(), readOnly));

    EXPECT_TRUE(InChildProcess(AsOrdinaryUser, [this] {
        // The file may open read-only or not at all; either way the session is refused whole
        // and the file is not taken for a damaged one.
        CHistoryStore store;
        store.Open(File());
        return store.SetAsidePath().isEmpty() && QFile::exists(File()) &&
               Save(store, Info(kMonday)) == 0 &&
               store.ErrorText().startsWith(QStringLiteral("The session was not saved"));
    }));

    QFile::setPermissions(m_folder.path(), readOnly | QFile::WriteOwner);
    QFile::setPermissions(File(), QFile::ReadOwner | QFile::WriteOwner);
    CHistoryStore store;
    ASSERT_TRUE(store.Open(File()));
    EXPECT_EQ(store.Sessions().size(), 1u);
}

TEST_F(HistoryStore, AFullDiskSavesNothingHalf) {
    {
        CHistoryStore store;
        ASSERT_TRUE(store.Open(File()));
        ASSERT_GT(Save(store, Info(kMonday)), 0);
    }
    // A session of every Koch character, each taken for another now and then.
    std::string sent;
    std::string copied;
    for (int i = 0; i < 3000; ++i) {
        const std::string_view order = "KMRSUAPTLOWI.NJEF0Y,VG5/Q9ZH38B?427C1D6X";
        sent += order[static_cast<std::size_t>(i) % order.size()];
        copied += order[static_cast<std::size_t>(i * 7 / 6) % order.size()];
    }
    CHistoryStore store;
    ASSERT_TRUE(store.Open(File()));
    // No file may grow past 24 KB: the log takes the first pages of the session, then the disk
    // is full.
    auto fillTheDisk = [] {
        constexpr rlim_t kRoom = 24576;
        const rlimit limit{kRoom, kRoom};
        std::signal(SIGXFSZ, SIG_IGN);
        return setrlimit(RLIMIT_FSIZE, &limit) == 0;
    };
    EXPECT_TRUE(InChildProcess(fillTheDisk, [&] {
        return Save(store, Info(kMonday, 5, sent.c_str(), copied.c_str())) == 0 &&
               store.ErrorText().startsWith(QStringLiteral("The session was not saved"));
    }));
    store.Close();

    ASSERT_TRUE(store.Open(File())) << store.ErrorText().toStdString();
    EXPECT_EQ(store.Sessions().size(), 1u);
    EXPECT_EQ(store.LessonReached(), 3);
}

TEST_F(HistoryStore, TwoWritersAtOnceLoseNoSession) {
    constexpr int kEach = 40;
    auto writer = [this](int lesson) {
        CHistoryStore store;
        int saved = 0;
        EXPECT_TRUE(store.Open(File())) << store.ErrorText().toStdString();
        if (store.IsOpen()) {
            for (int i = 0; i < kEach; ++i) {
                const bool ok = Save(store, Info(kMonday, lesson)) > 0;
                EXPECT_TRUE(ok) << store.ErrorText().toStdString();
                saved += ok ? 1 : 0;
            }
        }
        return saved;
    };
    int first = 0;
    int second = 0;
    std::thread a([&] { first = writer(1); });
    std::thread b([&] { second = writer(2); });
    a.join();
    b.join();
    EXPECT_EQ(first, kEach);
    EXPECT_EQ(second, kEach);
    CHistoryStore store;
    ASSERT_TRUE(store.Open(File()));
    EXPECT_EQ(store.Sessions().size(), 2u * kEach);
    EXPECT_EQ(store.Days().front().sessions, 2 * kEach);
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
