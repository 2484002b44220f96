#include "EditorModule.h"

#include <QFileInfo>

#include <glog/logging.h>

#include <dlfcn.h>

namespace EditorModule {

int run(int argc, char** argv)
{
    // Never unloaded: the editor's objects and threads live until the process ends.
    void* module = dlopen(kFileName, RTLD_NOW | RTLD_LOCAL);
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
