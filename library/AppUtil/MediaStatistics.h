#pragma once

#include "AppUtil_export.h"

#include <PubSub/Channels.h>
#include <PubSub/PubSub.h>

#include <QString>
#include <QStringList>

// Usage-statistics messages about media intake, published on Statistics::globalObject().
namespace Statistics {

// The failed-files dialog was answered: whether removal was offered and whether the user chose it.
struct APPUTIL_EXPORT DeleteFailedFilesEventNotification : Message::Types::Notification<Object>
{
    DeleteFailedFilesEventNotification(bool deletionOffered, bool deletionChosen)
        : Notification(globalObject()), deletionOffered(deletionOffered), deletionChosen(deletionChosen)
    {
    }
    bool deletionOffered;
    bool deletionChosen;
};

// A file of the given extension had streams in codecs the editor cannot decode
// (display names where known, else the codec identifiers).
struct APPUTIL_EXPORT CodecsFailed : Message::Types::Notification<Object>
{
    CodecsFailed(QString extension, QStringList codecs)
        : Notification(globalObject()), extension(std::move(extension)), codecs(std::move(codecs))
    {
    }
    QString extension;
    QStringList codecs;
};

} // namespace Statistics
