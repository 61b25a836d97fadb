// The fixes, and the order in which they are made.
#ifndef TOOLS_FIX_FIXER_H_
#define TOOLS_FIX_FIXER_H_

#include "tools/check/code_filter.h"
#include "tools/fix/document.h"
#include "tools/fix/oracle.h"
#include "tools/fix/settings.h"

namespace quill::fix {

// What every fix is given.
struct Workshop {
    Document& document;
    Oracle& oracle;
    SettingsFixer& settings;
    const check::CodeFilter& filter;  // lets through what is to be fixed

    bool Wants(const char* code) const { return filter.Lets(check::CodeNamed(code)); }
};

// Makes every fix that is wanted. A second run on the outcome finds nothing to do.
void FixAll(const Workshop& shop);

// The single families, in the order in which they are made. Each leaves alone what it would have
// to guess. In first_line.cpp:
void FixMarks(const Workshop& shop);
void FixReturns(const Workshop& shop);
// False when the first line is none that makes a track.
bool FixFirstLine(const Workshop& shop);

// In torn_lines.cpp: timing lines that are two lines, or one with their text.
void FixTornLines(const Workshop& shop);

// In timings.cpp. Marks the lines that are timing lines, or will be once they are fixed.
void FindTimings(const Workshop& shop);

// In map.cpp:
void FixMap(const Workshop& shop);

// In blocks.cpp: where blocks begin and end.
void FixBlankLines(const Workshop& shop);

// In block_forms.cpp: blocks that make no cue.
void FixEmptyBlocks(const Workshop& shop);

// In timings.cpp: of the blocks that are cues now.
void FixTimings(const Workshop& shop);

// In texts.cpp: what stands below a timing line.
void FixTexts(const Workshop& shop);

// In block_forms.cpp again:
void FixComments(const Workshop& shop);
void FixLongBlocks(const Workshop& shop);
void FixLastLine(const Workshop& shop);

}  // namespace quill::fix

#endif  // TOOLS_FIX_FIXER_H_
