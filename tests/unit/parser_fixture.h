// A parser and a few short verbs to drive it with.
#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "parser/webvtt_parser.h"
#include "support/cue_record.h"
#include "support/diagnostic_lines.h"
#include "support/exact_block.h"
#include "support/stdout_capture.h"

namespace webvtt {

/// Every chunk is handed over in a block of its own that is gone after the call.
class ParserTest : public testing::Test {
  protected:
    ParserTest() { parser.vSetWebvttEventNty(&deliveries, vKeep); }

    /// Feeds a chunk and gives the result. What it prints is kept for expect_output; what it throws
    /// passes through.
    int feed(std::string_view chunk) {
        support::StdoutCapture capture;
        support::ExactBlock block(chunk);
        try {
            const int result = parser.rsltParse(block.data(), block.size());
            output = capture.take();
            return result;
        } catch (...) {
            output = capture.take();
            throw;
        }
    }

    /// Feeds a chunk and gives the text of what it throws.
    std::string feed_throws(std::string_view chunk) {
        try {
            feed(chunk);
        } catch (const std::exception& error) {
            return error.what();
        }
        return "nothing was thrown";
    }

    /// Goes behind the header section of a track.
    void start_cues() {
        ASSERT_EQ(feed("WEBVTT\n\n"), 0);
        output.clear();
    }

    void expect_output(const std::string& expected) const { EXPECT_EQ(output, expected); }

    /// The error lines that the last chunk printed, without prefix: {"Buffer Exhausted"}.
    void expect_errors(std::initializer_list<const char*> messages) const {
        EXPECT_EQ(output, support::error_lines(messages));
    }

    /// Asks for the result: the cues that were completed since the last time.
    std::vector<support::CueRecord> cues() {
        deliveries.clear();
        parser.vGetParseResult();
        EXPECT_EQ(deliveries.size(), 1u);
        EXPECT_EQ(deliveries.at(0).count, deliveries.at(0).cues.size());
        EXPECT_EQ(deliveries.at(0).reserved, 0u);
        return deliveries.at(0).cues;
    }

    /// Their texts only.
    std::vector<std::string> texts() {
        std::vector<std::string> texts;
        for (const support::CueRecord& cue : cues()) {
            texts.push_back(cue.text);
        }
        return texts;
    }

    using Texts = std::vector<std::string>;

    WebVTTParser parser;
    std::string output;
    std::vector<support::Delivery> deliveries;

  private:
    static void vKeep(WEBVTT_EVENT_T eEvent, void* pvTag, void* pvInfo) {
        EXPECT_EQ(eEvent, 0);
        static_cast<std::vector<support::Delivery>*>(pvTag)->emplace_back(pvInfo);
    }
};

/// A block that becomes a cue, with its blank line: the n-th second of the track.
inline std::string block_at(int second, const std::string& text) {
    const std::string digits = std::to_string(second);
    return "00:0" + digits + ".000 --> 00:0" + digits + ".500\n" + text + "\n\n";
}

constexpr const char* kCueFailed = "Cue Parse Failed!!!!!!!!!!!!!!!!!!!!!!!!!!!!!";

}  // namespace webvtt
