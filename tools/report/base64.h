// Bytes as text that can stand anywhere.
#ifndef TOOLS_REPORT_BASE64_H_
#define TOOLS_REPORT_BASE64_H_

#include <string>
#include <string_view>

namespace quill::report {

// The bytes in the alphabet of RFC 4648, padded.
std::string Base64(std::string_view bytes);

}  // namespace quill::report

#endif  // TOOLS_REPORT_BASE64_H_
