#include "tools/conform/probes.h"

#include <algorithm>

namespace quill::conform {

ProbeBench::ProbeBench(const std::string& path, host::Channel& channel)
    : path_(path), channel_(channel) {
    Load();
}

unsigned int ProbeBench::Open(void* tag, WebvttEventNotify notify) {
    unsigned int handle = 0;
    ExpectEqual("the result of Create", 0, methods().pfnCreate(&handle));
    methods().pfnSetEventNty(handle, tag, notify);
    ExpectEqual("the result of a blank header", 0, Feed(handle, "WEBVTT\n\n"));
    return handle;
}

int ProbeBench::Feed(unsigned int handle, std::string_view bytes) {
    const auto block = std::make_unique<char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), block.get());
    const int result =
        methods().pfnParse(handle, block.get(), static_cast<unsigned int>(bytes.size()));
    std::memset(block.get(), 0xDD, bytes.size());
    return result;
}

void ProbeBench::Doing(const std::string& what) {
    channel_.Write("step " + what + "\n");
}

void ProbeBench::Complain(const std::string& what) {
    channel_.Write("got " + EscapeBytes(what) + "\n");
}

}  // namespace quill::conform
