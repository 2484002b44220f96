#pragma once

#include "UsageTracker.h"

#include <QMutex>
#include <QObject>
#include <QThread>
#include <QWaitCondition>

#include <atomic>
#include <memory>
#include <vector>

// The local audit log of the usage tracker: one JSON object a line, appended in batches by
// a worker thread. The GUI thread only queues a record (a lock and, for the first record
// of a batch, one posted event), so a slow or full disk never holds up a click.
//
// An unwritable log, or one found damaged when it is read, is reported once; from then on
// nothing more is written to it and the tracker keeps its records in memory. clear()
// deletes the log and starts a fresh one, which also recovers from damage.
class UsageAuditLog : public QObject
{
    Q_OBJECT
public:
    explicit UsageAuditLog(const QString& path, QObject* parent = nullptr);
    ~UsageAuditLog() override; // writes what is queued, then ends the worker

    QString path() const { return m_path; }
    bool isHealthy() const { return m_healthy.load(); }

    void append(const UsageTracker::Record& record);
    void flush();
    void clear();

    // One line of the log, and back (false for a line that is not a record).
    static QByteArray toLine(const UsageTracker::Record& record);
    static bool fromLine(const QByteArray& line, UsageTracker::Record* record);

signals:
    // The records of earlier sessions, read once at start on the worker (the newest kept).
    void historyLoaded(const QList<UsageTracker::Record>& records);

private:
    void load();         // worker thread
    void writePending(); // worker thread
    void fail(const QString& why);

    const QString m_path;
    QThread m_thread;
    QObject* m_worker; // lives on m_thread; its queued calls run there
    std::unique_ptr<class QFile> m_file; // worker thread only
    std::atomic<bool> m_healthy{true};
    bool m_failureLogged = false; // worker thread only

    QMutex m_mutex;
    QWaitCondition m_written;
    std::vector<UsageTracker::Record> m_pending;
    bool m_writePosted = false;
    quint64 m_appendedCount = 0;
    quint64 m_settledCount = 0; // written, or given up on
};
