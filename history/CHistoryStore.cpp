// SPDX-License-Identifier: GPL-3.0-or-later
#include "history/CHistoryStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QVariant>

#include <atomic>
#include <initializer_list>

namespace {

constexpr int kBusyTimeoutMs = 5000;
constexpr double kCharactersPerWord = 5.0;

/// Whether SQLite found the file damaged or not a database at all.
bool IsDamage(const QSqlError& error) {
    const QString code = error.nativeErrorCode();
    return code == QStringLiteral("11") || code == QStringLiteral("26");
}

// The first schema: sessions and their per-character counts.
constexpr const char* kSchemaVersion1[] = {
    "CREATE TABLE sessions(id INTEGER PRIMARY KEY, started INTEGER NOT NULL, day TEXT NOT NULL,"
    " seconds REAL NOT NULL, wpm INTEGER NOT NULL, lesson INTEGER NOT NULL, sent TEXT NOT NULL,"
    " copied TEXT NOT NULL, sent_count INTEGER NOT NULL, correct INTEGER NOT NULL,"
    " accuracy REAL NOT NULL)",
    "CREATE TABLE characters(session INTEGER NOT NULL REFERENCES sessions(id) ON DELETE CASCADE,"
    " character TEXT NOT NULL, sent INTEGER NOT NULL, correct INTEGER NOT NULL)",
    "CREATE INDEX sessions_started ON sessions(started)",
};
// Version 2: Farnsworth and pitch, the kinds of error and what a character was taken for.
constexpr const char* kSchemaVersion2[] = {
    "ALTER TABLE sessions ADD COLUMN farnsworth INTEGER NOT NULL DEFAULT 0",
    "ALTER TABLE sessions ADD COLUMN pitch INTEGER NOT NULL DEFAULT 0",
    "ALTER TABLE sessions ADD COLUMN wrong INTEGER NOT NULL DEFAULT 0",
    "ALTER TABLE sessions ADD COLUMN missed INTEGER NOT NULL DEFAULT 0",
    "ALTER TABLE sessions ADD COLUMN extra INTEGER NOT NULL DEFAULT 0",
    // Version 1 did not tell wrong from missed: what was not right counts as missed.
    "UPDATE sessions SET missed = sent_count - correct",
    "CREATE TABLE confusions(session INTEGER NOT NULL REFERENCES sessions(id) ON DELETE CASCADE,"
    " sent TEXT NOT NULL, taken TEXT NOT NULL, count INTEGER NOT NULL)",
    // Totals the progress window reads without going through every session.
    "CREATE TABLE confusion_totals(sent TEXT NOT NULL, taken TEXT NOT NULL,"
    " count INTEGER NOT NULL, PRIMARY KEY(sent, taken)) WITHOUT ROWID",
    "CREATE INDEX characters_session ON characters(session)",
    "CREATE INDEX sessions_day ON sessions(day, correct, sent_count, extra, seconds)",
    "CREATE INDEX sessions_lesson ON sessions(lesson)",
};

QString CsvField(QString text) {
    if (text.contains(u',') || text.contains(u'"') || text.contains(u'\n') ||
        text.contains(u'\r')) {
        text.replace(u'"', QStringLiteral("\"\""));
        return u'"' + text + u'"';
    }
    return text;
}

}  // namespace

struct CHistoryStore::Private {
    QString connection;
    QString path;
    QString error;
    QString setAside;
    bool open = false;

    QSqlDatabase Database() const { return QSqlDatabase::database(connection, false); }

    /// Runs statements one after the other; false at the first that fails, with its error.
    bool Exec(std::initializer_list<QString> statements, QSqlError* failure = nullptr) {
        QSqlQuery query(Database());
        for (const QString& statement : statements) {
            if (!query.exec(statement)) {
                if (failure) {
                    *failure = query.lastError();
                }
                return false;
            }
        }
        return true;
    }

