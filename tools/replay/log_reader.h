// Reads session logs. docs/session-log.md describes how they are written.
#ifndef TOOLS_REPLAY_LOG_READER_H_
#define TOOLS_REPLAY_LOG_READER_H_

#include <string>
#include <string_view>

#include "tools/replay/session.h"

namespace quill::replay {

// A log of a hundred megabytes and what is made of it fit into the memory of a 32-bit program.
constexpr std::size_t kLargestLog = 128u << 20;

// The log in that file, or in standard input for "-". Throws Failure when it cannot be read or is
// too large, and what ReadSession throws.
Session ReadLog(const std::string& path);

// The session of a log's text, up to where it is cut off. Throws Failure, which names the log and
// the line, when it is damaged before that, or says what no recorder would write.
Session ReadSession(const std::string& name, std::string_view text);

}  // namespace quill::replay

#endif  // TOOLS_REPLAY_LOG_READER_H_
