#pragma once

#include "AppUtil_export.h"

#include <PubSub/Channels.h>
#include <PubSub/PubSub.h>

#include <QSize>

#include <boost/rational.hpp>

// Usage-statistics messages about editing, published on Statistics::globalObject().
namespace Statistics {

// The offer to match the project's frame to new media was answered: whether the user
// accepted, the aspect ratio offered (in lowest terms) and the frame size that came with it.
struct APPUTIL_EXPORT AdjustProjectAspectSuggestedNotification : Message::Types::Notification<Object>
{
    AdjustProjectAspectSuggestedNotification(bool accepted, boost::rational<long long> aspect, QSize frameSize)
        : Notification(globalObject()), accepted(accepted), aspect(aspect), frameSize(frameSize)
    {
    }
    bool accepted;
    boost::rational<long long> aspect;
    QSize frameSize;
};

} // namespace Statistics
