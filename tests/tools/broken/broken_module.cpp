// The built module in a wrapper that does one thing wrong, which BROKEN_MODULE_FAULT names: for
// the tests of quill inspect and quill conform. Without a fault it is as good as the module that it
// wraps, whose file BROKEN_MODULE_WRAPS names.
#include <dlfcn.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <stdexcept>
#include <string>

#include "quillcaption/quillcaption.h"

#define EXPORTED __attribute__((visibility("default")))

EXPORTED int IZorWebVtt_Parser_Create(unsigned int* handle);
EXPORTED void IZorWebVtt_Parser_Release(unsigned int handle);
EXPORTED int IZorWebVtt_Parser_rsltParse(unsigned int handle, const void* data, unsigned int size);
EXPORTED void IZorWebVtt_Parser_vSetWebvttEventNty(unsigned int handle, void* tag,
                                                   WebvttEventNotify notify);
EXPORTED void IZorWebVtt_Parser_vGetParseResult(unsigned int handle);
EXPORTED void IZorWebVtt_Parser_vSetVideoPTS(unsigned int handle, unsigned long ticks);

extern "C" {
EXPORTED WebvttModuleMethods WebVtt_Module_Methods = {
    IZorWebVtt_Parser_Create,          IZorWebVtt_Parser_Release,
    IZorWebVtt_Parser_rsltParse,       IZorWebVtt_Parser_vSetWebvttEventNty,
    IZorWebVtt_Parser_vGetParseResult, IZorWebVtt_Parser_vSetVideoPTS};
EXPORTED WebvttModuleInfo WEBVTT_MODULE_INFO = {1, "quillcaption.so", &WebVtt_Module_Methods, {}};
}

namespace {

std::string TextOf(const char* variable) {
    const char* const text = std::getenv(variable);
    return text != nullptr ? text : "";
}

bool HasFault(const char* name) {
    static const std::string kFault = TextOf("BROKEN_MODULE_FAULT");
    return kFault == name;
}

void* wrapped = nullptr;
const WebvttModuleMethods* call = nullptr;
WebvttModuleMethods second_table;
std::set<unsigned int> released;
// The callback of the only parser that delivers at a time.
WebvttEventNotify notify_host = nullptr;

void SetVideoPtsUnderNoName(unsigned int handle, unsigned long ticks) {
    call->pfnSetVideoPTS(handle, ticks);
}

void BreakDescriptor() {
    second_table = WebVtt_Module_Methods;
    if (HasFault("word")) {
        WEBVTT_MODULE_INFO.u4LoaderWord = 2;
    } else if (HasFault("name")) {
        WEBVTT_MODULE_INFO.pcModuleName = "other.so";
    } else if (HasFault("null-name")) {
        WEBVTT_MODULE_INFO.pcModuleName = nullptr;
    } else if (HasFault("wild-name")) {
        WEBVTT_MODULE_INFO.pcModuleName = reinterpret_cast<const char*>(16);
    } else if (HasFault("tail")) {
        WEBVTT_MODULE_INFO.au1Reserved[131] = 7;
    } else if (HasFault("second-table")) {
        WEBVTT_MODULE_INFO.prMethods = &second_table;
    } else if (HasFault("unnamed-slot")) {
        WebVtt_Module_Methods.pfnSetVideoPTS = SetVideoPtsUnderNoName;
    } else if (HasFault("swapped-slots")) {
        WebVtt_Module_Methods.pfnGetParseResult = IZorWebVtt_Parser_Release;
        WebVtt_Module_Methods.pfnRelease = IZorWebVtt_Parser_vGetParseResult;
    } else if (HasFault("empty-slot")) {
        WebVtt_Module_Methods.pfnSetVideoPTS = nullptr;
    }
}

[[noreturn]] void Hang() {
    for (;;) {
        pause();
    }
}

// Loads the wrapped module with the wrapper, and unloads it with it.
struct Wrapper {
    Wrapper() {
        if (HasFault("crash-at-load")) {
            std::raise(SIGSEGV);
        } else if (HasFault("exit-at-load")) {
            _exit(0);
        } else if (HasFault("hang-at-load")) {
            Hang();
        } else if (HasFault("hang-at-unload")) {
            std::atexit([] { Hang(); });
        } else if (HasFault("crash-at-the-end")) {
            // Of a program, when this code has gone long since.
            on_exit([](int /*status*/, void* /*nothing*/) {}, nullptr);
        }
        wrapped = dlopen(TextOf("BROKEN_MODULE_WRAPS").c_str(), RTLD_NOW | RTLD_LOCAL);
        const void* const info =
            wrapped != nullptr ? dlsym(wrapped, QUILLCAPTION_DESCRIPTOR_SYMBOL) : nullptr;
        if (info == nullptr) {
            std::fprintf(stderr, "broken module: BROKEN_MODULE_WRAPS names no module\n");
            std::abort();
        }
        call = static_cast<const WebvttModuleInfo*>(info)->prMethods;
        BreakDescriptor();
        if (HasFault("never-unloaded")) {
            Dl_info own = {};
            dladdr(&WEBVTT_MODULE_INFO, &own);
            dlopen(own.dli_fname, RTLD_NOW | RTLD_NODELETE);
        }
    }

