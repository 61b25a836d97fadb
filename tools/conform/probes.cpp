#include "tools/conform/probes.h"

#include "support/exact_block.h"

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
    support::ExactBlock block(bytes);
    return methods().pfnParse(handle, block.data(), block.size());
}

void ProbeBench::Doing(const std::string& what) {
    channel_.Write("step " + what + "\n");
}

void ProbeBench::Complain(const std::string& what) {
    channel_.Write("got " + support::escape(what) + "\n");
}

}  // namespace quill::conform
