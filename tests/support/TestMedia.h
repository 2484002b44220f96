#pragma once

// Small media files made at test time by tests/support/make_test_media.sh (nothing binary
// is kept in the repository). The files are made once per test executable, in a folder
// that lives until the executable ends.
//
//   const QString h264 = TestMedia::path("h264_tiny.mp4");
//   if (h264.isEmpty()) QSKIP("ffmpeg is not installed");

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace TestMedia {

inline QString script()
{
    return qEnvironmentVariable("KLIPVANE_SOURCE_DIR") + QStringLiteral("/tests/support/make_test_media.sh");
}

// The folder of the generated files; empty when they could not be made.
inline QString folder()
{
    static std::unique_ptr<QTemporaryDir> dir;
    static bool made = false;
    if (!dir) {
        dir = std::make_unique<QTemporaryDir>();
        if (!QStandardPaths::findExecutable(QStringLiteral("ffmpeg")).isEmpty()) {
            QProcess generator;
            generator.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            generator.start(QStringLiteral("/bin/sh"), {script(), dir->path()});
            made = generator.waitForFinished(120000) && generator.exitStatus() == QProcess::NormalExit
                && generator.exitCode() == 0;
        }
    }
    return made ? dir->path() : QString();
}

inline QString path(const char* name)
{
    const QString dir = folder();
    return dir.isEmpty() ? QString() : dir + QLatin1Char('/') + QLatin1String(name);
}

} // namespace TestMedia