    ~Wrapper() {
        dlclose(wrapped);
        if (HasFault("crash-at-unload")) {
            std::raise(SIGSEGV);
        }
    }
} wrapper;

// Takes the line away from what is printed while an object of this class lives.
class WithoutLine {
  public:
    explicit WithoutLine(const char* line) : line_(line), file_(std::tmpfile()) {
        std::fflush(stdout);
        stdout_ = dup(STDOUT_FILENO);
        dup2(fileno(file_), STDOUT_FILENO);
    }
    WithoutLine(const WithoutLine&) = delete;
    WithoutLine& operator=(const WithoutLine&) = delete;
    ~WithoutLine() {
        std::fflush(stdout);
        dup2(stdout_, STDOUT_FILENO);
        close(stdout_);
        std::rewind(file_);
        char line[512];
        while (std::fgets(line, sizeof(line), file_) != nullptr) {
            if (line_ != line) {
                std::fputs(line, stdout);
            }
        }
        std::fclose(file_);
    }

  private:
    std::string line_;
    std::FILE* file_;
    int stdout_;
};

void SpoilRecords(WebvttDataInfo& info) {
    for (WebvttCueNode* cue = info.prCueList; cue != nullptr; cue = cue->prNext) {
        if (HasFault("negative-lines") && cue->i4Line < 0) {
            ++cue->i4Line;
        } else if (HasFault("right-is-left") && cue->eTextAlign == WEBVTT_TEXT_ALIGN_RIGHT) {
            cue->eTextAlign = WEBVTT_TEXT_ALIGN_LEFT;
        }
    }
    if (HasFault("counts-to-two") && info.u4CueCount > 2) {
        info.u4CueCount = 2;
    }
}

void OnEvent(WEBVTT_EVENT_T event, void* tag, void* info) {
    WebvttDataInfo shown = *static_cast<WebvttDataInfo*>(info);
    SpoilRecords(shown);
    WebvttCueNode* const first = shown.prCueList;
    const bool is_circle = HasFault("circle") && first != nullptr && first->prNext == nullptr;
    if (is_circle) {
        first->prNext = first;
    }
    notify_host(event, tag, &shown);
    if (is_circle) {
        first->prNext = nullptr;
    }
}

void Misbehave(const std::string& chunk) {
    const auto holds = [&chunk](const char* text) { return chunk.find(text) != std::string::npos; };
    if (HasFault("crash") && holds("&nbsp;")) {
        std::raise(SIGSEGV);
    } else if (HasFault("hang") && holds("&lrm;")) {
        Hang();
    } else if (HasFault("fork") && holds("NOTE")) {
        // What it has for standard output keeps a host's reader waiting.
        if (fork() == 0) {
            Hang();
        }
    } else if (HasFault("exit") && holds("NOTE")) {
        _exit(0);
    } else if (HasFault("leak")) {
        static void* lost;
        lost = std::malloc(100);
        std::memset(lost, 1, 100);
    } else if (HasFault("flood") && holds("&rlm;")) {
        for (;;) {
            std::printf("a line of those that never end\n");
        }
    }
}

}  // namespace

int IZorWebVtt_Parser_Create(unsigned int* handle) {
    const int result = call->pfnCreate(handle);
    if (handle != nullptr) {
        released.erase(*handle);
    }
    return result;
}

void IZorWebVtt_Parser_Release(unsigned int handle) {
    if (HasFault("silent-second-release") && released.count(handle) != 0) {
        return;
    }
    released.insert(handle);
    call->pfnRelease(handle);
}

int IZorWebVtt_Parser_rsltParse(unsigned int handle, const void* data, unsigned int size) {
    if (data != nullptr) {
        Misbehave({static_cast<const char*>(data), size});
    }
    if (HasFault("missing-line")) {
        const WithoutLine filter("[WEBVTT] ERR:: Item is Empty\n");
        return call->pfnParse(handle, data, size);
    }
    try {
        return call->pfnParse(handle, data, size);
    } catch (const std::out_of_range& error) {
        if (HasFault("other-exception")) {
            throw std::runtime_error(error.what());
        }
        throw;
    }
}

// The tag of a host reaches it unchanged; only one callback is remembered, which is enough for
// hosts that have one.
void IZorWebVtt_Parser_vSetWebvttEventNty(unsigned int handle, void* tag,
                                          WebvttEventNotify notify) {
    if (notify != nullptr) {
        notify_host = notify;
    }
    call->pfnSetEventNty(handle, tag, notify != nullptr ? OnEvent : nullptr);
}

void IZorWebVtt_Parser_vGetParseResult(unsigned int handle) {
    call->pfnGetParseResult(handle);
}

void IZorWebVtt_Parser_vSetVideoPTS(unsigned int handle, unsigned long ticks) {
    call->pfnSetVideoPTS(handle, ticks);
}
