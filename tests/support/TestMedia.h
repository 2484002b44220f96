#pragma once

// Small media files made by tests/support/make_test_media.sh once per test executable, in a
// folder that lives until it ends. TestMedia::path("h264_tiny.mp4") is empty without ffmpeg.

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace TestMedia {

// The folder of the generated files; empty when they could not be made.
inline QString folder()
{
    static QTemporaryDir dir;
    static const bool made = [] {
        if (QStandardPaths::findExecutable(QStringLiteral("ffmpeg")).isEmpty())
            return false;
        QProcess generator;
        generator.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        const QString script = qEnvironmentVariable("KLIPVANE_SOURCE_DIR") + "/tests/support/make_test_media.sh";
        generator.start(QStringLiteral("/bin/sh"), {script, dir.path()});
        return generator.waitForFinished(120000) && generator.exitStatus() == QProcess::NormalExit
            && generator.exitCode() == 0;
    }();
    return made ? dir.path() : QString();
}

inline QString path(const char* name)
{
    const QString dir = folder();
    return dir.isEmpty() ? QString() : dir + QLatin1Char('/') + QLatin1String(name);
}

} // namespace TestMedia
