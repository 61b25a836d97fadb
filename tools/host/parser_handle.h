// One parser of the module, with every call made safe for quill's own output and stack.
#ifndef TOOLS_HOST_PARSER_HANDLE_H_
#define TOOLS_HOST_PARSER_HANDLE_H_

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>

#include "quillcaption/quillcaption.h"
#include "tools/host/call_note.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_handle.h"

namespace quill::host {

// An exception left the module; what() says "the module threw" and what. Holds only texts: the
// module's own exception object needs the module's code, which may be unloaded before the last
// handler has run.
class ModuleThrew : public std::runtime_error {
  public:
    // Must be called inside a handler, and describes what that has caught.
    ModuleThrew();
};

// Receives the cues of a track.
class CueSink {
  public:
    virtual ~CueSink() = default;
    // One cue; the record and its text are valid during the call only. Runs inside the module's
    // callback. May throw: the exception is held until the module's call is over.
    virtual void Add(const WebvttCueNode& cue) = 0;
    // All cues of one delivery have been added.
    virtual void Flush() = 0;
};

// A parser of a module, released at the end. Diagnostics are drained after every call, and
// whatever leaves the module leaves as ModuleThrew.
class ParserHandle {
  public:
    // Module and capture must outlive the parser. Throws Failure when the module makes none.
    ParserHandle(const ModuleHandle& module, DiagnosticsCapture& capture);
    ParserHandle(const ParserHandle&) = delete;
    ParserHandle& operator=(const ParserHandle&) = delete;
    ~ParserHandle();

    void SetVideoPts(unsigned long ticks);

    // Returns a WEBVTT_RESULT_... value.
    int Feed(const char* data, unsigned int size);

    // Hands every cue completed since the last call to the sink, then flushes it.
    void Deliver(CueSink& sink);

  private:
    // Holds no parser yet; a constructor that goes on from here may throw, and what it has got by
    // then is released.
    ParserHandle(const WebvttModuleMethods& methods, DiagnosticsCapture& capture);

    static void OnEvent(WEBVTT_EVENT_T event, void* tag, void* info);

    template <typename Call>
    void Guard(ModuleCall name, std::uint32_t size, Call call);

    const WebvttModuleMethods& methods_;
    DiagnosticsCapture& capture_;
    unsigned int handle_ = 0;
    unsigned int fed_ = 0;           // bytes of the last Feed
    CueSink* sink_ = nullptr;        // set during Deliver only
    std::exception_ptr sink_error_;  // what the sink threw inside the callback
};

}  // namespace quill::host

#endif  // TOOLS_HOST_PARSER_HANDLE_H_
