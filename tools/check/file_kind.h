// What a file looks like that is no track for the module.
#ifndef TOOLS_CHECK_FILE_KIND_H_
#define TOOLS_CHECK_FILE_KIND_H_

#include <cstddef>
#include <string_view>

#include "tools/check/finding.h"

namespace quill::check {

// For a track whose first line the module has rejected.
Finding ExplainRejection(std::string_view track);

// The size of what a first line has for the signature, when that is it but for one letter or for
// what stands between its letters: "WEBVT", "Web VTT". 0 for all else.
std::size_t NearlySignatureSize(std::string_view line);

}  // namespace quill::check

#endif  // TOOLS_CHECK_FILE_KIND_H_
