// What quill itself has to say, on standard error.
#ifndef TOOLS_CONSOLE_MESSAGE_H_
#define TOOLS_CONSOLE_MESSAGE_H_

#include <string_view>

namespace quill::console {

// Writes "quill: ", the message and a line feed as one line. File names and texts of the module
// may stand in the message as they are: control bytes are escaped here. A standard error that
// cannot be written to is ignored.
void Say(std::string_view message);

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_MESSAGE_H_
