// Tracks whose lines end in something that players take for a part of the line.
#ifndef TOOLS_FIX_LINE_ENDS_H_
#define TOOLS_FIX_LINE_ENDS_H_

#include <optional>
#include <string>
#include <string_view>

namespace quill::fix {

struct LineEnds {
    std::string name;  // of what stood in their place
    std::string text;  // the track with line feeds
};

// For a track that is a single line otherwise, and holds a cue. Nothing for all others.
std::optional<LineEnds> FindLineEnds(std::string_view track);

}  // namespace quill::fix

#endif  // TOOLS_FIX_LINE_ENDS_H_
