// A recorded session: what a host called, and what came of it.
#ifndef TOOLS_REPLAY_SESSION_H_
#define TOOLS_REPLAY_SESSION_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/cue_record.h"
#include "support/session_log.h"

namespace quill::replay {

using Function = support::session_log::Verb;

// As the table names it: "pfnParse".
const char* NameOf(Function function);

// What a callback got.
struct Delivery {
    std::vector<support::CueRecord> cues;
    std::uint32_t count;  // as the info block has it
    std::uint32_t reserved;
    std::uint64_t us = 0;  // since the session began
};

// What a call came to.
struct Outcome {
    std::optional<int> result;             // of those functions that have one
    std::optional<std::string> exception;  // "std::out_of_range: basic_string::at"
    std::string printed;                   // without what calls in the callback printed
    std::vector<Delivery> deliveries;
};

// The outcome as case files have it; empty when nothing came of the call.
std::vector<std::string> DescribeOutcome(Function function, const Outcome& outcome);

struct Mistake {
    std::uint32_t call;
    std::string code;  // "H105"
    std::string text;  // the line that was said
};

// A call that was made in the callback of another.
struct Nested {
    std::size_t call;      // its place in Session::calls
    std::size_t delivery;  // which of the other's deliveries called back, from 1
};

struct Call {
    std::uint32_t number = 0;
    std::size_t line = 0;  // of the log
    std::uint64_t us = 0;  // since the session began
    std::uint32_t thread = 0;
    Function function = Function::kCreate;

    std::uint32_t parser = 0;  // counted in the order of creation; 0 for none that is live
    std::uint32_t handle = 0;  // as the host gave it
    bool has_pointer = true;   // of pfnCreate, pfnParse and pfnSetEventNty: not null
    std::string bytes;         // of pfnParse
    std::uint32_t size = 0;    // of pfnParse, as the host gave it
    std::uint32_t ticks = 0;   // of pfnSetVideoPTS

    bool was_passed_on = true;              // to the module; else it is not made again
    bool has_returned = false;              // else the log ends within it
    bool ends_parser = false;               // a release that was put off until then follows it
    bool has_printed = false;               // it is known what was printed
    std::optional<std::uint64_t> ended_us;  // when it returned, since the session began
    Outcome outcome;
    std::vector<Mistake> mistakes;

    std::optional<std::size_t> within;  // the call in whose callback it was made
    std::vector<Nested> nested;
};

// What a log says of itself, as far as it does.
struct Recording {
    std::string recorder;    // "guard 0.1.0"
    std::string module;      // its file name
    std::string started;     // time of day in UTC
    bool is_hidden = false;  // what the cues say cannot be read
};

struct Session {
    std::string name;  // of the log
    Recording recording;
    std::vector<Call> calls;
    std::vector<Mistake> mistakes;  // that belong to no call: of unloading
    std::uint32_t overlaps = 0;     // calls that began while another thread's was in progress
    bool is_cut_off = false;        // the last line is not whole
    bool was_stopped = false;       // at the limit of the log's size
};

// "pfnParse, parser 1, 8 bytes \"WEBVTT\\n\\n\""
std::string DescribeCall(const Call& call);

// "session.log:12: call 7, pfnParse, parser 1, 8 bytes \"WEBVTT\\n\\n\""
std::string Where(const Session& session, const Call& call);

}  // namespace quill::replay

#endif  // TOOLS_REPLAY_SESSION_H_
