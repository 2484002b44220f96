// logwriter now|later|never MESSAGE...: starts the log as a program of the editor does, logs
// each message, and (unless "never") makes sure its log file is started.
#include <Log/Logging.h>

#include <glog/logging.h>

#include <cstring>

int main(int argc, char** argv)
{
    if (argc < 2)
        return 2;
    const bool now = std::strcmp(argv[1], "now") == 0;
    Tavrin::Log::init(argv[0], now ? Tavrin::Log::FileStart::Now : Tavrin::Log::FileStart::Later);
    for (int i = 2; i < argc; ++i)
        LOG(INFO) << argv[i];
    if (std::strcmp(argv[1], "later") == 0)
        Tavrin::Log::startFile();
    LOG(WARNING) << "done";
    return 0;
}
