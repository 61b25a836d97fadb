// What quill check has to say about one line of a track.
#ifndef TOOLS_CHECK_FINDING_H_
#define TOOLS_CHECK_FINDING_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/check/codes.h"

namespace quill::check {

struct Finding {
    Finding(std::uint32_t at, std::string_view name, std::string text, std::string how = "")
        : line(at), code(&CodeNamed(name)), message(std::move(text)), fix(std::move(how)) {}

    // What the author can do here.
    std::string hint() const { return fix.empty() ? code->hint : fix; }

    // The same about the character at that byte of its line, which `text` begins with.
    Finding At(std::string_view text, std::size_t byte) const;
    // About `piece`, which is a part of `text`.
    Finding At(std::string_view text, std::string_view piece) const {
        return At(text, static_cast<std::size_t>(piece.data() - text.data()));
    }
    // The same, brought about by what stands on another line.
    Finding Because(std::uint32_t other_line) const;

    std::uint32_t line;            // of the track, from 1
    std::uint32_t column = 0;      // of a character on it, from 1; 0 for the line as a whole
    std::uint32_t cause_line = 0;  // on which that stands which brought this about; 0 if on none
    const Code* code;
    std::string message;  // what happened here; safe to print
    std::string fix;      // safe to print; empty when that of the code does
};

using Findings = std::vector<Finding>;

// Bytes of the track in quotation marks: shortened to a few words, then made visible.
std::string Quoted(std::string_view text);
// The same for what has to be read whole, such as what an author is to write.
std::string QuotedWhole(std::string_view text);

}  // namespace quill::check

#endif  // TOOLS_CHECK_FINDING_H_
