// Prints the findings and the sums of one track.
#ifndef TOOLS_CHECK_TRACK_PRINTER_H_
#define TOOLS_CHECK_TRACK_PRINTER_H_

#include <functional>
#include <string>
#include <string_view>

#include "tools/check/folding.h"
#include "tools/check/report.h"
#include "tools/check/track_report.h"

namespace quill::check {

enum class SumsWanted { kNone, kOfFindings, kInFull };

struct Printing {
    const Report* report;
    bool folds;
    SumsWanted sums;
    bool blocks = false;  // wanted too
};

class TrackPrinter : public FindingSink {
  public:
    using Write = std::function<void(std::string_view bytes)>;

    // `write` gets what is printed in large pieces, and may throw.
    TrackPrinter(std::string track, const Printing& printing, Write write);

    void Add(const Finding& finding) override;
    void Note(const BlockNote& note) override;
    // Call it at the end: what was folded comes out now.
    void Finish(const Sums& sums);

  private:
    void Print(const std::string& text);
    void Flush();

    std::string track_;
    const Printing& printing_;
    Write write_;
    Folding folding_;
    std::string pending_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_TRACK_PRINTER_H_
