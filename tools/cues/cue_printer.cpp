#include "tools/cues/cue_printer.h"

#include <algorithm>

namespace quill::cues {

void CuePrinter::Add(const WebvttCueNode& cue) {
    text_ += format_(cue, count_ + ends_.size() + 1);
    ends_.push_back(text_.size());
}

void CuePrinter::Flush() {
    try {
        output_.Write(text_);
    } catch (const console::OutputError& error) {
        count_ += static_cast<std::uint64_t>(
            std::upper_bound(ends_.begin(), ends_.end(), error.written()) - ends_.begin());
        throw;
    }
    count_ += ends_.size();
    text_.clear();
    ends_.clear();
}

}  // namespace quill::cues
