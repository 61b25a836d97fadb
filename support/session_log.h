// The words of a session log, which the guard writes and quill writes and reads.
//
// A log is lines of JSON, an object each; docs/session-log.md describes them. Texts that are the
// track's are byte strings: each character, U+0000 to U+00FF, stands for one byte, so that every
// byte survives and ASCII stays readable.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace support::session_log {

constexpr const char* kName = "quillcaption";  ///< what "log" says
constexpr unsigned kVersion = 1;

/// What a host calls, in the order of the method table.
enum class Verb : unsigned char {
    kCreate,
    kRelease,
    kParse,
    kSetEventNty,
    kGetParseResult,
    kSetVideoPts,
};

/// As "do" names them: the fields of the table without their prefix.
constexpr std::array<const char*, 6> kVerbs = {
    "create", "release", "parse", "set_event_nty", "get_parse_result", "set_video_pts",
};

/// The fields of the objects. The first of each kind of object tells the kind.
namespace field {

constexpr const char* kLog = "log";  // the header, first line
constexpr const char* kVersion = "version";
constexpr const char* kGuard = "guard";  // who wrote it: the version of the guard or
constexpr const char* kQuill = "quill";  // of quill
constexpr const char* kModule = "module";
constexpr const char* kText = "text";  // also a mistake's line
constexpr const char* kStarted = "started";

constexpr const char* kCall = "call";  // a call, before it is passed on
constexpr const char* kMicroseconds = "us";
constexpr const char* kThread = "thread";
constexpr const char* kDo = "do";
constexpr const char* kHandle = "handle";
constexpr const char* kParser = "parser";
constexpr const char* kPointer = "pointer";
constexpr const char* kBytes = "bytes";
constexpr const char* kLength = "length";
constexpr const char* kCallback = "callback";
constexpr const char* kTicks = "ticks";

constexpr const char* kDelivery = "delivery";  // what the callback got
constexpr const char* kCues = "cues";

constexpr const char* kReturn = "return";  // what came of the call
constexpr const char* kResult = "result";
constexpr const char* kException = "exception";
constexpr const char* kType = "type";
constexpr const char* kWhat = "what";
constexpr const char* kPrinted = "printed";
constexpr const char* kPassed = "passed";
constexpr const char* kReleased = "released";

constexpr const char* kMistake = "mistake";

constexpr const char* kEnd = "end";  // the module was unloaded
constexpr const char* kCalls = "calls";
constexpr const char* kParsers = "parsers";
constexpr const char* kMistakes = "mistakes";

constexpr const char* kStopped = "stopped";  // nothing was recorded from here on

}  // namespace field

constexpr const char* kShown = "shown";
constexpr const char* kHidden = "hidden";
constexpr const char* kLimit = "limit";  ///< what "stopped" says

/// The verb of a name; nothing for a name that is none.
std::optional<Verb> verb_of(std::string_view name);

/// The UTF-8 text in which each character stands for one of the bytes.
std::string byte_string(std::string_view bytes);

/// The bytes that a UTF-8 text stands for; nothing when a character is above U+00FF.
std::optional<std::string> bytes_of(std::string_view byte_string);

}  // namespace support::session_log
