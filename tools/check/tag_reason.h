// Why a start tag cost its cue, and what to write instead.
#ifndef TOOLS_CHECK_TAG_REASON_H_
#define TOOLS_CHECK_TAG_REASON_H_

#include <string_view>

#include "tools/check/block_text.h"
#include "tools/check/finding.h"
#include "tools/check/lone_parser.h"

namespace quill::check {

// `name` is what the module says the name of the tag is. Whether it knows another name is asked.
Finding UnknownTag(const BlockText& block, std::string_view name, LoneParser& asked);

// The name of the tag of a track that means what that of a page does, such as "b" for "strong"; any
// other name in small letters.
std::string TagOfTrack(std::string name);

}  // namespace quill::check

#endif  // TOOLS_CHECK_TAG_REASON_H_