    /// A read-only query run with its one bound value, if any; nothing to step through when
    /// history is off or the query fails. Pass it to Done() after its last row.
    QSqlQuery Select(const char* sql, const QVariant& value = {}) {
        if (!open) {
            return QSqlQuery();
        }
        QSqlQuery query(Database());
        query.setForwardOnly(true);
        query.prepare(QString::fromLatin1(sql));
        if (value.isValid()) {
            query.addBindValue(value);
        }
        query.exec();
        Done(query);
        return query;
    }

    /// Damage may show only when a query reaches the damaged pages: then history goes off.
    void Done(QSqlQuery& query) {
        if (IsDamage(query.lastError())) {
            query = QSqlQuery();
            Damaged();
        }
    }

    /// Closes the database, moves the damaged file aside and says so.
    void Damaged() {
        Disconnect();
        SetAside();
        const QString where = setAside.isEmpty()
                                  ? QStringLiteral("it could not be moved aside")
                                  : QStringLiteral("it was kept as %1").arg(setAside);
        error = QStringLiteral("History is off: the practice history %1 is damaged; %2.")
                    .arg(path, where);
    }

    void Disconnect() {
        open = false;
        if (QSqlDatabase::contains(connection)) {
            QSqlDatabase::database(connection, false).close();
            QSqlDatabase::removeDatabase(connection);
        }
    }

    /// Creates the schema or brings an older one up to kSchemaVersion, in one transaction.
    bool CreateOrUpgrade(QSqlError& failure);
    void SetAside();
};

bool CHistoryStore::Private::CreateOrUpgrade(QSqlError& failure) {
    QSqlQuery query(Database());
    auto run = [&](const auto& statements) {
        for (const char* statement : statements) {
            if (!query.exec(QString::fromLatin1(statement))) {
                failure = query.lastError();
                return false;
            }
        }
        return true;
    };
    // Another trainer may have created or upgraded the schema while this one waited for the lock.
    if (!query.exec(QStringLiteral("BEGIN IMMEDIATE")) ||
        !query.exec(QStringLiteral("PRAGMA user_version")) || !query.next()) {
        failure = query.lastError();
        query.exec(QStringLiteral("ROLLBACK"));
        return false;
    }
    const int version = query.value(0).toInt();
    if (version >= kSchemaVersion) {
        query.exec(QStringLiteral("ROLLBACK"));
        return version == kSchemaVersion;
    }
    const bool done = (version >= 1 || run(kSchemaVersion1)) &&
                      (version >= 2 || run(kSchemaVersion2)) &&
                      query.exec(QStringLiteral("PRAGMA user_version = %1").arg(kSchemaVersion)) &&
                      query.exec(QStringLiteral("COMMIT"));
    if (!done) {
        if (!failure.isValid()) {
            failure = query.lastError();
        }
        query.exec(QStringLiteral("ROLLBACK"));
    }
    return done;
}

void CHistoryStore::Private::SetAside() {
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString target = path + QStringLiteral(".corrupt-") + stamp;
    for (int n = 2; QFileInfo::exists(target); ++n) {
        target = path + QStringLiteral(".corrupt-") + stamp + u'-' + QString::number(n);
    }
    if (QFile::rename(path, target)) {
        setAside = target;
        for (const char* companion : {"-wal", "-shm"}) {
            QFile::rename(path + QLatin1String(companion), target + QLatin1String(companion));
        }
    }
}

CHistoryStore::CHistoryStore() : d(std::make_unique<Private>()) {
    static std::atomic<int> s_connections{0};
    d->connection = QStringLiteral("tonwerk-history-%1").arg(++s_connections);
}

CHistoryStore::~CHistoryStore() {
    Close();
}

QString CHistoryStore::DefaultPath() {
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) +
           QStringLiteral("/history.sqlite");
}

