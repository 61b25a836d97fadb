#include "tools/fix/fixer.h"

namespace quill::fix {

void FixAll(const Workshop& shop) {
    FixMarks(shop);
    FixReturns(shop);
    // Of what is rejected nothing else could be held to what a player gets.
    if (!FixFirstLine(shop)) {
        return;
    }
    FixTornLines(shop);
    FindTimings(shop);
    FixMap(shop);
    FixBlankLines(shop);
    FixEmptyBlocks(shop);
    FixTimings(shop);
    FixTexts(shop);
    FixComments(shop);
    FixLongBlocks(shop);
    FixLastLine(shop);
}

}  // namespace quill::fix
