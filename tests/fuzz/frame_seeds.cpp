// Writes the seed corpus of the frame fuzz target: well-formed frames of every kind, made
// with the encoder itself so the seeds follow the format as it is today.
//
//   frame_seeds OUT_DIR

#include "UniqueIPC/Frame.h"

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

using namespace Tavrin::UniqueIPC;

namespace {

Call call(std::string function, std::vector<std::string> arguments, std::string typeName = "QString")
{
    Call c;
    c.serial = 7;
    c.sender = "klipvane+klipvane+4242+1a2b";
    c.target = "klipvane";
    c.function = std::move(function);
    c.version = {1, 0, 0, 0, std::string()};
    c.types.assign(arguments.size(), typeName);
    c.arguments = std::move(arguments);
    return c;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: frame_seeds OUT_DIR\n");
        return 2;
    }
    Call versioned = call("OnPackageInstall", {"pack", "2.1", "/opt/pack", "1", "-1"});
    versioned.types = {"QString", "QString", "QString", "enum64_t", "enum64_t"};
    versioned.version = {2, 3, 4, 5, "beta"};
    const std::string addFiles = encodeCall(call("OnAddFiles", {"/home/u/Videos/clip 1.mp4", "/tmp/\xc3\xa4\xc3\xb6.mov"}));
    const std::vector<std::pair<const char*, std::string>> seeds = {
        {"hello", encodeHello("klipvane+screencapture+77+ff00")},
        {"hello_anonymous", encodeHello(std::string())},
        {"reply_handled", encodeReply(1, ReplyStatus::Handled)},
        {"reply_failed", encodeReply(0xfffffffeu, ReplyStatus::Failed)},
        {"call_add_files", addFiles},
        {"call_no_arguments", encodeCall(call("hello_successfull", {}))},
        {"call_versioned", encodeCall(versioned)},
        {"stream", encodeHello("klipvane+klipvane+1+2") + addFiles + encodeReply(9, ReplyStatus::Handled)},
        {"stream_truncated", addFiles + addFiles.substr(0, addFiles.size() / 2)},
    };
    for (const auto& seed : seeds) {
        const std::string path = std::string(argv[1]) + "/" + seed.first;
        std::FILE* file = std::fopen(path.c_str(), "wb");
        if (!file || std::fwrite(seed.second.data(), 1, seed.second.size(), file) != seed.second.size()) {
            std::fprintf(stderr, "frame_seeds: cannot write %s\n", path.c_str());
            if (file)
                std::fclose(file);
            return 1;
        }
        std::fclose(file);
    }
    return 0;
}
