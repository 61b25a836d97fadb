// Plays the case files of quill conform through the loaded module, as they are and in other chunks.
//
// QUILLCAPTION_SIZES: in chunks of all sizes up to this one, and not only of a few.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
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

bool StartsWith(const std::string& line, std::string_view front) {
    return line.compare(0, front.size(), front) == 0;
}

bool IsDelivery(const std::string& line) {
    return StartsWith(line, "cue ") || line == "no cue" || StartsWith(line, "tag ");
}

/// What every chunk brings that is read to its end.
bool IsOfEveryChunk(const std::string& line) {
    return line == "! Buffer Exhausted" || line == "! FINISHED" || line == "= 0";
}

/// Whether it is printed wherever the chunks end: nothing is given up for it but one block.
bool IsOfItsBlock(const std::string& line) {
    const std::string_view ends_calls[] = {"! Error occured", "! out of memory", "! return result",
                                           "! Invalid input", "! Invalid magic", "! It is NOT"};
    return (StartsWith(line, "! ") || StartsWith(line, "| ")) &&
           std::none_of(std::begin(ends_calls), std::end(ends_calls),
                        [&](std::string_view front) { return StartsWith(line, front); });
}

/// Whether no chunk border can be seen in what a call feeds: the header section is whole by then,
/// all is read to its end, and it holds no zero byte and no lone carriage return.
bool HidesBorders(const CaseStep& step) {
    const std::string bytes = step.call.verb->Whole(step.call.bytes);
    bool is_odd = bytes.find('\0') != std::string::npos;
    for (std::size_t at = bytes.find('\r'); at != std::string::npos;
         at = bytes.find('\r', at + 1)) {
        is_odd = is_odd || bytes.compare(at, 2, "\r\n") != 0;
    }
    const std::string_view verb = step.call.verb->name;
    return !is_odd && verb != "start" && verb != "create" && verb != "take-feeding" &&
           std::all_of(step.expected.begin(), step.expected.end(), [](const std::string& line) {
               return IsDelivery(line) || IsOfEveryChunk(line) || IsOfItsBlock(line);
           });
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
        std::vector<std::string> printed;
        std::vector<std::string> delivered;
        for (const std::string& line : step.expected) {
            if (!IsOfEveryChunk(line)) {
                (IsDelivery(line) ? delivered : printed).push_back(line);
            }
        }
        printed.push_back("= 0*" + std::to_string(pieces));
        cut.push_back({step.line, step.text, {Verb::Find("pieces"), "", size, bytes}, printed});
        if (!delivered.empty()) {
            cut.push_back({step.line, step.text, {Verb::Find("take"), "", 0, ""}, delivered});
        }
    }
    return cut;
}

std::vector<std::uint32_t> ChunkSizes() {
    const unsigned most = support::number_from_environment("QUILLCAPTION_SIZES", 0);
    if (most == 0) {
        return {1, 2, 3, 5, 8, 13, 21, 34};
    }
    std::vector<std::uint32_t> sizes(most);
    std::iota(sizes.begin(), sizes.end(), 1);
    return sizes;
}

class Borders : public testing::TestWithParam<Case> {};

TEST_P(Borders, AreNotSeen) {
    for (const std::uint32_t size : ChunkSizes()) {
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
    EXPECT_GE(CasesThatHideBorders().size(), 250u);
}

}  // namespace
}  // namespace quill::conform
