// Plays every case of the transcript files through the loaded module.
#include <gtest/gtest.h>

#include <cctype>

#include "host/support/transcript.h"

namespace support::host {

// What the framework prints for a failing case.
void PrintTo(const Case& one, std::ostream* out) {
    *out << one.file << ".txt:" << one.line << ": " << one.title;
}

namespace {

class Transcript : public testing::TestWithParam<Case> {};

TEST_P(Transcript, IsWhatHappens) {
    const Module module;
    EXPECT_EQ(play(module.methods(), GetParam()), GetParam().text);
}

std::string test_name(const testing::TestParamInfo<Case>& info) {
    std::string name = info.param.file + "_" + std::to_string(info.param.line) + "_";
    for (const char c : info.param.title) {
        const bool letter = std::isalnum(static_cast<unsigned char>(c)) != 0;
        name += letter ? c : '_';
    }
    for (char& c : name) {
        c = c == '-' ? '_' : c;
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Host, Transcript, testing::ValuesIn(read_cases(QUILLCAPTION_TRANSCRIPTS)),
                         test_name);

// A case that the reader loses, or whose expectations it drops, would pass without a word.
TEST(TranscriptFiles, HoldCasesThatExpectSomething) {
    const std::vector<Case> cases = read_cases(QUILLCAPTION_TRANSCRIPTS);
    EXPECT_GE(cases.size(), 100u);
    for (const Case& one : cases) {
        EXPECT_NE(one.text.find("\n  "), std::string::npos) << one.file << ".txt:" << one.line;
    }
}

}  // namespace
}  // namespace support::host
