#include "tools/conform/verdict_printer.h"

#include "tools/console/escape.h"
#include "tools/console/json.h"

namespace quill::conform {
namespace {

using console::Json;
using console::JsonLine;

// By outcome.
constexpr std::array<const char*, 4> kWords = {"passed", "failed", "crashed", "hung"};
constexpr std::array<const char*, 4> kMarks = {"passed  ", "FAILED  ", "CRASHED ", "HUNG    "};

std::string Counted(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " case" : " cases");
}

// A case file of the user's may call a case anything.
std::string InText(const std::string& text) {
    return console::Escape(text, console::LineFeeds::kEscape);
}

// Where a case is written, for a reader who wants to see all of it.
Json Place(const Case& one) {
    return one.file.empty() ? Json(nullptr) : Json(one.file + ":" + std::to_string(one.line));
}

std::string FormatAsText(const Case& one, const Verdict& verdict) {
    const bool passed = verdict.outcome == Outcome::kPassed;
    std::string text =
        kMarks.at(static_cast<std::size_t>(verdict.outcome)) + InText(one.full_name());
    text += passed ? "\n" : ": " + InText(one.reason) + "\n";
    for (const std::string& detail : verdict.details) {
        text += std::string(8, ' ') + InText(detail) + "\n";
    }
    return text;
}

Json FormatAsJson(const Case& one, const Verdict& verdict) {
    return {{"case", one.full_name()},
            {"reason", one.reason},
            {"place", Place(one)},
            {"outcome", kWords.at(static_cast<std::size_t>(verdict.outcome))},
            {"details", verdict.details}};
}

}  // namespace

void VerdictPrinter::Print(const Case& one, const Verdict& verdict) {
    ++counts_.at(static_cast<std::size_t>(verdict.outcome));
    ++total_;
    if (failed_only_ && verdict.outcome == Outcome::kPassed) {
        return;
    }
    output_.Write(as_json_ ? JsonLine(FormatAsJson(one, verdict)) : FormatAsText(one, verdict));
}

void VerdictPrinter::PrintCount() {
    Json sums = {{"cases", total_}};
    std::string text;
    for (std::size_t i = 0; i < kWords.size(); ++i) {
        sums[kWords.at(i)] = counts_.at(i);
        if (counts_.at(i) != 0) {
            text +=
                (text.empty() ? ": " : ", ") + std::to_string(counts_.at(i)) + " " + kWords.at(i);
        }
    }
    output_.Write(as_json_ ? JsonLine(sums) : Counted(total_) + text + "\n");
}

void PrintCaseList(console::Output& output, const std::vector<Case>& cases, bool as_json) {
    std::string text;
    for (const Case& one : cases) {
        text +=
            as_json
                ? JsonLine(
                      {{"case", one.full_name()}, {"reason", one.reason}, {"place", Place(one)}})
                : InText(one.full_name()) + ": " + InText(one.reason) + "\n";
    }
    output.Write(text +
                 (as_json ? JsonLine({{"cases", cases.size()}}) : Counted(cases.size()) + "\n"));
}

}  // namespace quill::conform
