// Exceptions and mangled names in words.
#ifndef TOOLS_HOST_EXCEPTION_TEXT_H_
#define TOOLS_HOST_EXCEPTION_TEXT_H_

#include <string>

namespace quill::host {

// A mangled name as it stands in a source; the name itself when it is not a mangled one.
std::string Demangle(const char* name);

// "std::out_of_range: basic_string::at", or the bare type where there is no text. Must be called
// inside a handler, and describes what that has caught.
std::string DescribeCurrentException();

}  // namespace quill::host

#endif  // TOOLS_HOST_EXCEPTION_TEXT_H_
