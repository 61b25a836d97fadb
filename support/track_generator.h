// Dialogue, as subtitle tracks hold it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace support {

/// How a dialogue is written. Whatever is not said is as in the usual one.
struct Style {
    std::string_view name = "usual";   ///< line feeds, hours, settings on a third of the cues
    std::string_view line_end = "\n";  ///< of every line
    bool has_hours = true;             ///< in its times
    bool has_four_settings = false;    ///< on every cue
};

/// The usual style and those that as many tracks have.
constexpr Style kStyles[] = {
    {},
    {"crlf", "\r\n"},
    {"no-hours", "\n", false},
    {"four-settings", "\n", true, true},
};

/// Null when there is no such style.
const Style* find_style(std::string_view name);

/// A track of at least so many bytes, the same one for the same style on every machine.
///
/// One or two lines of 25 to 40 characters a cue. Usually a fifth of the cues have an identifier, a
/// third have settings, a quarter have markup; some lines hold a character reference, some words
/// hold letters of more than one byte. Every cue parses, so a player is given exactly *pCueCount
/// cues.
std::string make_dialogue(std::size_t size, const Style& style = {}, unsigned* pCueCount = nullptr);

/// A track of plain cues only: one line, no identifier, no settings, no markup.
std::string make_plain_cues(unsigned count);

}  // namespace support
