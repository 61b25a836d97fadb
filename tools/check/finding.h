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
    Finding(std::uint32_t at, std::string_view name, std::string text)
        : line(at), code(&CodeNamed(name)), message(std::move(text)) {}

    std::uint32_t line;            // of the track, from 1
    std::uint32_t cause_line = 0;  // on which that stands for which this was lost; 0 if on none
    const Code* code;
    std::string message;  // what happened here; safe to print
};

using Findings = std::vector<Finding>;

// Bytes of the track in quotation marks: shortened to a few words, then escaped.
std::string Quoted(std::string_view text);

}  // namespace quill::check

#endif  // TOOLS_CHECK_FINDING_H_
