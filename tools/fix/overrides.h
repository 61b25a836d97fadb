// Codes of SubStation that converters leave in the text: "{\an8}", "{\i1}", "\N".
#ifndef TOOLS_FIX_OVERRIDES_H_
#define TOOLS_FIX_OVERRIDES_H_

#include <cstddef>
#include <optional>
#include <string_view>

#include "tools/fix/text_change.h"

namespace quill::fix {

// For a place in the text of a cue where a backslash stands, or a brace before one. Nothing when
// what stands there may be meant as it is, or for more than one thing.
std::optional<Change> FixOverride(std::string_view text, std::size_t at);

}  // namespace quill::fix

#endif  // TOOLS_FIX_OVERRIDES_H_
