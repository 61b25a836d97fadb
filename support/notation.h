// How bytes, numbers and records are written in case files, in reports and in messages of failing
// tests.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/cue_record.h"

namespace support {

/// Printable ASCII as it is; \n \r \t \\ \xNN for the rest, and \x20 for a space at the end.
std::string escape(std::string_view bytes);

/// The same in double quotes, with \" inside.
std::string quote(std::string_view bytes);

/// The bytes of quoted texts with spaces between them; "ab"*3 stands for "ababab". Nothing when
/// it is not written so.
std::optional<std::string> unquote(std::string_view text);

/// A number in decimal digits, or in hexadecimal ones behind 0x.
std::optional<std::uint32_t> parse_number(std::string_view text);

/// Decimal digits that read back as the same double, and no more than it takes.
std::string format(double value);

/// A record in one line: start, end, text, and the fields that are not as in a cue without
/// settings.
std::string describe(const CueRecord& cue);

/// Printed bytes as a case expects them: "! message" for a line behind the module's prefix,
/// "| text" for any other, "unfinished | text" for one without a line feed.
std::vector<std::string> describe_printed(std::string_view bytes);

}  // namespace support
