// The conformance cases that are code, because no text can say them.
#ifndef TOOLS_CONFORM_PROBES_H_
#define TOOLS_CONFORM_PROBES_H_

#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "quillcaption/quillcaption.h"
#include "support/notation.h"
#include "support/value_at.h"
#include "tools/conform/cases/case.h"
#include "tools/host/isolated_run.h"
#include "tools/host/module_handle.h"
#include "tools/host/printed_text.h"

namespace quill::conform {

// Values as complaints show them.
inline std::string InWords(const std::string& text) {
    return support::quote(text);
}
inline std::string InWords(double number) {
    return support::format(number);
}
template <typename Number>
std::string InWords(Number number) {
    return std::to_string(number);
}

// What a probe works with, in a child process of its own. The module is loaded.
class ProbeBench {
  public:
    ProbeBench(const std::string& path, host::Channel& channel);

    const std::string& path() const { return path_; }
    const host::Library& library() const { return module_->library(); }
    const WebvttModuleMethods& methods() const { return module_->methods(); }
    // What the module has printed since the last call.
    std::string Printed() { return printed_.Take(); }

    void Unload() { module_.reset(); }
    void Load() { module_ = std::make_unique<host::ModuleHandle>(path_); }

    // A parser whose deliveries go to `notify`, and which has been fed "WEBVTT\n\n".
    unsigned int Open(void* tag, WebvttEventNotify notify);
    int Feed(unsigned int handle, std::string_view bytes);

    // Names what is being done, for the case that it crashes.
    void Doing(const std::string& what);
    void Complain(const std::string& what);
    void Expect(bool is_so, const std::string& what) {
        if (!is_so) {
            Complain(what);
        }
    }
    template <typename Value>
    void ExpectEqual(const std::string& what, const Value& expected, const Value& got) {
        if (!(expected == got)) {
            Complain(what + ": expected " + InWords(expected) + ", got " + InWords(got));
        }
    }

  private:
    std::string path_;
    host::Channel& channel_;
    host::PrintedText printed_;
    std::unique_ptr<host::ModuleHandle> module_;
};

// Makes cases of a group.
struct ProbesOf {
    const char* group;

    Case operator()(const char* name, const char* reason, void (*probe)(ProbeBench&)) const {
        return {group, name, reason, "", 0, {}, probe};
    }
};

// For parsers whose cues nobody looks at.
inline void Ignore(WEBVTT_EVENT_T /*event*/, void* /*tag*/, void* /*info*/) {}

// The probes of each group.
std::vector<Case> DescriptorProbes();
std::vector<Case> LayoutProbes();
std::vector<Case> HandleProbes();
std::vector<Case> ChunkProbes();
std::vector<Case> LifetimeProbes();

}  // namespace quill::conform

#endif  // TOOLS_CONFORM_PROBES_H_
