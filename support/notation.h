// How bytes and records are written in transcripts and in messages of failing tests.
#pragma once

#include <string>
#include <string_view>

#include "support/cue_record.h"

namespace support {

/// Bytes with everything but printable ASCII escaped: \n \r \t \\ \xNN, and a trailing space.
std::string escape(std::string_view bytes);

/// The same in double quotes.
std::string quote(std::string_view bytes);

/// The bytes of one or more quoted texts; what lies between two of them is skipped.
std::string unquote(std::string_view text);

/// The shortest text that reads back as the same double.
std::string number(double value);

/// A record in one line: start, end, text, and every field that is not as a cue without settings
/// has it.
std::string describe(const CueRecord& cue);

}  // namespace support
