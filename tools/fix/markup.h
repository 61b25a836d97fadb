// References and tags in the text of cues that do not come to what is shown.
#ifndef TOOLS_FIX_MARKUP_H_
#define TOOLS_FIX_MARKUP_H_

#include <cstddef>
#include <optional>
#include <string_view>

#include "tools/fix/text_change.h"

namespace quill::fix {

// For text that begins with "&" or "<". `done` comes to be how much has been dealt with when
// nothing is to change.
std::optional<Change> FixReference(std::string_view rest, std::size_t& done);
std::optional<Change> FixTag(std::string_view rest, std::size_t& done);

}  // namespace quill::fix

#endif  // TOOLS_FIX_MARKUP_H_
