#include "Settings/Settings.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QSettings>
#include <QStandardPaths>

#include <glog/logging.h>

#include <memory>

namespace Settings {
namespace {

QMutex& mutex()
{
    static QMutex m;
    return m;
}

QString& overriddenFileName()
{
    static QString name;
    return name;
}

QString defaultFileName()
{
    QString folder = qEnvironmentVariable("KLIPVANE_CONFIG_DIR");
    if (folder.isEmpty())
        folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/Klipvane");
    return folder + QStringLiteral("/klipvane.ini");
}

// Where the values live. Normally the INI file; when the file cannot be trusted (damaged,
// a folder, unreadable, read-only, or a write failed) the store is detached: values stay in
// memory for the session and the file on disk is never written again by this process.
struct Store
{
    QString fileName;
    std::unique_ptr<QSettings> file; // null when detached
    QVariantMap memory;
};

std::unique_ptr<Store>& current()
{
    static std::unique_ptr<Store> store;
    return store;
}

// QSettings reads an opening quote up to the next quote, across line ends, so a single
// unbalanced quote silently swallows every key after it while status() stays NoError; and
// status() is not reliable for other damage either (a file parsed once is not parsed again
// while it is unchanged). So the INI text is scanned here the way QSettings scans it: a
// backslash escapes the next character (an escaped line end continues the line), quotes
// toggle, ';' outside quotes starts a comment. A line end inside quotes, which QSettings
// never writes, a section header without ']' and a line without '=' are damage. Returns
// what is wrong and where, or an empty string.
std::string damageIn(const QByteArray& text)
{
    bool inQuotes = false;
    bool inComment = false;
    bool hasEquals = false;
    char first = 0;  // first character of the logical line
    char last = 0;   // last character outside a comment
    int line = 1;
    int lineStart = 1;
    int quoteLine = 0;
    auto endOfLine = [&]() -> std::string {
        std::string problem;
        if (first == '[' && last != ']')
            problem = "a section header without ']'";
        else if (first && first != '[' && !hasEquals)
            problem = "a line without '='";
        if (!problem.empty())
            problem += " on line " + std::to_string(lineStart);
        inComment = hasEquals = false;
        first = last = 0;
        return problem;
    };
    for (int i = 0; i < text.size(); ++i) {
        const char c = text.at(i);
        if (c == '\n' || c == '\r') {
            if (inQuotes)
                return "an unbalanced quote on line " + std::to_string(quoteLine);
            if (const std::string problem = endOfLine(); !problem.empty())
                return problem;
            if (c == '\n')
                ++line;
            lineStart = line;
            continue;
        }
        if (inComment || (!first && (c == ' ' || c == '\t')))
            continue;
        if (!inQuotes && c == ';') {
            inComment = true;
            continue;
        }
        if (!first)
            first = c;
        if (c != ' ' && c != '\t')
            last = c;
        if (c == '\\') {
            ++i;
            if (i < text.size() && text.at(i) == '\n')
                ++line;
        } else if (c == '"') {
            inQuotes = !inQuotes;
            quoteLine = line;
        } else if (c == '=' && !inQuotes) {
            hasEquals = true;
        }
    }
    if (inQuotes)
        return "an unbalanced quote on line " + std::to_string(quoteLine);
    return endOfLine();
}

// Keeps the damaged file beside the original, named after its content so that launching
// again on the same damage does not pile up copies.
QString keepDamagedCopy(const QString& path, const QByteArray& text)
{
    const QByteArray digest = QCryptographicHash::hash(text, QCryptographicHash::Sha1).toHex().left(8);
    const QString copy = path + QStringLiteral(".damaged-") + QString::fromLatin1(digest);
    if (QFileInfo::exists(copy))
        return copy;
    QFile out(copy);
    if (out.open(QIODevice::WriteOnly) && out.write(text) == text.size() && out.flush()) {
        out.setPermissions(QFile::permissions(path) | QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        return copy;
    }
    out.remove();
    return QString();
}

void detach(Store& store, const std::string& reason, bool keepValues)
{
    LOG(ERROR) << "Settings file " << store.fileName.toStdString() << " " << reason
               << "; the editor runs on " << (keepValues ? "the values read" : "default settings")
               << " and keeps changes in memory only";
    if (keepValues && store.file) {
        for (const QString& key : store.file->allKeys())
            store.memory.insert(key, store.file->value(key));
    }
    store.file.reset();
}

std::unique_ptr<Store> open(const QString& path)
{
    auto store = std::make_unique<Store>();
    store->fileName = path;
    const QFileInfo info(path);
    if (!QDir().mkpath(info.absolutePath())) {
        detach(*store, "has no folder (" + info.absolutePath().toStdString() + " cannot be created)", false);
        return store;
    }
    if (info.isDir()) {
        detach(*store, "is a folder", false);
        return store;
    }
    QByteArray text;
    if (info.exists()) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            detach(*store, "cannot be read (" + file.errorString().toStdString() + ")", false);
            return store;
        }
        text = file.readAll();
    }
    store->file = std::make_unique<QSettings>(path, QSettings::IniFormat);
    std::string damage = damageIn(text);
    if (damage.empty() && store->file->status() != QSettings::NoError)
        damage = "a format error";
    if (!damage.empty()) {
        const QString copy = keepDamagedCopy(path, text);
        detach(*store, "could not be read cleanly (it has " + damage + "); " +
                           (copy.isEmpty() ? std::string("no copy of it could be made")
                                           : "a copy of it is kept at " + copy.toStdString()),
               false);
        return store;
    }
    // A file its owner made read-only is honoured even by a user the system would let write.
    if (info.exists() && (!info.isWritable() || !(info.permissions() & QFileDevice::WriteOwner)))
        detach(*store, "is read-only", true);
    return store;
}

Store& store()
{
    auto& s = current();
    if (!s)
        s = open(overriddenFileName().isEmpty() ? defaultFileName() : overriddenFileName());
    return *s;
}

// Writes through at once, so another process (or a crash right after) sees the change. A
// write that fails detaches the store instead of retrying on every change.
void writeThrough(Store& s)
{
    s.file->sync();
    if (s.file->status() != QSettings::NoError)
        detach(s, "cannot be written", true);
}

QString dontShowKey(const QString& key)
{
    return QStringLiteral("DontShowDialogs/") + key;
}

} // namespace

