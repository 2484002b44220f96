#pragma once

// The preview tests' video: 640 x 360 at 25 frames per second, red on the left half and blue
// on the right, so that a turn or an effect shows in a few pixels; noisy, so that the bytes
// of a file cut in half still hold frames; a key frame every second.

#include <QProcess>
#include <QStandardPaths>
#include <QString>

namespace PreviewMedia {

inline bool available()
{
    return !QStandardPaths::findExecutable(QStringLiteral("ffmpeg")).isEmpty();
}

inline bool makeHalves(const QString& path, int seconds)
{
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"),
                 {"-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
                  QStringLiteral("color=c=red:s=640x360:r=25:d=%1,drawbox=x=320:y=0:w=320:h=360:color=blue:t=fill,"
                                 "noise=alls=20:allf=t").arg(seconds),
                  "-c:v", "libx264", "-preset", "ultrafast", "-g", "25", "-pix_fmt", "yuv420p", "-movflags", "+faststart",
                  path});
    return ffmpeg.waitForFinished(60000) && ffmpeg.exitStatus() == QProcess::NormalExit && ffmpeg.exitCode() == 0;
}

} // namespace PreviewMedia
