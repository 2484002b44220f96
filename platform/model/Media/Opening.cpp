#include "Media/Opening.h"

#include "Media/MediaReader_p.h"

#include <Conf/Codecs.h>

#include <QFile>
#include <QFileInfo>
#include <QLibrary>

#include <glog/logging.h>

#include <atomic>
#include <cerrno>
#include <dlfcn.h>
#include <mutex>
#include <sys/stat.h>

namespace Media {
namespace {

using Tavrin::Proc::ProcessingError;
using Tavrin::Proc::TranscodingErrors;

ProcessingError makeError(TranscodingErrors code, const std::string& message, const QString& path, int line)
{
    return ProcessingError(code, "Opening.cpp", "Media::openFile", line, message, path.toStdString());
}

OpenResult failure(const QString& path, TranscodingErrors code, const std::string& message, int line)
{
    OpenResult result;
    result.state = File::State::Failed;
    result.errors.push_back(makeError(code, message, path, line));
    return result;
}

QString moduleFolder()
{
    // The reader is installed beside this library, whether in the build tree or installed.
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&mediaReaderPath), &info) && info.dli_fname)
        return QFileInfo(QString::fromLocal8Bit(info.dli_fname)).absolutePath();
    return QString();
}

std::atomic<bool> readerLoaded{false};

struct ReaderModule
{
    Reader::IMediaReader* reader = nullptr;
    // Never unloaded: worker threads may still be inside it when the process ends. Held here
    // so that it stays reachable, not leaked.
    QLibrary* library = nullptr;
    std::string problem;
};

ReaderModule& readerModule()
{
    static ReaderModule module;
    static std::once_flag once;
    std::call_once(once, [] {
        const QString path = mediaReaderPath();
        QLibrary* library = module.library = new QLibrary(path);
        auto create = reinterpret_cast<Reader::CreateFunction>(library->resolve(Reader::CreateFunctionName));
        if (!create) {
            module.problem = "The media reader module could not be loaded: " + library->errorString().toStdString();
            LOG(ERROR) << module.problem;
            return;
        }
        module.reader = create();
        readerLoaded = module.reader != nullptr;
        LOG(INFO) << "Media reader loaded from " << path.toStdString();
        // The reader reads the variable itself; said here so a log shows how files were opened.
        if (qEnvironmentVariable("KLIPVANE_FULL_STREAM_ANALYSIS") == QLatin1String("1"))
            LOG(INFO) << "Media reader: FFmpeg's full stream analysis for every file (KLIPVANE_FULL_STREAM_ANALYSIS=1)";
    });
    return module;
}

} // namespace

void OpenResult::applyTo(File& file) const
{
    file.setFormat(format);
    file.setFileDuration(duration);
    file.setFileSize(fileSize);
    file.setBitRate(bitRate);
    file.setVideoTracks(video);
    file.setAudioTracks(audio);
    file.setUnsupportedCodecs(unsupportedCodecs);
    file.setErrors(errors);
    file.setPathProblem(pathProblem);
    file.setState(state);
}

QString mediaReaderPath()
{
    const QString overridden = qEnvironmentVariable("KLIPVANE_MEDIA_READER");
    if (!overridden.isEmpty())
        return overridden;
    return moduleFolder() + QStringLiteral("/libKvMediaReader.so");
}

bool isMediaReaderLoaded()
{
    return readerLoaded;
}

