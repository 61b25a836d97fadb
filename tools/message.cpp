#include "tools/message.h"

#include <unistd.h>

#include <string>

#include "tools/descriptor.h"
#include "tools/escape.h"

namespace quill {

void Say(std::string_view message) {
    WriteFully(STDERR_FILENO, "quill: " + Escape(message, LineFeeds::kEscape) + "\n");
}

}  // namespace quill
