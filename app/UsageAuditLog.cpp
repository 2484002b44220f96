#include "UsageAuditLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutexLocker>

#include <glog/logging.h>

UsageAuditLog::UsageAuditLog(const QString& path, QObject* parent)
    : QObject(parent), m_path(path), m_worker(new QObject)
{
    m_thread.setObjectName(QStringLiteral("usageLog"));
    m_worker->moveToThread(&m_thread);
    m_thread.start(QThread::LowPriority);
    QMetaObject::invokeMethod(m_worker, [this] { load(); }, Qt::QueuedConnection);
}

UsageAuditLog::~UsageAuditLog()
{
    flush();
    m_thread.quit();
    m_thread.wait();
    delete m_worker;
    m_file.reset();
}

QByteArray UsageAuditLog::toLine(const UsageTracker::Record& record)
{
    QJsonObject params;
    for (auto it = record.params.cbegin(); it != record.params.cend(); ++it)
        params.insert(it.key(), it.value());
    QJsonObject object{{QStringLiteral("time"), record.time.toUTC().toString(Qt::ISODateWithMs)},
                       {QStringLiteral("event"), record.event}};
    if (!record.source.isEmpty())
        object.insert(QStringLiteral("source"), record.source);
    if (!params.isEmpty())
        object.insert(QStringLiteral("params"), params);
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

bool UsageAuditLog::fromLine(const QByteArray& line, UsageTracker::Record* record)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(line, &error);
    const QJsonObject object = document.object();
    const QJsonValue event = object.value(QStringLiteral("event"));
    const QDateTime time = QDateTime::fromString(object.value(QStringLiteral("time")).toString(), Qt::ISODateWithMs);
    if (error.error != QJsonParseError::NoError || !event.isString() || event.toString().isEmpty() || !time.isValid())
        return false;
    record->time = time.toUTC();
    record->event = event.toString();
    record->source = object.value(QStringLiteral("source")).toString();
    record->params.clear();
    const QJsonObject params = object.value(QStringLiteral("params")).toObject();
    for (auto it = params.constBegin(); it != params.constEnd(); ++it)
        record->params.insert(it.key(), it.value().toString());
    return true;
}

void UsageAuditLog::append(const UsageTracker::Record& record)
{
    QMutexLocker lock(&m_mutex);
    m_pending.push_back(record);
    ++m_appendedCount;
    // One posted event per batch: the records queued meanwhile ride along with it.
    if (!m_writePosted) {
        m_writePosted = true;
        QMetaObject::invokeMethod(m_worker, [this] { writePending(); }, Qt::QueuedConnection);
    }
}

void UsageAuditLog::flush()
{
    QMutexLocker lock(&m_mutex);
    const quint64 target = m_appendedCount;
    while (m_settledCount < target)
        m_written.wait(&m_mutex);
}

void UsageAuditLog::clear()
{
    QMetaObject::invokeMethod(m_worker, [this] {
        writePending(); // what was queued before the clear goes with it
        m_file.reset();
        if (QFile::exists(m_path) && !QFile::remove(m_path)) {
            LOG(WARNING) << "statistics: cannot delete the usage log " << m_path.toStdString();
            return;
        }
        m_failureLogged = false;
        m_healthy = true;
        LOG(INFO) << "statistics: usage log cleared";
    }, Qt::BlockingQueuedConnection);
}

void UsageAuditLog::fail(const QString& why)
{
    m_healthy = false;
    m_file.reset();
    if (m_failureLogged)
        return;
    m_failureLogged = true;
    LOG(WARNING) << "statistics: " << why.toStdString() << "; recording goes on in memory";
}

void UsageAuditLog::load()
{
    QFile file(m_path);
    if (!file.exists())
        return;
    if (!file.open(QIODevice::ReadOnly)) {
        fail(QStringLiteral("cannot read the usage log %1: %2").arg(m_path, file.errorString()));
        return;
    }
    QList<UsageTracker::Record> records;
    int unreadable = 0;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine(64 * 1024).trimmed();
        UsageTracker::Record record;
        if (line.isEmpty())
            continue;
        if (!fromLine(line, &record)) {
            ++unreadable;
            continue;
        }
        records.append(record);
        if (records.size() > UsageTracker::kKeptInMemory)
            records.removeFirst();
    }
    // A damaged log is left as it is for the user to see; adding to it could only make it worse.
    if (unreadable > 0)
        fail(QStringLiteral("the usage log %1 is damaged (%2 unreadable line(s))").arg(m_path).arg(unreadable));
    if (!records.isEmpty())
        QMetaObject::invokeMethod(this, [this, records] { emit historyLoaded(records); }, Qt::QueuedConnection);
}

void UsageAuditLog::writePending()
{
    std::vector<UsageTracker::Record> batch;
    {
        QMutexLocker lock(&m_mutex);
        batch.swap(m_pending);
        m_writePosted = false;
    }
    if (batch.empty())
        return;
    if (m_healthy && !m_file) {
        QDir().mkpath(QFileInfo(m_path).absolutePath());
        m_file = std::make_unique<QFile>(m_path);
        if (!m_file->open(QIODevice::WriteOnly | QIODevice::Append))
            fail(QStringLiteral("cannot write the usage log %1: %2").arg(m_path, m_file->errorString()));
        else
            m_file->setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    }
    if (m_healthy && m_file) {
        QByteArray text;
        for (const UsageTracker::Record& record : batch)
            text += toLine(record);
        if (m_file->write(text) != text.size() || !m_file->flush())
            fail(QStringLiteral("cannot write the usage log %1: %2").arg(m_path, m_file->errorString()));
    }
    QMutexLocker lock(&m_mutex);
    m_settledCount += batch.size();
    m_written.wakeAll();
}