bool CHistoryStore::Open(const QString& path) {
    Close();
    d->path = path.isEmpty() ? DefaultPath() : path;
    d->error.clear();
    d->setAside.clear();
    auto fail = [&](const QString& why) {
        d->error = QStringLiteral("History is off: %1").arg(why);
        Close();
        return false;
    };

    const QString folder = QFileInfo(d->path).absolutePath();
    if (!QDir().mkpath(folder)) {
        return fail(QStringLiteral("cannot create the folder %1.").arg(folder));
    }
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), d->connection);
        if (!db.isValid()) {
            return fail(
                QStringLiteral("the SQLite driver of Qt SQL is missing (libqt6sql6-sqlite)."));
        }
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(kBusyTimeoutMs));
        db.setDatabaseName(d->path);
        if (!db.open()) {
            return fail(QStringLiteral("cannot open %1: %2.").arg(d->path, db.lastError().text()));
        }
    }

    // The header and the schema page: a file that is no database fails here. Damage further
    // in shows when a query reaches it (a full check would cost as much as reading everything).
    QSqlError failure;
    int version = -1;
    {
        QSqlQuery query(d->Database());
        if (query.exec(QStringLiteral("SELECT COUNT(*) FROM sqlite_master")) && query.next() &&
            query.exec(QStringLiteral("PRAGMA user_version")) && query.next()) {
            version = query.value(0).toInt();
        } else {
            failure = query.lastError();
        }
    }
    if (IsDamage(failure)) {
        d->Damaged();
        return false;
    }
    if (version < 0) {
        return fail(QStringLiteral("cannot read %1: %2.").arg(d->path, failure.text()));
    }
    if (version > kSchemaVersion) {
        return fail(QStringLiteral("%1 was written by a newer Tonwerk (schema %2, this one reads "
                                   "up to %3).")
                        .arg(d->path)
                        .arg(version)
                        .arg(kSchemaVersion));
    }
    if (!d->Exec({QStringLiteral("PRAGMA journal_mode = WAL"),
                  QStringLiteral("PRAGMA synchronous = NORMAL"),
                  QStringLiteral("PRAGMA foreign_keys = ON"),
                  QStringLiteral("PRAGMA busy_timeout = %1").arg(kBusyTimeoutMs),
                  // Folding the log into the file syncs the disk: done on closing, never inside
                  // a save, which so stays a few milliseconds.
                  QStringLiteral("PRAGMA wal_autocheckpoint = 0")},
                 &failure) ||
        (version < kSchemaVersion && !d->CreateOrUpgrade(failure))) {
        return fail(QStringLiteral("cannot prepare %1: %2.").arg(d->path, failure.text()));
    }
    d->open = true;
    return true;
}

void CHistoryStore::Close() {
    if (d->open) {
        d->Exec({QStringLiteral("PRAGMA wal_checkpoint(PASSIVE)")});
    }
    d->Disconnect();
}

bool CHistoryStore::IsOpen() const {
    return d->open;
}

QString CHistoryStore::Path() const {
    return d->path;
}

QString CHistoryStore::ErrorText() const {
    return d->error;
}

QString CHistoryStore::SetAsidePath() const {
    return d->setAside;
}

