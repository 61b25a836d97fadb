#include "tools/conform/cases/case_reader.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

#include "support/notation.h"
#include "tools/conform/cases/case_player.h"
#include "tools/console/failure.h"

namespace quill::conform {
namespace {

constexpr std::uint32_t kHighestTag = 9;

// The text before the first space; `rest` becomes what stands behind it.
std::string FirstWord(std::string_view text, std::string_view& rest) {
    const std::size_t space = std::min(text.find(' '), text.size());
    rest = text.substr(std::min(space + 1, text.size()));
    return std::string(text.substr(0, space));
}

// What is wrong with a call, empty when nothing is.
std::string ParseCall(std::string_view text, CaseCall& call) {
    std::string_view rest;
    const std::string verb = FirstWord(text, rest);
    call.verb = Verb::Find(verb);
    if (call.verb == nullptr) {
        return "there is no call \"" + verb + "\"";
    }
    const Arguments arguments = call.verb->arguments;
    if (arguments == Arguments::kOptionalName || arguments == Arguments::kName) {
        call.name = FirstWord(rest, rest);
        if (call.name.empty() && arguments == Arguments::kName) {
            return verb + " needs the name of a parser, or a handle as a number";
        }
    }
    if (arguments == Arguments::kNumber || arguments == Arguments::kTag ||
        arguments == Arguments::kNumberAndBytes) {
        const std::optional<std::uint32_t> number = support::parse_number(FirstWord(rest, rest));
        const bool is_tag = arguments == Arguments::kTag;
        if (!number || (is_tag && *number > kHighestTag)) {
            return verb + " needs a " + (is_tag ? "tag from 0 to 9" : "whole number");
        }
        call.number = *number;
    }
    if (arguments == Arguments::kBytes || arguments == Arguments::kNumberAndBytes) {
        const std::optional<std::string> bytes = support::unquote(rest);
        if (rest.empty() || !bytes) {
            return verb + " needs bytes in double quotes";
        }
        call.bytes = *bytes;
        rest = "";
    }
    return rest.empty() ? "" : verb + " takes no \"" + std::string(rest) + "\"";
}

// Reads a file line by line.
class CaseReader {
  public:
    explicit CaseReader(const std::string& file)
        : file_(file), group_(file.substr(0, file.rfind('.'))) {}

    void AddLine(std::string_view line) {
        ++line_;
        if (line.find_first_not_of(' ') == std::string_view::npos || line.front() == '#') {
            return;
        }
        if (line.substr(0, 3) == "== ") {
            BeginCase(line.substr(3));
        } else if (cases_.empty()) {
            Fail("a line before the first case, which begins with \"== \"");
        } else if (cases_.back().reason.empty()) {
            if (line.back() != '.') {
                Fail("the line below the name says what the case is for, and ends in a full stop");
            }
            cases_.back().reason = line;
        } else if (line.front() == ' ') {
            AddBelow(line.substr(line.find_first_not_of(' ')));
        } else {
            FinishStep();
            cases_.back().steps.push_back({line_, std::string(line), {}, {}});
        }
    }

    std::vector<Case> Finish() {
        if (cases_.empty()) {
            throw console::Failure(console::kExitUsage, file_ + " holds no case");
        }
        FinishCase();
        return std::move(cases_);
    }

  private:
    [[noreturn]] void Fail(const std::string& what) const { FailAt(line_, what); }

    [[noreturn]] void FailAt(int line, const std::string& what) const {
        throw console::Failure(console::kExitUsage,
                               file_ + ":" + std::to_string(line) + ": " + what);
    }

    void BeginCase(std::string_view name) {
        FinishCase();
        const bool is_known = std::any_of(cases_.begin(), cases_.end(),
                                          [name](const Case& one) { return one.name == name; });
        if (is_known || name.find(' ') != std::string_view::npos) {
            Fail(is_known ? "there is a case of that name already"
                          : "the name of a case has no spaces");
        }
        Case begun;
        begun.group = group_.substr(group_.rfind('/') + 1);
        begun.name = name;
        begun.file = file_;
        begun.line = line_;
        cases_.push_back(begun);
    }

    void AddBelow(std::string_view text) {
        if (cases_.back().steps.empty()) {
            Fail("an indented line without a call above it");
        }
        CaseStep& step = cases_.back().steps.back();
        if (text.front() == '"') {  // more of the bytes
            step.text += " " + std::string(text);
        } else {
            step.expected.emplace_back(text);
        }
    }

    void FinishStep() {
        std::vector<CaseStep>& steps = cases_.back().steps;
        if (!steps.empty()) {
            const std::string mistake = ParseCall(steps.back().text, steps.back().call);
            if (!mistake.empty()) {
                FailAt(steps.back().line, mistake);
            }
        }
    }

    void FinishCase() {
        if (cases_.empty()) {
            return;
        }
        if (cases_.back().steps.empty()) {
            FailAt(cases_.back().line, "the case has no calls");
        }
        FinishStep();
    }

    std::string file_;
    std::string group_;
    int line_ = 0;
    std::vector<Case> cases_;
};

}  // namespace

std::vector<Case> ReadCases(const std::string& file, std::string_view text) {
    CaseReader reader(file);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        reader.AddLine(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return reader.Finish();
}

}  // namespace quill::conform
