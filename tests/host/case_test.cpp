// Plays the case files of quill conform through the loaded module.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
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

/// What comes of each step of a case.
std::vector<std::vector<std::string>> Play(const Case& one) {
    const support::Module module;
    support::StdoutCapture capture;
    CasePlayer player(module.methods(), [&capture] { return capture.more(); });
    std::vector<std::vector<std::string>> came;
    for (const CaseStep& step : one.steps) {
        came.push_back(player.Play(step.call));
    }
    return came;
}

class Conformance : public testing::TestWithParam<Case> {};

TEST_P(Conformance, IsWhatHappens) {
    const std::vector<std::vector<std::string>> came = Play(GetParam());
    for (std::size_t i = 0; i < came.size(); ++i) {
        const CaseStep& step = GetParam().steps[i];
        EXPECT_EQ(came[i], step.expected)
            << GetParam().file << ":" << step.line << ": " << step.text;
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

// A reader that loses what is expected would let everything pass without a word.
TEST(CaseFiles, ExpectSomethingOfNearlyEveryCase) {
    const std::vector<Case> cases = AllCases();
    const auto expects = [](const Case& one) {
        return std::any_of(one.steps.begin(), one.steps.end(),
                           [](const CaseStep& step) { return !step.expected.empty(); });
    };
    EXPECT_GE(std::count_if(cases.begin(), cases.end(), expects), 500);
}

}  // namespace
}  // namespace quill::conform
