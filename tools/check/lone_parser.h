// Asks the module what it makes of one piece of a track on its own.
#ifndef TOOLS_CHECK_LONE_PARSER_H_
#define TOOLS_CHECK_LONE_PARSER_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_handle.h"
#include "tools/host/parser_handle.h"

namespace quill::check {

// How a call that handled one block ended.
enum class Fate {
    kDelivered,
    kFailed,    // the block is lost, the chunk goes on
    kError,     // the block is lost, and the chunk with it when it was the first to end there
    kRefused,   // result 2: the rest of the chunk is lost
    kThrew,     // an exception: the rest of the chunk is lost
    kInHeader,  // the module is still reading the header
};

// A cue record that outlives its delivery.
struct CueCopy {
    void Assign(const WebvttCueNode& cue);

    double start = 0;
    double end = 0;
    std::string text;
    std::int32_t line = 0;
    int size = 0;
    int position = 0;
    bool snap_to_lines = false;
    std::int32_t align = 0;
    std::int32_t vertical = 0;
};

// Whether everything but the times and the text is the same.
bool SameSettings(const CueCopy& one, const CueCopy& other);
// A number for everything but the times, equal for equal cues.
std::uint32_t Fingerprint(const CueCopy& cue);

struct Verdict {
    Fate fate = Fate::kFailed;
    CueCopy cue;          // for kDelivered
    std::string printed;  // the module's words; empty when there were but the ordinary ones
};

// One parser, fed one piece a call, so that no piece can harm another.
class LoneParser {
  public:
    // Feeds the track's beginning, in which there is no map. The module must be one that accepts
    // it: Failure is thrown otherwise. The capture must collect.
    LoneParser(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
               std::string_view beginning);

    // Feeds a piece that ends where a block ends. The verdict is valid until the next call.
    const Verdict& Ask(std::string_view piece);
    // The same for a piece that has no end, which the line feeds behind a track end.
    const Verdict& AskOpen(std::string_view piece);

  private:
    class Taker : public host::CueSink {
      public:
        explicit Taker(Verdict& verdict) : verdict_(verdict) {}
        void Add(const WebvttCueNode& cue) override;
        void Flush() override {}

      private:
        Verdict& verdict_;
    };

    // What a short piece came to that gave no cue.
    struct Known {
        std::string piece;
        Verdict verdict;
    };

    Known& SlotOf(std::string_view piece);
    void Feed(std::string_view piece);
    void Begin();
    const Verdict& End();

    host::DiagnosticsCapture& capture_;
    host::ParserHandle parser_;
    Verdict verdict_;
    Taker taker_;
    std::vector<Known> known_;    // by a hash of the piece, the last one of each
    std::uint64_t ordinary_ = 0;  // how much a call prints that delivers a plain cue
    std::uint64_t printed_ = 0;   // before the call
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_LONE_PARSER_H_
