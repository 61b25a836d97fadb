// Prints the cues of a track as they are delivered.
#ifndef TOOLS_CUES_CUE_PRINTER_H_
#define TOOLS_CUES_CUE_PRINTER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/console/output.h"
#include "tools/cues/cue_format.h"
#include "tools/host/parser_handle.h"

namespace quill::cues {

class CuePrinter : public host::CueSink {
  public:
    // The output must outlive the printer.
    CuePrinter(console::Output& output, CueFormatter format) : output_(output), format_(format) {}

    void Add(const WebvttCueNode& cue) override;
    // Throws OutputError; count() is right even then.
    void Flush() override;

    // How many cues have gone out whole.
    std::uint64_t count() const { return count_; }

  private:
    console::Output& output_;
    CueFormatter format_;
    std::string text_;               // of the cues added since the last flush
    std::vector<std::size_t> ends_;  // where each of them ends in text_
    std::uint64_t count_ = 0;
};

}  // namespace quill::cues

#endif  // TOOLS_CUES_CUE_PRINTER_H_
