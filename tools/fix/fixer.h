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
// to guess.
void FixMarks(const Workshop& shop);  // first_line.cpp: marks, the signature
void FixFirstLine(const Workshop& shop);
void FindTimings(Document& document);  // timings.cpp: timing lines and their settings
void FixTimings(const Workshop& shop);
void FixMap(const Workshop& shop);  // header.cpp
void FixTimesInHeader(const Workshop& shop);
void FixBlankLines(const Workshop& shop);  // blocks.cpp: where blocks begin and end
void FixTexts(const Workshop& shop);       // texts.cpp: markup
void FixComments(const Workshop& shop);
void FixLongBlocks(const Workshop& shop);
void FixLastLine(const Workshop& shop);

}  // namespace quill::fix

#endif  // TOOLS_FIX_FIXER_H_
