// What quill check has to say about one line of a track.
#ifndef TOOLS_CHECK_FINDING_H_
#define TOOLS_CHECK_FINDING_H_

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

    std::uint32_t line;            // of the track, from 1
    std::uint32_t cause_line = 0;  // on which that stands for which this was lost; 0 if on none
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
