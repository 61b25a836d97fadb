#include "tools/parser_handle.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <typeinfo>
#include <utility>

#include "tools/failure.h"

namespace quill {
namespace {

std::string CurrentTypeName() {
    const std::type_info* type = abi::__cxa_current_exception_type();
    if (type == nullptr) {
        return "an exception that is not of C++";
    }
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(type->name(), nullptr, nullptr, &status), &std::free);
    return status == 0 ? name.get() : type->name();
}

// "std::out_of_range: basic_string::at", or the bare type where there is no text.
std::string DescribeCurrentException() {
    std::string name = CurrentTypeName();
    try {
        throw;
    } catch (const std::exception& error) {
        return name + ": " + error.what();
    } catch (...) {
        return name;
    }
}

}  // namespace

ModuleThrew::ModuleThrew() : std::runtime_error("the module threw " + DescribeCurrentException()) {}

template <typename Call>
void ParserHandle::Guard(Call call) {
    try {
        call();
    } catch (...) {
        capture_.Drain();
        throw ModuleThrew();
    }
    capture_.Drain();
}

ParserHandle::ParserHandle(const WebvttModuleMethods& methods, DiagnosticsCapture& capture)
    : methods_(methods), capture_(capture) {}

ParserHandle::ParserHandle(const ModuleHandle& module, DiagnosticsCapture& capture)
    : ParserHandle(module.methods(), capture) {
    int result = WEBVTT_RESULT_ERROR;
    Guard([&] { result = methods_.pfnCreate(&handle_); });
    if (result != WEBVTT_RESULT_OK) {
        throw Failure(kExitTrack, "the module made no parser: result " + std::to_string(result));
    }
    Guard([&] { methods_.pfnSetEventNty(handle_, this, &ParserHandle::OnEvent); });
}

ParserHandle::~ParserHandle() {
    if (handle_ == 0) {
        return;
    }
    try {
        Guard([&] { methods_.pfnRelease(handle_); });
    } catch (const std::exception&) {
        // Nothing is left to be done with this parser.
    }
}

void ParserHandle::SetVideoPts(unsigned long ticks) {
    Guard([&] { methods_.pfnSetVideoPTS(handle_, ticks); });
}

int ParserHandle::Feed(const char* data, unsigned int size) {
    int result = WEBVTT_RESULT_ERROR;
    Guard([&] { result = methods_.pfnParse(handle_, data, size); });
    return result;
}

void ParserHandle::Deliver(CueSink& sink) {
    sink_ = &sink;
    Guard([&] { methods_.pfnGetParseResult(handle_); });
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

}  // namespace quill
