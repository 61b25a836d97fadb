// What the module prints, kept from quill's own output.
#ifndef TOOLS_HOST_PRINTED_TEXT_H_
#define TOOLS_HOST_PRINTED_TEXT_H_

#include <string>

#include "tools/console/descriptor.h"

namespace quill::host {

// From its making on, for the rest of the process, descriptor 1 is an unnamed file. For a child
// process; DiagnosticsCapture is for quill itself.
class PrintedText {
  public:
    // Throws Failure when the system gives no file.
    PrintedText();

    // All that was printed since the last call.
    std::string Take();

  private:
    console::Descriptor file_;
};

}  // namespace quill::host

#endif  // TOOLS_HOST_PRINTED_TEXT_H_