qint64 CHistoryStore::Save(const CopySessionInfo& info, const CopyScore& score) {
    if (!d->open) {
        d->error = QStringLiteral("The session was not saved: history is off.");
        return 0;
    }
    QSqlQuery query(d->Database());
    QSqlQuery totals(d->Database());
    auto failed = [&](const QSqlQuery& failing) {
        const QSqlError error = failing.lastError();
        query.exec(QStringLiteral("ROLLBACK"));
        if (IsDamage(error)) {
            query = QSqlQuery();
            totals = QSqlQuery();
            d->Damaged();
            d->error = QStringLiteral("The session was not saved: %1").arg(d->error);
        } else {
            d->error = QStringLiteral("The session was not saved: %1.").arg(error.text());
        }
        return 0;
    };
    if (!query.exec(QStringLiteral("BEGIN IMMEDIATE"))) {
        return failed(query);
    }
    query.prepare(QStringLiteral(
        "INSERT INTO sessions(started, day, seconds, wpm, farnsworth, pitch, lesson, sent, "
        "copied, sent_count, correct, wrong, missed, extra, accuracy) "
        "VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    const QDateTime started = info.started.isValid() ? info.started : QDateTime::currentDateTime();
    for (const QVariant& value :
         {QVariant(started.toMSecsSinceEpoch()),
          QVariant(started.toLocalTime().date().toString(Qt::ISODate)), QVariant(info.seconds),
          QVariant(info.wpm), QVariant(info.farnsworth), QVariant(info.pitch),
          QVariant(info.lesson), QVariant(info.sent), QVariant(info.copied),
          QVariant(score.sentCount), QVariant(score.correct), QVariant(score.wrong),
          QVariant(score.missed), QVariant(score.extra), QVariant(score.Accuracy())}) {
        query.addBindValue(value);
    }
    if (!query.exec()) {
        return failed(query);
    }
    const qint64 id = query.lastInsertId().toLongLong();

    query.prepare(QStringLiteral(
        "INSERT INTO characters(session, character, sent, correct) VALUES(?, ?, ?, ?)"));
    for (const auto& [character, tally] : score.characters) {
        query.addBindValue(id);
        query.addBindValue(QString(QLatin1Char(character)));
        query.addBindValue(tally.sent);
        query.addBindValue(tally.correct);
        if (!query.exec()) {
            return failed(query);
        }
    }
    query.prepare(
        QStringLiteral("INSERT INTO confusions(session, sent, taken, count) VALUES(?, ?, ?, ?)"));
    totals.prepare(
        QStringLiteral("INSERT INTO confusion_totals(sent, taken, count) VALUES(?, ?, ?) "
                       "ON CONFLICT(sent, taken) DO UPDATE SET count = count + excluded.count"));
    for (const auto& [pair, count] : score.confusions) {
        const QString sent(QLatin1Char(pair.first));
        const QString taken(QLatin1Char(pair.second));
        query.addBindValue(id);
        query.addBindValue(sent);
        query.addBindValue(taken);
        query.addBindValue(count);
        totals.addBindValue(sent);
        totals.addBindValue(taken);
        totals.addBindValue(count);
        if (!query.exec()) {
            return failed(query);
        }
        if (!totals.exec()) {
            return failed(totals);
        }
    }
    if (!query.exec(QStringLiteral("COMMIT"))) {
        return failed(query);
    }
    d->error.clear();
    return id;
}

std::vector<StoredSession> CHistoryStore::Sessions(int limit) const {
    std::vector<StoredSession> sessions;
    QSqlQuery query = d->Select(
        "SELECT id, started, seconds, wpm, farnsworth, pitch, lesson, sent, copied, sent_count, "
        "correct, wrong, missed, extra, accuracy FROM sessions ORDER BY started DESC, id DESC "
        "LIMIT ?",
        limit);
    while (query.next()) {
        StoredSession s;
        s.id = query.value(0).toLongLong();
        s.info.started = QDateTime::fromMSecsSinceEpoch(query.value(1).toLongLong());
        s.info.seconds = query.value(2).toDouble();
        s.info.wpm = query.value(3).toInt();
        s.info.farnsworth = query.value(4).toInt();
        s.info.pitch = query.value(5).toInt();
        s.info.lesson = query.value(6).toInt();
        s.info.sent = query.value(7).toString();
        s.info.copied = query.value(8).toString();
        s.sentCount = query.value(9).toInt();
        s.correct = query.value(10).toInt();
        s.wrong = query.value(11).toInt();
        s.missed = query.value(12).toInt();
        s.extra = query.value(13).toInt();
        s.accuracy = query.value(14).toDouble();
        s.effectiveWpm =
            s.info.seconds > 0 ? s.correct * 60.0 / s.info.seconds / kCharactersPerWord : 0.0;
        sessions.push_back(std::move(s));
    }
    d->Done(query);
    return sessions;
}

std::vector<PracticeDay> CHistoryStore::Days() const {
    std::vector<PracticeDay> days;
    QSqlQuery query = d->Select(
        "SELECT day, SUM(correct), SUM(sent_count + extra), SUM(seconds), COUNT(*) "
        "FROM sessions GROUP BY day ORDER BY day");
    while (query.next()) {
        PracticeDay day;
        day.day = QDate::fromString(query.value(0).toString(), Qt::ISODate);
        const double correct = query.value(1).toDouble();
        const double judged = query.value(2).toDouble();
        const double seconds = query.value(3).toDouble();
        day.accuracy = judged > 0 ? 100.0 * correct / judged : 0.0;
        day.effectiveWpm = seconds > 0 ? correct * 60.0 / seconds / kCharactersPerWord : 0.0;
        day.minutes = seconds / 60.0;
        day.sessions = query.value(4).toInt();
        days.push_back(day);
    }
    d->Done(query);
    return days;
}

std::map<char, CharacterTally> CHistoryStore::RecentCharacters(int sessions) const {
    std::map<char, CharacterTally> characters;
    QSqlQuery query = d->Select(
        "SELECT character, SUM(sent), SUM(correct) FROM characters WHERE session IN "
        "(SELECT id FROM sessions ORDER BY started DESC, id DESC LIMIT ?) GROUP BY character",
        sessions);
    while (query.next()) {
        const QString character = query.value(0).toString();
        if (character.size() == 1) {
            characters[character.at(0).toLatin1()] = {query.value(1).toInt(),
                                                      query.value(2).toInt()};
        }
    }
    d->Done(query);
    return characters;
}

std::vector<Confusion> CHistoryStore::MostConfused(int limit) const {
    std::vector<Confusion> confusions;
    QSqlQuery query = d->Select(
        "SELECT sent, taken, count FROM confusion_totals ORDER BY count DESC, sent, taken LIMIT ?",
        limit);
    while (query.next()) {
        const QString sent = query.value(0).toString();
        const QString taken = query.value(1).toString();
        if (sent.size() == 1 && taken.size() == 1) {
            confusions.push_back(
                {sent.at(0).toLatin1(), taken.at(0).toLatin1(), query.value(2).toInt()});
        }
    }
    d->Done(query);
    return confusions;
}

int CHistoryStore::LessonReached() const {
    QSqlQuery query = d->Select("SELECT MAX(lesson) FROM sessions");
    return query.next() ? query.value(0).toInt() : 0;
}

int CHistoryStore::Streak(const QDate& today) const {
    QSqlQuery query =
        d->Select("SELECT DISTINCT day FROM sessions WHERE day <= ? ORDER BY day DESC",
                  today.toString(Qt::ISODate));
    int streak = 0;
    QDate expected = today;
    while (query.next()) {
        const QDate day = QDate::fromString(query.value(0).toString(), Qt::ISODate);
        if (streak == 0 && day == today.addDays(-1)) {
            expected = day;  // not practised yet today: yesterday's streak still stands
        }
        if (day != expected) {
            break;
        }
        ++streak;
        expected = day.addDays(-1);
    }
    d->Done(query);
    return streak;
}

QByteArray CHistoryStore::Csv() const {
    QString csv = QStringLiteral(
        "id,started,seconds,wpm,farnsworth,pitch,lesson,characters,correct,wrong,missed,extra,"
        "accuracy,effective_wpm,sent,copied\n");
    std::vector<StoredSession> sessions = Sessions();
    for (auto it = sessions.rbegin(); it != sessions.rend(); ++it) {
        const StoredSession& s = *it;
        csv += QStringLiteral("%1,%2,%3,%4,%5,%6,%7,%8,%9,")
                   .arg(s.id)
                   .arg(s.info.started.toOffsetFromUtc(s.info.started.offsetFromUtc())
                            .toString(Qt::ISODate))
                   .arg(s.info.seconds, 0, 'f', 1)
                   .arg(s.info.wpm)
                   .arg(s.info.farnsworth)
                   .arg(s.info.pitch)
                   .arg(s.info.lesson)
                   .arg(s.sentCount)
                   .arg(s.correct);
        csv += QStringLiteral("%1,%2,%3,%4,%5,%6,%7\n")
                   .arg(s.wrong)
                   .arg(s.missed)
                   .arg(s.extra)
                   .arg(s.accuracy, 0, 'f', 1)
                   .arg(s.effectiveWpm, 0, 'f', 1)
                   .arg(CsvField(s.info.sent), CsvField(s.info.copied));
    }
    return csv.toUtf8();
}