QString fileName()
{
    QMutexLocker lock(&mutex());
    return store().fileName;
}

void setFileName(const QString& path)
{
    QMutexLocker lock(&mutex());
    if (current() && current()->file)
        current()->file->sync();
    current().reset();
    overriddenFileName() = path;
}

bool isSaved()
{
    QMutexLocker lock(&mutex());
    return store().file != nullptr;
}

QVariant value(const QString& key, const QVariant& defaultValue)
{
    QMutexLocker lock(&mutex());
    Store& s = store();
    return s.file ? s.file->value(key, defaultValue) : s.memory.value(key, defaultValue);
}

void setValue(const QString& key, const QVariant& value)
{
    QMutexLocker lock(&mutex());
    Store& s = store();
    if (!s.file) {
        s.memory.insert(key, value);
        return;
    }
    s.file->setValue(key, value);
    writeThrough(s);
}

void remove(const QString& key)
{
    QMutexLocker lock(&mutex());
    Store& s = store();
    if (!s.file) {
        const QString group = key + QLatin1Char('/');
        for (auto it = s.memory.begin(); it != s.memory.end();)
            it = (it.key() == key || it.key().startsWith(group)) ? s.memory.erase(it) : std::next(it);
        return;
    }
    s.file->remove(key);
    writeThrough(s);
}

void sync()
{
    QMutexLocker lock(&mutex());
    Store& s = store();
    if (s.file)
        writeThrough(s);
}

bool dontShowDialog(const QString& key)
{
    return value(dontShowKey(key), false).toBool();
}

void setDontShowDialog(const QString& key, bool dontShow)
{
    setValue(dontShowKey(key), dontShow);
}

namespace {
const QString kAdjustAspectKey = QStringLiteral("Timeline/AdjustAspectWhenFileAdded");
}

bool adjustAspectWhenFileAdded()
{
    return value(kAdjustAspectKey, true).toBool();
}

void setAdjustAspectWhenFileAdded(bool const& adjust)
{
    setValue(kAdjustAspectKey, adjust);
}

} // namespace Settings
