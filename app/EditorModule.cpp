#include "EditorModule.h"

#include <App/ProductKey.h>

#include <QFile>
#include <QFileInfo>

#include <glog/logging.h>

#include <dlfcn.h>

namespace EditorModule {

namespace {

// The module is installed beside the platform libraries. It is opened by its full path,
// found from where the platform core was loaded: a bare name would depend on whose search
// path the loader uses, and under an instrumented build the call comes from the sanitizer
// runtime, whose search path does not name ours.
QByteArray modulePath()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&Tavrin::App::readSingleInstanceKey), &info) && info.dli_fname) {
        const QFileInfo core(QString::fromLocal8Bit(info.dli_fname));
        const QString beside = core.absolutePath() + QLatin1Char('/') + QLatin1String(kFileName);
        if (QFileInfo::exists(beside))
            return QFile::encodeName(beside);
    }
    return QByteArray(kFileName);
}

} // namespace

int run(int argc, char** argv)
{
    // Never unloaded: the editor's objects and threads live until the process ends.
    void* module = dlopen(modulePath().constData(), RTLD_NOW | RTLD_LOCAL);
    const Entry entry = module ? reinterpret_cast<Entry>(dlsym(module, kEntryName)) : nullptr;
    if (!entry) {
        LOG(ERROR) << "The editor could not be loaded: " << dlerror();
        return 1;
    }
    return entry(argc, argv);
}

QString executableDirectory(const char* argv0)
{
    const QFileInfo self(QStringLiteral("/proc/self/exe"));
    const QString path = self.exists() ? self.canonicalFilePath() : QFileInfo(QString::fromLocal8Bit(argv0)).absoluteFilePath();
    return QFileInfo(path).absolutePath();
}

} // namespace EditorModule
