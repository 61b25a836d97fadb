// The fixes, and the order in which they are made.
#ifndef TOOLS_FIX_FIXER_H_
#define TOOLS_FIX_FIXER_H_

#include <set>
#include <string>
#include <vector>

#include "tools/fix/document.h"
#include "tools/fix/oracle.h"

namespace quill::fix {

// Which codes are fixed: those named by number or the beginning of one, in both cases.
struct Selection {
    std::vector<std::string> only;  // all of them when empty
    std::vector<std::string> skip;

    bool Wants(const char* code) const;
};

// What every fix is given.
struct Workshop {
    Document& document;
    Oracle& oracle;
    const Selection& selection;

    bool Wants(const char* code) const { return selection.Wants(code); }
};

// Makes every fix that is wanted. A second run on the outcome finds nothing to do.
void FixAll(const Workshop& shop);

// The single families, in the order in which they are made. Each leaves alone what it would have
// to guess. In first_line.cpp:
void FixMarks(const Workshop& shop);
// False when the first line is none that makes a track.
bool FixFirstLine(const Workshop& shop);

// In timings.cpp. Marks the lines that are timing lines, or will be once they are fixed.
void FindTimings(const Workshop& shop);

// In map.cpp:
void FixMap(const Workshop& shop);

// In blocks.cpp: where blocks begin and end.
void FixBlankLines(const Workshop& shop);

// In timings.cpp: of the blocks that are cues now.
void FixTimings(const Workshop& shop);

// In texts.cpp: what stands below a timing line.
void FixTexts(const Workshop& shop);

// In blocks.cpp again:
void FixComments(const Workshop& shop);
void FixLongBlocks(const Workshop& shop);
void FixLastLine(const Workshop& shop);

}  // namespace quill::fix

#endif  // TOOLS_FIX_FIXER_H_
