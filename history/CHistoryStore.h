// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QString>

#include <map>
#include <memory>
#include <vector>

#include "training/CopyScore.h"

/// What a checked session was besides its score.
struct CopySessionInfo {
    QDateTime started;   ///< when Listen was pressed; now when not set
    double seconds = 0;  ///< how long the run lasted
    int wpm = 0;         ///< words per minute sent
    int farnsworth = 0;  ///< Farnsworth factor, 0 for none
    int pitch = 0;       ///< tone in Hz
    int lesson = 0;      ///< Koch lesson, 0 outside the course
    QString sent;        ///< the practice text sent
    QString copied;      ///< what the learner typed
};

/// One stored session as the lists show it.
struct StoredSession {
    qint64 id = 0;
    CopySessionInfo info;
    int sentCount = 0;
    int correct = 0;
    int wrong = 0;
    int missed = 0;
    int extra = 0;
    double accuracy = 0;      ///< percent
    double effectiveWpm = 0;  ///< characters copied right per minute / 5
};

/// Totals of one local calendar day.
struct PracticeDay {
    QDate day;
    double accuracy = 0;      ///< percent over all of the day's characters
    double effectiveWpm = 0;  ///< the day's right characters per minute practised / 5
    double minutes = 0;
    int sessions = 0;
};

/// A character taken for another, and how often.
struct Confusion {
    char sent = 0;
    char takenFor = 0;
    int count = 0;
};

/// The practice history: every checked session in a local SQLite database (WAL mode, a busy
/// timeout, one transaction per session), so two running trainers share it safely. When the
/// database cannot be opened the store stays closed, says why once in ErrorText(), and every
/// query answers empty. A damaged file, found on opening or by any later query or save, is moved
/// aside under a new name (never deleted) and history goes off: check IsOpen() after a query.
/// One store is used from one thread.
class CHistoryStore {
public:
    /// The schema this build writes (PRAGMA user_version); older ones are upgraded in place.
    static constexpr int kSchemaVersion = 2;

    CHistoryStore();
    ~CHistoryStore();
    CHistoryStore(const CHistoryStore&) = delete;
    CHistoryStore& operator=(const CHistoryStore&) = delete;

    /// history.sqlite in the application data folder (QStandardPaths::AppDataLocation).
    static QString DefaultPath();

    /// Opens (creating if needed) the database at path, or at DefaultPath() when path is empty.
    /// False with ErrorText() set when history is off for this run.
    bool Open(const QString& path = {});
    void Close();
    bool IsOpen() const;
    QString Path() const;

    /// The last failure as one sentence for the user; empty after success.
    QString ErrorText() const;
    /// Where a corrupt database was moved, empty when none was.
    QString SetAsidePath() const;

    /// Stores one session with its per-character counts and confusions, all or nothing. Returns
    /// the new id, or 0 with ErrorText() ("The session was not saved: ...").
    qint64 Save(const CopySessionInfo& info, const CopyScore& score);

    /// Sessions, newest first; limit < 0 for all.
    std::vector<StoredSession> Sessions(int limit = -1) const;
    /// One row per day practised, oldest first.
    std::vector<PracticeDay> Days() const;
    /// Per character, the counts over the newest `sessions` sessions.
    std::map<char, CharacterTally> RecentCharacters(int sessions = 50) const;
    /// The most frequent confusions, most frequent first.
    std::vector<Confusion> MostConfused(int limit = 10) const;
    /// The highest Koch lesson practised, 0 for none.
    int LessonReached() const;
    /// Days in a row practised up to today (a streak still counts until today is over, when
    /// the last practice was yesterday).
    int Streak(const QDate& today = QDate::currentDate()) const;
    /// All sessions as CSV (a header line, then one line per session, oldest first).
    QByteArray Csv() const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
