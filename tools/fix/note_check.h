// Holds one cue to what the fixes state about its lines.
#ifndef TOOLS_FIX_NOTE_CHECK_H_
#define TOOLS_FIX_NOTE_CHECK_H_

#include <cstddef>
#include <optional>
#include <string>

#include "tools/check/lone_parser.h"
#include "tools/fix/document.h"
#include "tools/fix/oracle.h"

namespace quill::fix {

// Of seconds that are summed up in another order, or with another map.
constexpr double kRounding = 1e-6;

// `cue` is what the module makes of the lines of the block, which has a timing line. Returns what
// does not hold, in words.
std::optional<std::string> CheckNotes(const Document& outcome, const Range& block,
                                      const check::CueCopy& cue, Oracle& oracle);

// Whether nothing was to be seen on a line that was removed, or nothing is stated to be.
bool MayGo(const Document& outcome, const Line& gone);

}  // namespace quill::fix

#endif  // TOOLS_FIX_NOTE_CHECK_H_
