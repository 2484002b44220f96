#pragma once

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace PubSub {
namespace Details {
class SubscriberBase;
}
} // namespace PubSub

class UsageAuditLog;

// The host's usage-statistics tracker. It listens to the library's statistics messages on
// the bus and records them, on this computer only, after the user has agreed: nothing is
// recorded at level Off, which is where every user starts. Each record goes to a local
// audit log (one JSON object a line) written on a worker thread, so the GUI thread pays a
// constant, small price per message whatever the disk does.
//
// A record never holds a file path or anything that could identify the user or the
// machine: parameters that look like one are dropped, events that look like one are
// refused (see sanitize()).
class UsageTracker : public QObject
{
    Q_OBJECT
public:
    enum class Level {
        Off,      // nothing is recorded
        Basic,    // which commands are used: event and where it came from
        Detailed, // ...and their parameters (formats, counts, choices)
    };
    static QString levelName(Level level); // "off", "basic", "detailed"
    static std::optional<Level> levelFromName(const QString& name);

    struct Record
    {
        QDateTime time; // UTC
        QString event;
        QString source;
        QMap<QString, QString> params;
    };

    // `logPath` is the audit log; empty for the default beside the settings file.
    explicit UsageTracker(const QString& logPath = QString(), QObject* parent = nullptr);
    ~UsageTracker() override;

    static QString defaultLogPath();

    // The level the user chose (settings key "UsageStatistics/level"), Off until they chose.
    Level level() const { return m_level; }
    // `persist` false: for this run only (a script's consent), the user's choice stays.
    void setLevel(Level level, bool persist = true);

    // Records one event at the current level; returns whether it was recorded.
    bool record(const QString& event, const QString& source, const QMap<QString, QString>& params = {});

    // Earlier sessions' records read from the log, then this session's (the newest kept).
    QList<Record> records() const;
    QString logPath() const;
    // False once the log could not be written or was found damaged: records stay in memory.
    bool isLogHealthy() const;
    int refusedCount() const { return m_refused; }
    // Deletes the log and forgets every record (Help > Usage Data offers it).
    void clearRecords();
    // Waits until every record so far has reached the log (or the log has failed).
    void flush();

    // Drops from `params` whatever could be a path or an identifier; false when the event
    // or its source itself looks like one (the record is then refused whole).
    static bool sanitize(QString& event, QString& source, QMap<QString, QString>& params);

    // How many records are kept in memory for the Usage Data window.
    static constexpr int kKeptInMemory = 5000;

signals:
    void recorded(const UsageTracker::Record& record);

private:
    // Subscribes to one more statistics message type of the bus; `describe` turns the
    // message into an event, a source and parameters (its `params` may be left empty).
    template <class Message>
    void track(std::function<Record(const Message&)> describe);
    void subscribeLibraryMessages();
    void keep(const Record& record);

    Level m_level = Level::Off;
    int m_refused = 0;
    bool m_refusalLogged = false;
    QList<Record> m_history;
    QList<Record> m_session;
    std::unique_ptr<UsageAuditLog> m_log;
    std::vector<std::unique_ptr<PubSub::Details::SubscriberBase>> m_subscriptions;
};