OpenResult evaluate(const QString& path, const Reader::ProbeResult& probe)
{
    if (probe.error != 0)
        return failure(path, TranscodingErrors(probe.error), probe.errorMessage, __LINE__);

    OpenResult result;
    result.format = probe.format;
    result.duration = probe.duration;
    result.bitRate = probe.bitRate;
    int counted = 0;
    int usable = 0;
    int damaged = 0; // streams whose parameters no real stream has; left out of the file
    auto judge = [&](QString& codecId, bool decodable) {
        codecId = Tavrin::Conf::codecIdFromEngineName(codecId);
        ++counted;
        if (decodable && !Tavrin::Conf::isCodecDeclaredUnsupported(codecId))
            ++usable;
        else if (!result.unsupportedCodecs.contains(codecId))
            result.unsupportedCodecs << codecId;
    };
    for (std::size_t i = 0; i < probe.video.size(); ++i) {
        VideoTrack track = probe.video[i];
        if (track.isCoverArt()) {
            track.codecId = Tavrin::Conf::codecIdFromEngineName(track.codecId);
        } else if (!Reader::plausibleVideo(track, probe.stillPicture)) {
            ++damaged;
            continue;
        } else {
            judge(track.codecId, i < probe.videoDecodable.size() && probe.videoDecodable[i]);
        }
        result.video.push_back(track);
    }
    for (std::size_t i = 0; i < probe.audio.size(); ++i) {
        AudioTrack track = probe.audio[i];
        if (!Reader::plausibleAudio(track)) {
            ++damaged;
            continue;
        }
        judge(track.codecId, i < probe.audioDecodable.size() && probe.audioDecodable[i]);
        result.audio.push_back(track);
    }

    result.state = File::State::Failed;
    if (counted == 0) {
        result.errors.push_back(makeError(TranscodingErrors::InputCorruptedOrMissing,
                                          damaged ? "No stream with plausible parameters" : "No audio or video stream",
                                          path, __LINE__));
    } else if (usable == 0) {
        result.errors.push_back(makeError(TranscodingErrors::UnsupportedCodec,
                                          "No stream with a supported codec: "
                                              + result.unsupportedCodecs.join(QLatin1Char(',')).toStdString(),
                                          path, __LINE__));
    } else if (!probe.stillPicture && !Reader::plausibleDuration(probe.duration, probe.fileSize)) {
        result.duration = MediaTime();
        result.errors.push_back(
            makeError(TranscodingErrors::InputCorruptedOrMissing, "No plausible duration", path, __LINE__));
    } else {
        result.state = File::State::Opened;
    }
    return result;
}

OpenResult openFile(const QString& path, int timeoutMs, const std::function<bool()>& cancelled)
{
    // Cheap checks first: they spare loading the reader for the plainly unusable, and keep
    // FFmpeg away from things that would block it (a FIFO never delivers end of file).
    struct stat status{};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) {
        const int error = errno;
        const char* message = error == ENOENT ? "No such file"
            : error == ELOOP                  ? "Symbolic link loop"
            : error == EACCES                 ? "Permission denied"
                                              : "Cannot read the file's status";
        OpenResult result = failure(path, TranscodingErrors::InputCorruptedOrMissing, message, __LINE__);
        // A name read from a folder whose bytes are not UTF-8 comes with replacement
        // characters and names nothing; saying "missing" would send the user looking for it.
        if (error == ELOOP)
            result.pathProblem = File::PathProblem::SymlinkLoop;
        else if (error == ENOENT && path.contains(QChar::ReplacementCharacter))
            result.pathProblem = File::PathProblem::UnreadableName;
        return result;
    }
    const QFileInfo info(path);
    if (info.isDir())
        return failure(path, TranscodingErrors::InputCorruptedOrMissing, "Is a folder", __LINE__);
    if (!info.isFile())
        return failure(path, TranscodingErrors::InputCorruptedOrMissing, "Not a regular file", __LINE__);
    if (!info.isReadable())
        return failure(path, TranscodingErrors::InputCorruptedOrMissing, "Permission denied", __LINE__);
    if (info.size() == 0)
        return failure(path, TranscodingErrors::InputCorruptedOrMissing, "Empty file", __LINE__);

    ReaderModule& module = readerModule();
    if (!module.reader)
        return failure(path, TranscodingErrors::CodecUnavailable, module.problem, __LINE__);
    OpenResult result = evaluate(path, module.reader->probe(path, timeoutMs, cancelled));
    result.fileSize = info.size();
    return result;
}

} // namespace Media
