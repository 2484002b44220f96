#pragma once

#include <EditorCollection/Collection.h>
#include <Timeline/Timeline.h>

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

class QMimeData;

// Reading and writing what is dragged onto and out of the editor's views.
namespace MimeUtils {

// MIME types the editor reads.
extern const QString UriListType;        // "text/uri-list" (RFC 2483)
extern const QString KdeUriListType;     // "application/x-kde4-urilist": KDE's original URLs
extern const QString AddingSourceType;   // "application/x-klipvane-asrc": who started the drag
extern const QString OverlayPresetsType; // "application/x-klipvane-overlay-presets": JSON list
extern const QString EffectType;         // "application/x-klipvane-effect": an effect identifier, UTF-8

// The adding source of drags out of the editor's own collections.
extern const QString CollectionSource;   // "Collection"

// Reads the data of one drag. Cheap to make; nothing is read until asked.
//
//   MimeUtils::Reader reader(event->mimeData());
//   if (reader.asrc() != MimeUtils::CollectionSource)
//       files = reader.extractFiles({"mp4", "png"});
class Reader
{
public:
    explicit Reader(const QMimeData* data) : m_data(data) {}

    // Who started the drag ("Collection" for the editor's collections); empty when the drag
    // comes from outside.
    QString asrc() const;

    // The local files (and folders, whose files are found later) the drag names, in order
    // and each once, whose extension is in `extensions` (lower case, without the dot). The
    // first list found is read: text/uri-list, else KDE's list, else plain text holding
    // file URLs or absolute paths (one a line). URLs of other hosts and schemes are not
    // files; they and files of other extensions are refused and logged, once per payload.
    QStringList extractFiles(const QSet<QString>& extensions) const;
    QStringList extractFiles(const QStringList& extensions) const;

    // Whether the data holds an object of `mimeType`, and taking it out: an object is
    // taken once, so a drop that reaches two handlers adds it once.
    bool hasObjectImpl(const QString& mimeType) const;
    std::optional<QByteArray> popObjectImpl(const QString& mimeType) const;

    template <class T>
    bool hasObject() const
    {
        return hasObjectImpl(T::mimeType());
    }
    // The object, or nothing when there is none or it does not decode (logged).
    template <class T>
    std::optional<T> popObject() const
    {
        const std::optional<QByteArray> bytes = popObjectImpl(T::mimeType());
        if (!bytes)
            return std::nullopt;
        QString error;
        std::optional<T> object = T::decode(*bytes, &error);
        if (!object)
            logUndecodable(T::mimeType(), error);
        return object;
    }

private:
    static void logUndecodable(const QString& mimeType, const QString& error);
    const QMimeData* m_data;
};

// Local file path of one URI of a list (`file:///p`, `file:/p`, `file://localhost/p`,
// `file://<this host>/p`, percent-encoded bytes decoded as file names are), or nothing with
// `why` set: a remote or malformed URI.
std::optional<QString> localPathOfUri(const QByteArray& uri, QString* why = nullptr);

// Overlay presets carried by a drag.
bool isOverlayPresetCompatible(const QMimeData* data);
QList<Timeline::OverlayPreset> makeOverlayPresetList(const QMimeData* data);

// For drag sources of the editor.
void setAsrc(QMimeData* data, const QString& source);
void setOverlayPresets(QMimeData* data, const QList<Timeline::OverlayPreset>& presets);
// A drag out of a collection: the import object and the "Collection" adding source.
void setImportObject(QMimeData* data, const EditorCollection::ImportObject& object);

} // namespace MimeUtils
