// The formats in which quill prints cues. In none of them can a cue's text send control bytes.
#ifndef TOOLS_CUES_CUE_FORMAT_H_
#define TOOLS_CUES_CUE_FORMAT_H_

#include <cstdint>
#include <string>

#include "quillcaption/quillcaption.h"

namespace quill::cues {

// Each of these gives one cue as it stands in the output, its last line feed included. `number`
// counts the cues of the track from 1.
using CueFormatter = std::string (*)(const WebvttCueNode& cue, std::uint64_t number);

// Made for reading: the times, the settings that differ from a record's defaults, then the
// text's lines indented by two spaces, then an empty line.
std::string FormatAsText(const WebvttCueNode& cue, std::uint64_t number);

// One JSON object on one line of ASCII: every field of the record but the link, by its own name
// and in its order. Bytes that are not UTF-8 become U+FFFD; a time that is no number is null.
std::string FormatAsJson(const WebvttCueNode& cue, std::uint64_t number);

// A numbered SubRip block. That format knows neither settings nor negative times (they become
// zero), and an empty line ends a block, so those of the text are dropped.
std::string FormatAsSrt(const WebvttCueNode& cue, std::uint64_t number);

}  // namespace quill::cues

#endif  // TOOLS_CUES_CUE_FORMAT_H_
