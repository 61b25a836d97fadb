// quill's own standard output, which the module's diagnostics cannot get into.
#ifndef TOOLS_CONSOLE_OUTPUT_H_
#define TOOLS_CONSOLE_OUTPUT_H_

#include <cstddef>
#include <string_view>

#include "tools/console/descriptor.h"
#include "tools/console/failure.h"

namespace quill::console {

// Standard output could not be written.
class OutputError : public Failure {
  public:
    // `written` bytes of the failing Write went out before the error.
    OutputError(int error_number, std::size_t written);

    std::size_t written() const { return written_; }
    // Nobody reads the pipe any more: an ordinary end, such as that of `quill cues x | head`.
    bool closed() const;

  private:
    int error_number_;
    std::size_t written_;
};

// Holds a private duplicate of descriptor 1, made before anything points that elsewhere.
class Output {
  public:
    // Throws Failure when standard output is not open.
    Output();

    // Hands all bytes to the system before it returns, so that a reader sees them at once.
    // Throws OutputError.
    void Write(std::string_view bytes);

  private:
    Descriptor descriptor_;
};

}  // namespace quill::console

#endif  // TOOLS_CONSOLE_OUTPUT_H_
