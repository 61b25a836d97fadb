#include "tools/host/parser_handle.h"

#include <utility>

#include "tools/console/failure.h"
#include "tools/host/exception_text.h"

namespace quill::host {

ModuleThrew::ModuleThrew() : std::runtime_error("the module threw " + DescribeCurrentException()) {}

template <typename Call>
void ParserHandle::Guard(ModuleCall name, std::uint32_t size, Call call) {
    CallNote& note = CallNote::Own();
    note.Begin(name, size);
    try {
        call();
    } catch (...) {
        note.End();
        capture_.Drain();
        throw ModuleThrew();
    }
    note.End();
    capture_.Drain();
}

ParserHandle::ParserHandle(const WebvttModuleMethods& methods, DiagnosticsCapture& capture)
    : methods_(methods), capture_(capture) {}

ParserHandle::ParserHandle(const ModuleHandle& module, DiagnosticsCapture& capture)
    : ParserHandle(module.methods(), capture) {
    int result = WEBVTT_RESULT_ERROR;
    Guard(ModuleCall::kCreate, 0, [&] { result = methods_.pfnCreate(&handle_); });
    if (result != WEBVTT_RESULT_OK) {
        throw console::Failure(console::kExitTrack,
                               "the module made no parser: result " + std::to_string(result));
    }
    Guard(ModuleCall::kSetEventNty, 0,
          [&] { methods_.pfnSetEventNty(handle_, this, &ParserHandle::OnEvent); });
}

ParserHandle::~ParserHandle() {
    if (handle_ == 0) {
        return;
    }
    try {
        Guard(ModuleCall::kRelease, 0, [&] { methods_.pfnRelease(handle_); });
    } catch (const std::exception&) {
        // Nothing is left to be done with this parser.
    }
}

void ParserHandle::SetVideoPts(unsigned long ticks) {
    Guard(ModuleCall::kSetVideoPts, 0, [&] { methods_.pfnSetVideoPTS(handle_, ticks); });
}

int ParserHandle::Feed(const char* data, unsigned int size) {
    int result = WEBVTT_RESULT_ERROR;
    fed_ = size;
    Guard(ModuleCall::kParse, size, [&] { result = methods_.pfnParse(handle_, data, size); });
    return result;
}

void ParserHandle::Deliver(CueSink& sink) {
    sink_ = &sink;
    Guard(ModuleCall::kGetParseResult, fed_, [&] { methods_.pfnGetParseResult(handle_); });
    sink_ = nullptr;
    if (sink_error_) {
        std::rethrow_exception(std::exchange(sink_error_, nullptr));
    }
    sink.Flush();
}

void ParserHandle::OnEvent(WEBVTT_EVENT_T event, void* tag, void* info) {
    ParserHandle& self = *static_cast<ParserHandle*>(tag);
    if (event != WEBVTT_EVENT_PARSE_RESULT || self.sink_ == nullptr) {
        return;
    }
    try {
        const WebvttCueNode* cue = static_cast<const WebvttDataInfo*>(info)->prCueList;
        for (; cue != nullptr; cue = cue->prNext) {
            self.sink_->Add(*cue);
        }
    } catch (...) {
        self.sink_error_ = std::current_exception();
    }
}

}  // namespace quill::host
