// What a fix states about a line that it has rewritten, so that it can be held to it.
#ifndef TOOLS_FIX_NOTE_H_
#define TOOLS_FIX_NOTE_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/check/codes.h"

namespace quill::fix {

// A field of a cue record that a rewritten setting comes to.
struct Effect {
    enum class Field { kAlign, kVertical, kSize, kPosition, kLine, kLinePercent };

    Field field;
    int value;
};

// Bytes of a line's text as it was read, what stands in their place, and what a player shows there.
struct Span {
    std::size_t begin;
    std::size_t size;
    std::string replacement;
    std::string shown;
};

struct Note {
    // Of a timing line: the times that were rewritten, in milliseconds.
    std::optional<std::int64_t> start;
    std::optional<std::int64_t> end;
    std::optional<std::string> kept_settings;  // those not rewritten; all when nothing is stated
    std::vector<Effect> effects;
    // Of a line of text.
    std::vector<Span> spans;
};

}  // namespace quill::fix

#endif  // TOOLS_FIX_NOTE_H_
