#include "UsageTracker.h"

#include "UsageAuditLog.h"

#include <EditingStatistics.h>
#include <MediaStatistics.h>
#include <Statistics.h>

#include <PubSub/PubSub.h>

#include <Settings/Settings.h>

#include <QFileInfo>

#include <glog/logging.h>

namespace {

const QString kLevelKey = QStringLiteral("UsageStatistics/level");

// The longest run of hexadecimal digits, dashes and braces not counted: UUIDs, machine ids
// and hashes all have one of 16 or more.
int longestHexRun(const QString& text)
{
    int longest = 0;
    int run = 0;
    for (const QChar c : text) {
        if (c == QLatin1Char('-') || c == QLatin1Char('{') || c == QLatin1Char('}'))
            continue;
        run = (c.isDigit() || (c.toLower() >= QLatin1Char('a') && c.toLower() <= QLatin1Char('f'))) ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    return longest;
}

// A word of twelve or more letters and digits with several digits in it: a serial number,
// an account or licence key.
bool hasSerialLikeWord(const QString& text)
{
    int length = 0;
    int digits = 0;
    for (int i = 0; i <= text.size(); ++i) {
        const QChar c = i < text.size() ? text.at(i) : QChar();
        if (c.isLetterOrNumber()) {
            ++length;
            digits += c.isDigit() ? 1 : 0;
            continue;
        }
        if (length >= 12 && digits >= 3)
            return true;
        length = digits = 0;
    }
    return false;
}

// Whether a text could be a path, an address or an identifier. Errs on the side of
// refusing: a lost parameter costs a statistic, a kept path costs the user's privacy.
bool looksPrivate(const QString& text)
{
    if (text.size() > 64)
        return true; // long free text can carry anything
    if (text.contains(QLatin1Char('/')) || text.contains(QLatin1Char('\\')) || text.contains(QLatin1Char('@'))
        || text.startsWith(QLatin1Char('~')))
        return true;
    if (text.size() >= 2 && text.at(0).isLetter() && text.at(1) == QLatin1Char(':'))
        return true; // a drive letter
    return longestHexRun(text) >= 16 || hasSerialLikeWord(text);
}

bool isPrivateName(const QString& name)
{
    static const char* const words[] = {"path", "file", "folder", "dir", "url", "uri", "uuid", "guid", "serial",
                                        "machine", "host", "user", "mail", "token", "account", "device", "address"};
    const QString lower = name.toLower();
    for (const char* word : words) {
        if (lower.contains(QLatin1String(word)))
            return true;
    }
    return lower == QLatin1String("id") || lower.endsWith(QLatin1String("_id")) || name.endsWith(QLatin1String("Id"))
        || name.endsWith(QLatin1String("ID"));
}

QString boolText(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

} // namespace

QString UsageTracker::levelName(Level level)
{
    switch (level) {
    case Level::Basic:
        return QStringLiteral("basic");
    case Level::Detailed:
        return QStringLiteral("detailed");
    case Level::Off:
        break;
    }
    return QStringLiteral("off");
}

std::optional<UsageTracker::Level> UsageTracker::levelFromName(const QString& name)
{
    for (Level level : {Level::Off, Level::Basic, Level::Detailed}) {
        if (name.compare(levelName(level), Qt::CaseInsensitive) == 0)
            return level;
    }
    return std::nullopt;
}

QString UsageTracker::defaultLogPath()
{
    // Beside the settings, which hold the user's consent: both are the user's and go together.
    return QFileInfo(Settings::fileName()).absolutePath() + QStringLiteral("/usage-log.jsonl");
}

UsageTracker::UsageTracker(const QString& logPath, QObject* parent)
    : QObject(parent), m_log(std::make_unique<UsageAuditLog>(logPath.isEmpty() ? defaultLogPath() : logPath))
{
    const QString stored = Settings::value(kLevelKey).toString();
    m_level = levelFromName(stored).value_or(Level::Off);
    connect(m_log.get(), &UsageAuditLog::historyLoaded, this, [this](const QList<Record>& records) {
        m_history = records + m_history;
        while (m_history.size() > kKeptInMemory)
            m_history.removeFirst();
    });
    subscribeLibraryMessages();
}

UsageTracker::~UsageTracker() = default;

template <class Message>
void UsageTracker::track(std::function<Record(const Message&)> describe)
{
    m_subscriptions.push_back(std::make_unique<PubSub::Subscription<Message>>(
        Statistics::globalObject(), [this, describe = std::move(describe)](const Message& message) {
            if (m_level == Level::Off)
                return; // before consent a message costs one comparison
            const Record record = describe(message);
            this->record(record.event, record.source, record.params);
        }));
}

// Every statistics message the library publishes. A new message type is one more line here.
void UsageTracker::subscribeLibraryMessages()
{
    track<Statistics::InteractionNotification>([](const auto& m) { return Record{{}, m.event, m.source, m.params}; });
    track<Statistics::CodecsFailed>([](const auto& m) {
        return Record{{}, QStringLiteral("codecsFailed"), QStringLiteral("mediaIntake"),
                      {{QStringLiteral("extension"), m.extension}, {QStringLiteral("codecs"), m.codecs.join(QLatin1Char(','))}}};
    });
    track<Statistics::DeleteFailedFilesEventNotification>([](const auto& m) {
        return Record{{}, QStringLiteral("failedFilesAnswered"), QStringLiteral("mediaIntake"),
                      {{QStringLiteral("deletionOffered"), boolText(m.deletionOffered)},
                       {QStringLiteral("deletionChosen"), boolText(m.deletionChosen)}}};
    });
    track<Statistics::ClipsAddedNotification>([](const auto& m) {
        return Record{{}, QStringLiteral("clipsAdded"), QStringLiteral("timeline"),
                      {{QStringLiteral("method"), QString::number(int(m.method))}, {QStringLiteral("clips"), QString::number(m.clips)}}};
    });
    track<Statistics::FilesAddedNotification>([](const auto& m) {
        return Record{{}, QStringLiteral("filesAdded"), QStringLiteral("mediaIntake"),
                      {{QStringLiteral("addingSource"), QString::number(m.source)}, {QStringLiteral("files"), QString::number(m.files)}}};
    });
    track<Statistics::CollectionInteractionNotification>([](const auto& m) {
        return Record{{}, QStringLiteral("collectionItemUsed"), m.collection,
                      {{QStringLiteral("kind"), QString::number(int(m.kind))}, {QStringLiteral("item"), m.item}}};
    });
    track<Statistics::AdjustProjectAspectSuggestedNotification>([](const auto& m) {
        return Record{{}, QStringLiteral("aspectSuggested"), QStringLiteral("timeline"),
                      {{QStringLiteral("accepted"), boolText(m.accepted)},
                       {QStringLiteral("aspect"), QStringLiteral("%1:%2").arg(m.aspect.numerator()).arg(m.aspect.denominator())}}};
    });
}

void UsageTracker::setLevel(Level level, bool persist)
{
    if (persist)
        Settings::setValue(kLevelKey, levelName(level));
    if (level == m_level)
        return;
    m_level = level;
    LOG(INFO) << "statistics: usage level " << levelName(level).toStdString() << (persist ? "" : " (this run only)");
}

bool UsageTracker::sanitize(QString& event, QString& source, QMap<QString, QString>& params)
{
    if (event.isEmpty() || looksPrivate(event) || looksPrivate(source))
        return false;
    for (auto it = params.begin(); it != params.end();) {
        if (isPrivateName(it.key()) || looksPrivate(it.key()) || looksPrivate(it.value()))
            it = params.erase(it);
        else
            ++it;
    }
    return true;
}

bool UsageTracker::record(const QString& event, const QString& source, const QMap<QString, QString>& params)
{
    if (m_level == Level::Off)
        return false;
    Record record{QDateTime::currentDateTimeUtc(), event, source, {}};
    if (m_level == Level::Detailed)
        record.params = params;
    if (!sanitize(record.event, record.source, record.params)) {
        ++m_refused;
        if (!m_refusalLogged) // the text itself is what must not be written anywhere
            LOG(WARNING) << "statistics: refused an event that looked like a path or an identifier";
        m_refusalLogged = true;
        return false;
    }
    LOG(INFO) << "statistics: " << record.event.toStdString() << ' ' << record.source.toStdString();
    keep(record);
    m_log->append(record);
    emit recorded(record);
    return true;
}

void UsageTracker::keep(const Record& record)
{
    m_session.append(record);
    if (m_session.size() > kKeptInMemory)
        m_session.removeFirst();
}

QList<UsageTracker::Record> UsageTracker::records() const
{
    QList<Record> all = m_history + m_session;
    while (all.size() > kKeptInMemory)
        all.removeFirst();
    return all;
}

QString UsageTracker::logPath() const
{
    return m_log->path();
}

bool UsageTracker::isLogHealthy() const
{
    return m_log->isHealthy();
}

void UsageTracker::flush()
{
    m_log->flush();
}

void UsageTracker::clearRecords()
{
    m_log->clear();
    m_history.clear();
    m_session.clear();
}
