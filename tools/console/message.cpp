#include "tools/console/message.h"

#include <unistd.h>

#include <string>

#include "tools/console/descriptor.h"
#include "tools/console/escape.h"

namespace quill::console {

void Say(std::string_view message) {
    WriteFully(STDERR_FILENO, "quill: " + Escape(message, LineFeeds::kEscape) + "\n");
}

}  // namespace quill::console
