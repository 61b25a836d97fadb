#include "tools/fix/fixer.h"

#include <algorithm>

namespace quill::fix {
namespace {

bool NamesOne(const std::vector<std::string>& beginnings, std::string_view number) {
    return std::any_of(beginnings.begin(), beginnings.end(), [number](const std::string& one) {
        return number.substr(0, one.size()) == one;
    });
}

}  // namespace

bool Selection::Wants(const char* code) const {
    const std::string_view number = check::CodeNamed(code).number;
    return (only.empty() || NamesOne(only, number)) && !NamesOne(skip, number);
}

void FixAll(const Workshop& shop) {
    FixMarks(shop);
    // Of what is rejected nothing else could be held to what a player gets.
    if (!FixFirstLine(shop)) {
        return;
    }
    FindTimings(shop);
    FixMap(shop);
    FixBlankLines(shop);
    FixTimings(shop);
    FixTexts(shop);
    FixComments(shop);
    FixLongBlocks(shop);
    FixLastLine(shop);
}

}  // namespace quill::fix
