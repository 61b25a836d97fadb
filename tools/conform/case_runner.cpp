#include "tools/conform/case_runner.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "tools/conform/cases/case_player.h"
#include "tools/conform/probes.h"
#include "tools/host/exception_text.h"
#include "tools/host/isolated_run.h"
#include "tools/host/module_handle.h"
#include "tools/host/printed_text.h"

namespace quill::conform {
namespace {

// What the child tells, line by line: "step WHAT" before something is done, "got LINE" for what
// came of it (of a probe: what is wrong with it), "end" when all is over.
constexpr std::string_view kStep = "step ";
constexpr std::string_view kGot = "got ";
constexpr std::string_view kEnd = "end";

constexpr std::size_t kLongestDetail = 200;
// What is told of each side of a difference.
constexpr std::size_t kMostLines = 40;

struct StepReport {
    std::string what;
    std::vector<std::string> got;
};

struct CaseReport {
    std::vector<StepReport> steps;
    bool has_ended = false;
};

void PlaySteps(const Case& one, const std::string& module, host::Channel& channel) {
    host::PrintedText printed;
    channel.Write("step loading the module\n");
    const host::ModuleHandle handle(module);
    printed.Take();
    CasePlayer player(support::methods_at(&handle.methods()),
                      [&printed] { return printed.Take(); });
    for (const CaseStep& step : one.steps) {
        channel.Write("step " + step.text + "\n");
        std::string report;
        for (const std::string& line : player.Play(step.call)) {
            report += "got " + line + "\n";
        }
        channel.Write(report);
    }
    channel.Write("step unloading the module\n");
}

void RunInChild(const Case& one, const std::string& module, host::Channel& channel) {
    try {
        if (one.probe != nullptr) {
            channel.Write("step loading the module\n");
            ProbeBench bench(module, channel);
            bench.Doing("the probe");
            one.probe(bench);
            bench.Doing("unloading the module");
        } else {
            PlaySteps(one, module, channel);
        }
        channel.Write("end\n");
    } catch (...) {
        channel.Write("got throws " + host::DescribeCurrentException() + "\n");
        throw;
    }
}

CaseReport ReadReport(std::string_view text) {
    CaseReport report;
    while (!text.empty()) {
        const std::size_t length = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, length);
        if (line.substr(0, kStep.size()) == kStep) {
            report.steps.push_back({std::string(line.substr(kStep.size())), {}});
        } else if (line.substr(0, kGot.size()) == kGot && !report.steps.empty()) {
            report.steps.back().got.emplace_back(line.substr(kGot.size()));
        }
        report.has_ended = report.has_ended || line == kEnd;
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return report;
}

std::string Shorten(const std::string& text) {
    if (text.size() <= kLongestDetail) {
        return text;
    }
    return text.substr(0, kLongestDetail) + "... (" + std::to_string(text.size()) + " bytes)";
}

std::string Where(const Case& one, const CaseStep& step) {
    return one.file + ":" + std::to_string(step.line) + ": " + Shorten(step.text);
}

// Of what one side of a difference has many lines of, those are told with which it begins.
void AddLines(const char* label, const std::vector<std::string>& lines, std::size_t first,
              std::vector<std::string>& details) {
    const std::size_t begin = lines.size() > kMostLines ? first : 0;
    const std::size_t end = std::min(lines.size(), begin + kMostLines);
    const auto add = [&](const std::string& line) {
        details.push_back(std::string("  ") + label + line);
    };
    if (lines.empty()) {
        add("nothing");
    }
    if (begin != 0) {
        add("(" + std::to_string(begin) + " lines that agree)");
    }
    for (std::size_t i = begin; i < end; ++i) {
        add(Shorten(lines[i]));
    }
    if (end != lines.size()) {
        add("(and " + std::to_string(lines.size() - end) + " more)");
    }
}

// What is told of the first step that is over and did not go as it should; a later one may have
// gone wrong because of it.
std::vector<std::string> FirstDifference(const Case& one, const CaseReport& report) {
    std::vector<std::string> details;
    // The steps stand between loading and unloading. The last one begun may not be over.
    const std::size_t begun = report.steps.size() - std::min<std::size_t>(report.steps.size(), 1);
    const std::size_t over = report.has_ended || begun == 0 ? begun : begun - 1;
    for (std::size_t i = 0; i < std::min(over, one.steps.size()); ++i) {
        const CaseStep& step = one.steps[i];
        const std::vector<std::string>& got = report.steps[i + 1].got;
        if (got != step.expected) {
            details.push_back(Where(one, step));
            const auto [differs, other] =
                std::mismatch(step.expected.begin(), step.expected.end(), got.begin(), got.end());
            const auto first = static_cast<std::size_t>(differs - step.expected.begin());
            AddLines("expected  ", step.expected, first, details);
            AddLines("got       ", got, first, details);
            break;
        }
    }
    return details;
}

// A probe tells only what is wrong.
std::vector<std::string> Complaints(const CaseReport& report) {
    std::vector<std::string> details;
    for (const StepReport& step : report.steps) {
        for (const std::string& line : step.got) {
            details.push_back(Shorten(line));
        }
    }
    return details;
}

// How a child ended that did not come to its end; the step that it was in says where.
std::string DescribeBreak(const Case& one, const CaseReport& report, const host::IsolatedEnd& end) {
    const std::size_t number = report.steps.size();
    std::string where = number == 0 ? "the start" : Shorten(report.steps.back().what);
    if (number >= 2 && number - 2 < one.steps.size()) {
        where = Where(one, one.steps[number - 2]);
    }
    return where + ": the module " + host::DescribeEnd(end);
}

Outcome OutcomeOf(const host::IsolatedEnd& end) {
    return end.kind == host::IsolatedEnd::Kind::kTimedOut ? Outcome::kHung : Outcome::kCrashed;
}

}  // namespace

Verdict RunCase(const Case& one, const std::string& module, std::chrono::seconds timeout) {
    const host::IsolatedEnd end = host::RunIsolated(
        [&](host::Channel& channel) { RunInChild(one, module, channel); }, timeout);
    const CaseReport report = ReadReport(end.written);
    Verdict verdict = {Outcome::kPassed,
                       one.probe != nullptr ? Complaints(report) : FirstDifference(one, report)};
    if (!report.has_ended || end.kind != host::IsolatedEnd::Kind::kDone) {
        verdict.outcome = OutcomeOf(end);
        verdict.details.push_back(DescribeBreak(one, report, end));
    } else if (!verdict.details.empty()) {
        verdict.outcome = Outcome::kFailed;
    }
    return verdict;
}

}  // namespace quill::conform
