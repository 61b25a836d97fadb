// Writes a file so that it is either as it was or whole.
#ifndef TOOLS_HOST_FILE_WRITER_H_
#define TOOLS_HOST_FILE_WRITER_H_

#include <string>
#include <string_view>

namespace quill::host {

// Writes to a new file in the same folder, which then takes the place of the old one and has its
// permissions; a symbolic link stays one, and what it points at is written. What is no ordinary
// file, such as a pipe, is written to as it is. Throws Failure.
void WriteWhole(const std::string& path, std::string_view bytes);

}  // namespace quill::host

#endif  // TOOLS_HOST_FILE_WRITER_H_
