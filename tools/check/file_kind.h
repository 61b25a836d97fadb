// What a file looks like that is no track for the module.
#ifndef TOOLS_CHECK_FILE_KIND_H_
#define TOOLS_CHECK_FILE_KIND_H_

#include <string_view>

#include "tools/check/finding.h"

namespace quill::check {

// For a track whose first line the module has rejected.
Finding ExplainRejection(std::string_view track);

}  // namespace quill::check

#endif  // TOOLS_CHECK_FILE_KIND_H_
