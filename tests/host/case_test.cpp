// Plays the case files of quill conform through the loaded module.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "support/module.h"
#include "support/stdout_capture.h"
#include "tools/conform/cases/case_player.h"
#include "tools/conform/cases/case_reader.h"

namespace quill::conform {

// What the framework prints for a failing case.
void PrintTo(const Case& one, std::ostream* out) {
    *out << one.file << ":" << one.line << ": " << one.reason;
}

namespace {

std::vector<Case> AllCases() {
    std::vector<Case> cases;
    for (const auto& entry : std::filesystem::directory_iterator(QUILLCAPTION_CASES)) {
        if (entry.path().extension() == ".cases") {
            std::ifstream file(entry.path());
            const std::string text{std::istreambuf_iterator<char>(file), {}};
            for (const Case& one : ReadCases(entry.path().filename().string(), text)) {
                cases.push_back(one);
            }
        }
    }
    return cases;
}

/// Plays steps with a module of their own.
void ExpectSteps(const std::vector<CaseStep>& steps, const std::string& how = "") {
    const support::Module module;
    std::vector<std::vector<std::string>> came;
    {
        support::StdoutCapture capture;
        CasePlayer player(module.methods(), [&capture] { return capture.more(); });
        for (const CaseStep& step : steps) {
            came.push_back(player.Play(step.call));
        }
    }
    for (std::size_t i = 0; i < steps.size(); ++i) {
        EXPECT_EQ(came[i], steps[i].expected)
            << "line " << steps[i].line << ": " << steps[i].text << how;
    }
}

class Conformance : public testing::TestWithParam<Case> {};

TEST_P(Conformance, IsWhatHappens) {
    ExpectSteps(GetParam().steps);
}

/// Whether no chunk border can be seen in what a call feeds: the header section is whole by then,
/// all is read to its end without a word, and it holds no zero byte and no lone carriage return.
bool HidesBorders(const CaseStep& step) {
    const auto is_delivery = [](const std::string& line) {
        return line.compare(0, 4, "cue ") == 0 || line == "no cue" ||
               line.compare(0, 4, "tag ") == 0;
    };
    const std::string bytes = step.call.verb->Whole(step.call.bytes);
    bool is_odd = bytes.find('\0') != std::string::npos;
    for (std::size_t at = bytes.find('\r'); at != std::string::npos;
         at = bytes.find('\r', at + 1)) {
        is_odd = is_odd || bytes.compare(at, 2, "\r\n") != 0;
    }
    const std::string_view verb = step.call.verb->name;
    return !is_odd && verb != "start" && verb != "create" &&
           std::all_of(step.expected.begin(), step.expected.end(), is_delivery);
}

std::vector<Case> CasesThatHideBorders() {
    std::vector<Case> cases;
    for (const Case& one : AllCases()) {
        if (std::all_of(one.steps.begin(), one.steps.end(), HidesBorders)) {
            cases.push_back(one);
        }
    }
    return cases;
}

/// The steps with whatever they feed in chunks of a size.
std::vector<CaseStep> InChunks(const std::vector<CaseStep>& steps, std::uint32_t size) {
    std::vector<CaseStep> cut;
    for (const CaseStep& step : steps) {
        if (step.call.bytes.empty()) {
            cut.push_back(step);
            continue;
        }
        const std::string bytes = step.call.verb->Whole(step.call.bytes);
        const std::size_t pieces = (bytes.size() + size - 1) / size;
        cut.push_back({step.line,
                       step.text,
                       {Verb::Find("pieces"), "", size, bytes},
                       {"= 0*" + std::to_string(pieces)}});
        if (!step.expected.empty()) {
            cut.push_back({step.line, step.text, {Verb::Find("take"), "", 0, ""}, step.expected});
        }
    }
    return cut;
}

class Borders : public testing::TestWithParam<Case> {};

TEST_P(Borders, AreNotSeen) {
    for (const std::uint32_t size : {1, 2, 3, 5, 8, 13, 21, 34}) {
        ExpectSteps(InChunks(GetParam().steps, size), " in chunks of " + std::to_string(size));
    }
}

std::string TestName(const testing::TestParamInfo<Case>& info) {
    std::string name = info.param.full_name();
    std::replace_if(
        name.begin(), name.end(),
        [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Cases, Conformance, testing::ValuesIn(AllCases()), TestName);
INSTANTIATE_TEST_SUITE_P(Cases, Borders, testing::ValuesIn(CasesThatHideBorders()), TestName);

// A reader that loses what is expected would let everything pass without a word.
TEST(CaseFiles, ExpectSomethingOfNearlyEveryCase) {
    const std::vector<Case> cases = AllCases();
    const auto expects = [](const Case& one) {
        return std::any_of(one.steps.begin(), one.steps.end(),
                           [](const CaseStep& step) { return !step.expected.empty(); });
    };
    EXPECT_GE(std::count_if(cases.begin(), cases.end(), expects), 500);
    EXPECT_GE(CasesThatHideBorders().size(), 150u);
}

}  // namespace
}  // namespace quill::conform
