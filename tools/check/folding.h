// Brings the findings of a track down to what a screen holds.
#ifndef TOOLS_CHECK_FOLDING_H_
#define TOOLS_CHECK_FOLDING_H_

#include <cstdint>
#include <map>
#include <vector>

#include "tools/check/finding.h"

namespace quill::check {

// A range of lines in which `count` findings lie.
struct LineRange {
    void Add(std::uint32_t line);

    std::uint64_t count = 0;
    std::uint32_t first = 0;
    std::uint32_t last = 0;
};

// A finding, and those that are not shown for it.
struct Fold {
    enum class Kind {
        kFinding,  // it is shown; `others` were lost with the same chunk behind it
        kRest,     // it is not shown, but the first of `others`, which all have its code
    };

    Kind kind;
    Finding finding;
    LineRange others;
};

// Of each code the first three findings are shown; findings for one cause count as one. However
// many are added, no more are kept.
class Folding {
  public:
    void Add(const Finding& finding);

    // All that was added since the last call, by line.
    std::vector<Fold> Take();

  private:
    struct Group {
        std::vector<Fold> shown;
        std::vector<Fold> rest;  // none or one
    };

    std::map<const Code*, Group> groups_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_FOLDING_H_
