// What is read in place because nearly every track has it, against the thorough way for anything:
// all texts up to a length over a small alphabet, and every single change of what is usual.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "base/errors.h"
#include "cue/cue.h"
#include "parser_fixture.h"
#include "setting_dump.h"
#include "usual_values.h"

namespace webvtt {
namespace {

using std::string_literals::operator""s;

const std::string kUsual = "00:00:01.000 --> 00:00:02.000";
const std::string kUsualWithoutHours = "00:01.000 --> 00:02.000";

/// Calls visit for the prefix with every text behind it that has at most so many characters.
void for_all_texts(const std::string& prefix, std::string_view alphabet, std::size_t longest,
                   const std::function<void(const std::string&)>& visit) {
    visit(prefix);
    for (std::size_t c = 0; longest > 0 && c < alphabet.size(); ++c) {
        for_all_texts(prefix + alphabet[c], alphabet, longest - 1, visit);
    }
}

/// The text with each of the characters in place of each of its own, in front of it, and without
/// it.
std::vector<std::string> changes_of(const std::string& text, std::string_view characters) {
    std::vector<std::string> changed = {text};
    for (std::size_t at = 0; at < text.size(); ++at) {
        changed.push_back(std::string(text).erase(at, 1));
        for (const char c : characters) {
            changed.push_back(std::string(text).replace(at, 1, 1, c));
            changed.push_back(std::string(text).insert(at, 1, c));
        }
    }
    return changed;
}

std::string dump(const Cue& cue, const std::string& outcome, std::string_view text) {
    return outcome + " " + short_number(cue.dStartTime) + " " + short_number(cue.dEndTime) + " " +
           dump_settings(cue) + "[" + std::string(text) + "]\n";
}

/// Compares long texts of many lines; a failure shows the first line that differs.
void expect_same(const std::string& found, const std::string& expected) {
    const auto differing =
        std::mismatch(found.begin(), found.end(), expected.begin(), expected.end());
    const auto at = static_cast<std::size_t>(differing.first - found.begin());
    const std::size_t line = found.rfind('\n', at == 0 ? 0 : at - 1) + 1;
    EXPECT_TRUE(found == expected)
        << "found    " << found.substr(line, 200) << "\nexpected " << expected.substr(line, 200);
}

/// A block cut into lines by the book; its timing line goes the way that knows no usual form.
bool parse_by_lines(Cue& cue, std::string_view block, std::string& text) {
    std::string_view rest = block;
    WebvttString line;
    for (int number = 1; number <= 2 && !line.does_contain("-->"); ++number) {
        const std::size_t end = rest.find('\n');
        if (end == 0 || end == std::string_view::npos) {
            return false;
        }
        line = WebvttString(rest.substr(0, end));
        rest.remove_prefix(end + 1);
    }
    if (!cue.fgParseCueTimeAndSettings(line)) {
        return false;
    }
    if (rest.empty()) {
        throw InvalidArgumentException("Input pcLine is empty", nullptr);
    }
    text = rest;
    return true;
}

// The head of a block that is usual, in fgParseHead, and fgParseTimes for any other.
TEST(FastPaths, UsualTimingLinesAreReadAsAnyOther) {
    std::string in_place;
    std::string by_lines;
    support::output_of([&] {
        const auto compare = [&](const std::string& block) {
            Cue usual;
            const std::string outcome =
                outcome_of([&] { return throw_unless_read(usual.eParseForText(block, nullptr)); });
            in_place += dump(usual, outcome, usual.strPlainText());
            Cue thorough;
            std::string text;
            const std::string expected =
                outcome_of([&] { return parse_by_lines(thorough, block, text); });
            by_lines += dump(thorough, expected, text);
        };
        for (const std::string& head : {kUsual, kUsualWithoutHours}) {
            for (const std::string& id : {""s, "\n"s, "x\n"s, "-->\n"s}) {
                for_all_texts(id + head, "\n :a", 5, compare);
                for_all_texts(id + head + " line:", "\n -5", 3, compare);
                for (std::size_t size = 0; size != head.size(); ++size) {
                    compare(id + head.substr(0, size) + "\n");
                }
                for (const std::string& line : changes_of(head, "\n 059:.->a")) {
                    for (const char* const tail : {"\nx", " align:end\nx", " ", ""}) {
                        compare(id + line + tail);
                    }
                }
            }
        }
    });
    EXPECT_GT(in_place.size(), 100000u);
    expect_same(in_place, by_lines);
}

/// The texts of the cues of one chunk: lines one by one, each copied, and blocks of at most ten.
std::string blocks_by_lines(const std::string& chunk) {
    std::string found;
    std::string block;
    int lines = 0;
    bool first = true;
    for (std::size_t at = 0; at < chunk.size();) {
        const std::size_t end = chunk.find_first_of("\r\n", at);
        if (end == std::string::npos) {
            break;
        }
        const std::string line = (chunk.substr(at, end - at) + "\n").c_str();  // up to a zero
        at = end + (chunk.compare(end, 2, "\r\n") == 0 ? 2 : 1);
        const bool blank = line.size() <= 1;
        if (!blank) {
            block += line;
            ++lines;
        }
        if (lines == 10 || (blank && lines > 0)) {
            Cue cue;
            std::string text;
            const std::string outcome =
                outcome_of([&] { return parse_by_lines(cue, block, text); });
            if (outcome != "true" && outcome != "false" && first) {
                return found;  // the chunk's first block threw, and the rest is lost
            }
            found += outcome == "true" ? "[" + text + "]" : "";
            block.clear();
            lines = 0;
            first = false;
        }
    }
    return found;
}

/// The same of the parser, which takes what it can as it lies in the chunk.
std::string blocks_in_place(const std::string& chunk) {
    std::string found;
    WebVTTParser parser;
    parser.vSetWebvttEventNty(&found, [](WEBVTT_EVENT_T, void* tag, void* info) {
        auto& texts = *static_cast<std::string*>(tag);
        const auto* cue = static_cast<const WebvttDataInfo*>(info)->prCueList;
        for (; cue != nullptr; cue = cue->prNext) {
            texts += "[" + std::string(cue->pcText) + "]";
        }
    });
    parser.rsltParse("WEBVTT\n\n", 8);
    parser.rsltParse(chunk.data(), static_cast<unsigned>(chunk.size()));
    parser.vGetParseResult();
    return found;
}

// Lines and blocks, in LineFinder and eReadBlock.
TEST(FastPaths, BlocksAreReadAsLinesOneByOne) {
    std::string in_place;
    std::string by_lines;
    support::output_of([&] {
        const auto compare = [&](const std::string& chunk) {
            in_place += blocks_in_place(chunk) + "\n";
            by_lines += blocks_by_lines(chunk) + "\n";
        };
        const std::string_view ends("a\n\r\0", 4);
        for_all_texts("", ends, 4, compare);
        for_all_texts(kUsual, ends, 6, compare);
        for_all_texts("\n" + kUsual + "\nx\n\n" + kUsual, ends, 5, compare);
        for_all_texts(kUsual + "\n1\n2\n3\n4\n5\n6\n7", ends, 6, compare);
        for_all_texts(kUsual + "\r\n1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7", ends, 6, compare);
    });
    EXPECT_GT(in_place.size(), 10000u);
    expect_same(in_place, by_lines);
}

}  // namespace
}  // namespace webvtt
