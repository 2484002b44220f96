#include "ProbeReport.h"

#include "ProbeDialogStrategy.h"

#include <ErrorDescription.h>

#include <Conf/Codecs.h>
#include <Conf/LayoutRecord.h>

#include <QJsonArray>

namespace {

// The files of SUBSET in the order they were given: the analysis keeps them by address,
// which differs from run to run, and two reports of the same files must be the same.
QJsonArray paths(const std::set<const Media::File*>& subset, const QList<const Media::File*>& order)
{
    QJsonArray array;
    for (const Media::File* file : order) {
        if (subset.count(file))
            array.append(file->filePath());
    }
    return array;
}

QJsonObject videoTrack(const Media::VideoTrack& track)
{
    return QJsonObject{
        {QStringLiteral("codec"), track.codecId},
        {QStringLiteral("width"), track.frameSize.width()},
        {QStringLiteral("height"), track.frameSize.height()},
        {QStringLiteral("pixelAspect"), QStringLiteral("%1:%2").arg(track.pixelAspectX).arg(track.pixelAspectY)},
        {QStringLiteral("frameRate"), track.frameRate},
        {QStringLiteral("bitRate"), double(track.bitRate)},
        {QStringLiteral("pixelFormat"), track.pixelFormat},
        {QStringLiteral("transfer"), track.transfer},
        {QStringLiteral("primaries"), track.primaries},
        {QStringLiteral("coverArt"), track.isCoverArt()},
    };
}

QJsonObject audioTrack(const Media::AudioTrack& track)
{
    const Tavrin::Conf::LayoutRecord* layout = Tavrin::Conf::LayoutRecord::Find(track.channelLayout);
    return QJsonObject{
        {QStringLiteral("codec"), track.codecId},
        {QStringLiteral("sampleRate"), track.sampleRate},
        {QStringLiteral("bitRate"), double(track.bitRate)},
        {QStringLiteral("channels"), track.channels > 0 ? track.channels
                                                        : Tavrin::Conf::LayoutRecord::channelCount(track.channelLayout)},
        {QStringLiteral("channelLayout"), layout ? QString::fromLatin1(layout->name) : QString()},
    };
}

QJsonObject fileEntry(const Media::File* file)
{
    QJsonArray unsupported;
    QJsonArray unsupportedNames;
    for (const QString& codec : file->unsupportedCodecs()) {
        unsupported.append(codec);
        QString name = codec;
        Tavrin::Conf::TranslateCodecId(codec, name);
        unsupportedNames.append(name);
    }
    QJsonArray video;
    for (const Media::VideoTrack& track : file->videoTracks())
        video.append(videoTrack(track));
    QJsonArray audio;
    for (const Media::AudioTrack& track : file->audioTracks())
        audio.append(audioTrack(track));
    QJsonArray errors;
    for (const Tavrin::Proc::ProcessingError& error : file->errors())
        errors.append(QJsonObject{{QStringLiteral("code"), error.code()},
                                  {QStringLiteral("message"), QString::fromStdString(error.message())}});

    QJsonObject entry{
        {QStringLiteral("path"), file->filePath()},
        {QStringLiteral("opened"), file->isOpened()},
        {QStringLiteral("failed"), file->isFailed()},
        {QStringLiteral("format"), file->format()},
        {QStringLiteral("durationMs"), double(file->fileDuration().milliseconds())},
        {QStringLiteral("size"), double(file->fileSize())},
        {QStringLiteral("hdr"), file->hasHDRStreams()},
        {QStringLiteral("unsupportedCodecs"), unsupported},
        {QStringLiteral("unsupportedCodecNames"), unsupportedNames},
        {QStringLiteral("videoTracks"), video},
        {QStringLiteral("audioTracks"), audio},
        {QStringLiteral("errors"), errors},
        {QStringLiteral("error"), QJsonValue::Null},
    };
    if (file->isFailed())
        entry[QStringLiteral("error")] = Error::describeFailedFile(*file);
    return entry;
}

} // namespace

QJsonObject probeReport(const QList<const Media::File*>& files, const FileOpenHandler::AnalyzedProduct& product,
                        const ProbeDialogStrategy& dialogs, const QJsonArray& statistics)
{
    QJsonArray entries;
    for (const Media::File* file : files)
        entries.append(fileEntry(file));
    QJsonObject analysis{
        {QStringLiteral("failedFiles"), paths(product.failedFiles, files)},
        {QStringLiteral("failedUnsupportedCodecFiles"), paths(product.failedUnsupportedCodecFiles, files)},
        {QStringLiteral("openedUnsupportedCodecFiles"), paths(product.openedUnsupportedCodecFiles, files)},
        {QStringLiteral("hasHDR"), product.hasHDR},
    };
    QJsonObject report{
        {QStringLiteral("files"), entries},
        {QStringLiteral("analysis"), analysis},
        {QStringLiteral("dialog"), dialogs.dialog},
        {QStringLiteral("hdrNotice"), dialogs.hdrNotice},
        {QStringLiteral("statistics"), statistics},
    };
    if (dialogs.dialog == QLatin1String("failed-files")) {
        report[QStringLiteral("failedFilesDialog")] = QJsonObject{
            {QStringLiteral("message"), dialogs.failedFilesMessage},
            {QStringLiteral("removalOffered"), dialogs.removalOffered},
        };
    } else if (dialogs.dialog == QLatin1String("h265")) {
        report[QStringLiteral("h265Files")] = QJsonArray::fromStringList(dialogs.h265Files);
    }
    return report;
}
