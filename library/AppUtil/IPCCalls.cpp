// The calls a second launch sends, apart from the rest of the library: the editor's
// launcher compiles this file in so that a hand-off loads neither widgets nor the library.

#include "IPCCalls_p.h"
#include "IPCProtocol.h"

#include <UniqueIPC/Task.h>

namespace IPC {
namespace details = Tavrin::UniqueIPC::details;
using Calls::kEditorAppId;
using Calls::kEditorVersion;

Tavrin::UniqueIPC::Call Protocol::addFilesCall(const QStringList& files)
{
    Tavrin::UniqueIPC::Call call;
    call.target = kEditorAppId;
    call.function = "OnAddFiles";
    call.version = kEditorVersion;
    for (const QString& file : files) {
        call.arguments.push_back(details::ArgToString(file));
        call.types.push_back("QString");
    }
    return call;
}

Tavrin::UniqueIPC::Call Protocol::openProjectCall(const QString& path)
{
    Tavrin::UniqueIPC::Call call;
    call.target = kEditorAppId;
    call.function = "OnOpenProject";
    call.version = kEditorVersion;
    call.arguments = {details::ArgToString(path)};
    call.types = {"QString"};
    return call;
}

} // namespace IPC
