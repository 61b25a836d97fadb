// What is read in place is what the tokenizer would have made of it.
#include "payload/payload_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "base/errors.h"
#include "base/value_parsers.h"
#include "payload/tokenizer.h"
#include "support/exact_block.h"
#include "support/stdout_capture.h"

namespace webvtt {
namespace {

const char* tag_name(Node_Type eType) {
    static constexpr const char* kNames[] = {"?", "c", "i", "b", "u", "ruby", "rt", "v", "lang"};
    return kNames[eType];
}

/// "[text] <b> </b> <time>", as a sink hears it.
class Log final : public PayloadSink {
  public:
    void vText(std::string_view piece) override { m_text += piece; }
    void vEndText() override {
        log += "[" + m_text + "]";
        m_text.clear();
    }
    void vOpenTag(Node_Type eType) override { log += std::string("<") + tag_name(eType) + ">"; }
    void vCloseTag(Node_Type eType) override { log += std::string("</") + tag_name(eType) + ">"; }
    void vTimestamp() override { log += "<time>"; }

    std::string log;

  private:
    std::string m_text;
};

std::string classes_of(const Cue& cue) {
    std::string names;
    for (const WebvttString& name : cue.vecApplicableClasses) {
        names += " ." + name.text;
    }
    return names;
}

std::string read(std::string_view payload) {
    support::ExactBlock block(payload);
    Cue cue;
    Log sink;
    support::StdoutCapture capture;
    if (read_payload(cue, {block.data(), block.size()}, block.size(), sink) == Outcome::kNoNode) {
        sink.log += "!";
    }
    return sink.log + classes_of(cue);
}

std::string name_of(std::string_view known) {
    for (int type = NODE_CLASS; type <= NODE_LANGUAGE; ++type) {
        if (known == tag_name(static_cast<Node_Type>(type))) {
            return std::string(known);
        }
    }
    return "";
}

/// The same with nothing but the tokenizer.
std::string read_by_tokens(std::string_view payload) {
    support::ExactBlock block(payload);
    std::string_view rest(block.data(), block.size());
    Cue cue;
    std::string log;
    support::StdoutCapture capture;
    while (!rest.empty()) {
        Cue::Tokenizer_Data token(rest.data(), static_cast<int>(rest.size()));
        const Cue::Token_Type eType = cue.eTokenizer(token);
        const std::string& text = token.strResult.text;
        double time = 0.0;
        if (eType == Cue::TOKEN_STRING) {
            log += "[" + text + "]";
        } else if (eType == Cue::TOKEN_START_TAG && name_of(text).empty()) {
            log += "!";
            break;
        } else if (eType == Cue::TOKEN_START_TAG) {
            log += "<" + text + ">";
        } else if (eType == Cue::TOKEN_END_TAG && !name_of(text).empty()) {
            log += "</" + text + ">";
        } else if (eType == Cue::TOKEN_TIMESTAMP && parse_timestamp(text, time)) {
            log += "<time>";
        }
        rest.remove_prefix(static_cast<std::size_t>(token.iPosition));
    }
    return log + classes_of(cue);
}

TEST(PayloadReader, TellsASinkWhatAPayloadHolds) {
    const struct {
        const char *payload, *log;
    } cases[] = {
        {"plain\ntext\n", "[plain\ntext\n]"},
        {"a &amp; b &lt;i&gt;\n", "[a & b <i>\n]"},
        {"a & b &amp; c<i>d", "[a  b & c]<i>[d]"},
        {"&zip;&amp;", "[&zip;&]"},
        {"a<i>b</i>c\n", "[a]<i>[b]</i>[c\n]"},
        {"<lang en>x</lang>\n", "<lang>[x]</lang>[\n]"},
        {"<v Bob\nSmith>x", "<v>[x]"},
        {"<c.red.big>x</c>\n", "<c>[x]</c>[\n] .red .big"},
        {"<c.>x", "<c>[x] ."},
        {"<c..a>x", "<c>[x] . .a"},
        {"<v.loud Bob>x", "<v>[x] .loud"},
        {"<c.a\nb>x", "[b>x] .a"},
        {"<ruby>a<rt>b</rt></ruby>\n", "<ruby>[a]<rt>[b]</rt></ruby>[\n]"},
        {"a<00:01.000>b", "[a]<time>[b]"},
        {"x<i>", "[x]<i>[>]"},
        {"x</i>", "[x]</i>"},
        {"<rubyx>a", "!"},
        {"<i~>a", "!"},
        {"</rubyx>a", "[a]"},
        {"a<", "[a]!"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.payload);
        EXPECT_EQ(read(c.payload), c.log);
        EXPECT_EQ(read_by_tokens(c.payload), c.log);
    }
}

void expect_same_reading(const std::string& payload) {
    ASSERT_EQ(read(payload), read_by_tokens(payload)) << testing::PrintToString(payload);
}

// Every sequence of a few pieces, in front of nothing and in front of an end.
TEST(PayloadReader, ReadsInPlaceWhatTheTokenizerReads) {
    constexpr const char* pieces[] = {"<",  ">",  "</", "&",  ";",     "amp", "i",
                                      "rt", ".a", " x", "\n", "<c.b>", "\t",  "<9>"};
    for (const char* const first : pieces) {
        for (const char* const second : pieces) {
            for (const char* const third : pieces) {
                for (const char* const fourth : pieces) {
                    const std::string payload = std::string(first) + second + third + fourth;
                    expect_same_reading(payload);
                    expect_same_reading("<" + payload + ">\n");
                }
            }
        }
        ASSERT_FALSE(testing::Test::HasFatalFailure());
    }
}

}  // namespace
}  // namespace webvtt
