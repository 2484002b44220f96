#include "Mime/MimeUtils.h"

#include <Serialize/JsonReader.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMimeData>
#include <QSysInfo>

#include <glog/logging.h>

#include <atomic>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace MimeUtils {

const QString UriListType = QStringLiteral("text/uri-list");
const QString KdeUriListType = QStringLiteral("application/x-kde4-urilist");
const QString AddingSourceType = QStringLiteral("application/x-klipvane-asrc");
const QString OverlayPresetsType = QStringLiteral("application/x-klipvane-overlay-presets");
const QString EffectType = QStringLiteral("application/x-klipvane-effect");
const QString CollectionSource = QStringLiteral("Collection");

namespace {

constexpr int maxOverlayPresets = 64;
constexpr int maxReportedLines = 10;

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

bool percentDecode(const QByteArray& in, QByteArray& out)
{
    out.clear();
    out.reserve(in.size());
    for (int i = 0; i < in.size(); ++i) {
        const char c = in.at(i);
        if (c != '%') {
            out += c;
            continue;
        }
        const int high = i + 2 < in.size() ? hexValue(in.at(i + 1)) : -1;
        const int low = high >= 0 ? hexValue(in.at(i + 2)) : -1;
        if (low < 0)
            return false;
        out += char(high * 16 + low);
        i += 2;
    }
    return true;
}

bool isLocalHost(const QByteArray& host)
{
    static const QByteArray self = QSysInfo::machineHostName().toUtf8().toLower();
    const QByteArray lower = host.toLower();
    return lower.isEmpty() || lower == "localhost" || lower == "127.0.0.1" || (!self.isEmpty() && lower == self);
}

// "scheme:" at the start of a line, as RFC 3986 spells a scheme.
QByteArray schemeOf(const QByteArray& line)
{
    for (int i = 0; i < line.size(); ++i) {
        const char c = line.at(i);
        if (c == ':')
            return i > 0 ? line.left(i).toLower() : QByteArray();
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (!letter && (i == 0 || !((c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.')))
            return {};
    }
    return {};
}

// Lines of a list, with CR LF or bare LF ends, surrounding blanks and trailing NULs (some
// desktops terminate the data with one) removed.
std::vector<QByteArray> linesOf(const QByteArray& bytes)
{
    std::vector<QByteArray> lines;
    int from = 0;
    while (from <= bytes.size()) {
        int end = bytes.indexOf('\n', from);
        if (end < 0)
            end = bytes.size();
        QByteArray line = bytes.mid(from, end - from);
        while (!line.isEmpty() && (line.endsWith('\r') || line.endsWith('\0') || line.endsWith(' ') || line.endsWith('\t')))
            line.chop(1);
        while (!line.isEmpty() && (line.startsWith(' ') || line.startsWith('\t')))
            line.remove(0, 1);
        if (!line.isEmpty())
            lines.push_back(std::move(line));
        from = end + 1;
    }
    return lines;
}

struct Refusal
{
    QString why;
    QString entry;
};

// Refusals are told once per payload: a drag crossing several views asks each of them.
void report(const std::vector<Refusal>& refusals, const QByteArray& payload, const QSet<QString>& extensions)
{
    static std::atomic<uint> lastReported{0};
    if (refusals.empty())
        return;
    QStringList sorted = extensions.values();
    sorted.sort();
    const uint key = qHash(payload) ^ qHash(sorted.join(QLatin1Char(',')));
    if (lastReported.exchange(key) == key)
        return;
    int shown = 0;
    for (const Refusal& refusal : refusals) {
        if (++shown > maxReportedLines)
            break;
        LOG(WARNING) << "drop: refused (" << refusal.why.toStdString() << "): " << refusal.entry.toStdString();
    }
    if (refusals.size() > size_t(maxReportedLines))
        LOG(WARNING) << "drop: refused " << refusals.size() << " entries in all";
}

bool isFolder(const QString& path)
{
    struct stat status{};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

QString extensionOf(const QString& path)
{
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    const int dot = path.lastIndexOf(QLatin1Char('.'));
    return dot > slash + 1 ? path.mid(dot + 1).toLower() : QString();
}

} // namespace

std::optional<QString> localPathOfUri(const QByteArray& uri, QString* why)
{
    const auto refuse = [why](const char* reason) -> std::optional<QString> {
        if (why)
            *why = QString::fromLatin1(reason);
        return std::nullopt;
    };
    const QByteArray scheme = schemeOf(uri);
    if (scheme.isEmpty())
        return refuse("malformed");
    if (scheme != "file")
        return refuse("remote");
    QByteArray rest = uri.mid(scheme.size() + 1);
    // A query or fragment is not part of a file name ('?' and '#' in names are encoded).
    for (const char mark : {'?', '#'})
        if (const int end = rest.indexOf(mark); end >= 0)
            rest.truncate(end);
    if (rest.startsWith("//")) {
        const int slash = rest.indexOf('/', 2);
        if (slash < 0)
            return refuse("malformed");
        if (!isLocalHost(rest.mid(2, slash - 2)))
            return refuse("remote");
        rest = rest.mid(slash);
    }
    if (!rest.startsWith('/'))
        return refuse("malformed");
    QByteArray bytes;
    if (!percentDecode(rest, bytes) || bytes.contains('\0'))
        return refuse("malformed");
    // Names are bytes: decoded as the file system's names are, so one that is not UTF-8
    // keeps its replacement characters and opening it explains the problem.
    return QFile::decodeName(bytes);
}

QString Reader::asrc() const
{
    if (!m_data || !m_data->hasFormat(AddingSourceType))
        return {};
    return QString::fromUtf8(m_data->data(AddingSourceType)).trimmed();
}

QStringList Reader::extractFiles(const QStringList& extensions) const
{
    QSet<QString> set;
    for (const QString& extension : extensions)
        set.insert(extension.toLower());
    return extractFiles(set);
}

QStringList Reader::extractFiles(const QSet<QString>& extensions) const
{
    if (!m_data || extensions.isEmpty())
        return {};
    QByteArray payload;
    bool uriList = true;
    if (m_data->hasFormat(UriListType))
        payload = m_data->data(UriListType);
    else if (m_data->hasFormat(KdeUriListType))
        payload = m_data->data(KdeUriListType);
    else if (m_data->hasText()) {
        // Bytes, not text(): a path whose bytes are not UTF-8 must reach decodeName as it is.
        const QString utf8 = QStringLiteral("text/plain;charset=utf-8");
        payload = m_data->data(m_data->hasFormat(utf8) ? utf8 : QStringLiteral("text/plain"));
        uriList = false;
    }
    QStringList files;
    QSet<QString> seen;
    std::vector<Refusal> refusals;
    for (const QByteArray& line : linesOf(payload)) {
        if (uriList && line.startsWith('#'))
            continue; // a comment (RFC 2483)
        std::optional<QString> path;
        QString why;
        if (!uriList && line.startsWith('/'))
            path = QFile::decodeName(line);
        else
            path = localPathOfUri(line, &why);
        if (!path) {
            refusals.push_back({why, QString::fromUtf8(line.left(512))});
            continue;
        }
        if (seen.contains(*path))
            continue;
        seen.insert(*path);
        // Only names without a wanted extension cost a look at the file system.
        if (extensions.contains(extensionOf(*path)) || isFolder(*path))
            files << *path;
        else
            refusals.push_back({QStringLiteral("unsupported"), *path});
    }
    report(refusals, payload, extensions);
    return files;
}

bool Reader::hasObjectImpl(const QString& mimeType) const
{
    return m_data && m_data->hasFormat(mimeType);
}

std::optional<QByteArray> Reader::popObjectImpl(const QString& mimeType) const
{
    if (!hasObjectImpl(mimeType))
        return std::nullopt;
    const QByteArray bytes = m_data->data(mimeType);
    // The drag's own data, made by this process for this drag: taking the object out of it
    // is what makes a second drop of the same drag find nothing.
    const_cast<QMimeData*>(m_data)->removeFormat(mimeType);
    return bytes;
}

void Reader::logUndecodable(const QString& mimeType, const QString& error)
{
    LOG(WARNING) << "drop: unreadable " << mimeType.toStdString() << ": " << error.toStdString();
}

bool isOverlayPresetCompatible(const QMimeData* data)
{
    return data && data->hasFormat(OverlayPresetsType);
}

QList<Timeline::OverlayPreset> makeOverlayPresetList(const QMimeData* data)
{
    if (!isOverlayPresetCompatible(data))
        return {};
    const QJsonDocument document = QJsonDocument::fromJson(data->data(OverlayPresetsType));
    if (!document.isArray()) {
        LOG(WARNING) << "drop: unreadable overlay presets: not a JSON list";
        return {};
    }
    const QJsonArray list = document.array();
    QList<Timeline::OverlayPreset> presets;
    for (int i = 0; i < list.size() && presets.size() < maxOverlayPresets; ++i) {
        Serialize::JsonReader reader;
        const QString where = Serialize::JsonReader::path(QStringLiteral("presets"), i);
        const QJsonObject json = reader.element(list, i, QStringLiteral("presets"));
        Timeline::OverlayPreset preset;
        preset.name = reader.string(json, QLatin1String("name"), where, 256);
        preset.text = reader.string(json, QLatin1String("text"), where, 4096, false);
        const qint64 hour = qint64(3600) * 1000000;
        preset.duration = MediaTime::fromMicroseconds(
            reader.integer(json, QLatin1String("duration"), where, 1, hour, preset.duration.microseconds(), false));
        if (reader.ok())
            presets << preset;
        else
            LOG(WARNING) << "drop: overlay preset skipped: " << reader.error().toStdString();
    }
    if (list.size() > maxOverlayPresets)
        LOG(WARNING) << "drop: only the first " << maxOverlayPresets << " of " << list.size() << " overlay presets taken";
    return presets;
}

void setAsrc(QMimeData* data, const QString& source)
{
    data->setData(AddingSourceType, source.toUtf8());
}

void setOverlayPresets(QMimeData* data, const QList<Timeline::OverlayPreset>& presets)
{
    QJsonArray list;
    for (const Timeline::OverlayPreset& preset : presets)
        list.append(QJsonObject{{QStringLiteral("name"), preset.name},
                                {QStringLiteral("text"), preset.text},
                                {QStringLiteral("duration"), double(preset.duration.microseconds())}});
    data->setData(OverlayPresetsType, QJsonDocument(list).toJson(QJsonDocument::Compact));
}

void setImportObject(QMimeData* data, const EditorCollection::ImportObject& object)
{
    data->setData(EditorCollection::ImportObject::mimeType(), object.encode());
    setAsrc(data, CollectionSource);
}

} // namespace MimeUtils
