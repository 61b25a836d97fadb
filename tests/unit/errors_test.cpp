// The parser's exceptions, and the message at each place that throws one for bad input. (Those that
// are thrown when memory runs out are in allocation_failure_test.cpp.)
#include "base/errors.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

#include "cue/cue.h"
#include "header/region_header.h"
#include "header/timestamp_header.h"
#include "parser/webvtt_parser.h"
#include "support/diagnostic_lines.h"
#include "support/stdout_capture.h"

namespace webvtt {
namespace {

static_assert(std::is_base_of_v<std::runtime_error, RuntimeException>);
static_assert(std::is_base_of_v<RuntimeException, InvalidArgumentException>);
static_assert(std::is_base_of_v<std::bad_alloc, BadAllocException>);
static_assert(!std::is_base_of_v<std::runtime_error, BadAllocException>);

constexpr const char* kWhat = "webvtt::Exception";

template <typename Caught, typename Thrown>
std::string what_caught_as(const Thrown& thrown) {
    try {
        throw thrown;
    } catch (const Caught& error) {
        return error.what();
    } catch (...) {
        return "caught as something else";
    }
}

TEST(Errors, InvalidArgumentIsCaughtAsEachOfItsBases) {
    const InvalidArgumentException error("Input pcLine is empty", nullptr);
    EXPECT_EQ(what_caught_as<InvalidArgumentException>(error), kWhat);
    EXPECT_EQ(what_caught_as<RuntimeException>(error), kWhat);
    EXPECT_EQ(what_caught_as<std::runtime_error>(error), kWhat);
    EXPECT_EQ(what_caught_as<std::exception>(error), kWhat);
}

TEST(Errors, WhatOfARuntimeExceptionIsNeverTheMessage) {
    for (const char* message : {"", "message", "webvtt::Exception", "a much longer message %s"}) {
        EXPECT_EQ(what_caught_as<std::exception>(RuntimeException(message, nullptr)), kWhat);
    }
}

TEST(Errors, BadAllocIsCaughtAsTheStandardOneOnly) {
    const BadAllocException error("create new Node Failed\n", nullptr);
    EXPECT_EQ(what_caught_as<std::bad_alloc>(error), std::bad_alloc().what());
    EXPECT_EQ(what_caught_as<std::exception>(error), std::bad_alloc().what());
    EXPECT_EQ(what_caught_as<RuntimeException>(error), "caught as something else");
}

TEST(Errors, CopiesKeepMessageAndCause) {
    const std::exception cause;
    const RuntimeException runtime("one", &cause);
    const InvalidArgumentException argument("two", &cause);
    const BadAllocException memory("three\n", &cause);
    EXPECT_EQ(RuntimeException(runtime).strGetMessage(), "one");
    EXPECT_EQ(RuntimeException(runtime).prGetCause(), &cause);
    EXPECT_EQ(InvalidArgumentException(argument).strGetMessage(), "two");
    EXPECT_EQ(InvalidArgumentException(argument).prGetCause(), &cause);
    EXPECT_EQ(BadAllocException(memory).strGetMessage(), "three\n");
    EXPECT_EQ(BadAllocException(memory).prGetCause(), &cause);
}

/// The message of what a call throws; the error must have no cause and print nothing but output.
template <typename Error, typename Call>
std::string message_of(Call call, const std::string& output = "") {
    std::string message = "nothing was thrown";
    const std::string printed = support::output_of([&] {
        try {
            call();
        } catch (const Error& error) {
            message = error.strGetMessage();
            EXPECT_EQ(error.prGetCause(), nullptr);
        }
    });
    EXPECT_EQ(printed, output);
    return message;
}

TEST(ThrowSites, BlockWithoutText) {
    const auto parse = [](const char* text, unsigned size) {
        return message_of<InvalidArgumentException>([=] { Cue().fgParse(text, size); });
    };
    EXPECT_EQ(parse(nullptr, 5), "Input pcLine is empty");
    EXPECT_EQ(parse("00:01.000 --> 00:02.000\nx", 0), "Input pcLine is empty");
    EXPECT_EQ(parse(nullptr, 0), "Input pcLine is empty");
}

TEST(ThrowSites, InvalidStartTime) {
    WebvttString line("abc --> 00:02.000");
    Cue cue;
    EXPECT_EQ(
        message_of<InvalidArgumentException>([&] { cue.fgParseCueTimeAndSettings(line); },
                                             support::error_line("Invalid Start Time Stamp <abc>")),
        "Input pcLine is empty");
}

TEST(ThrowSites, EmptyPayload) {
    const auto parse = [](const char* payload, unsigned size) {
        Cue cue;
        const std::string message =
            message_of<InvalidArgumentException>([&] { cue.fgParseCuePayload(payload, size); });
        EXPECT_EQ(cue.pRootNode, nullptr);  // nothing is built
        return message;
    };
    EXPECT_EQ(parse(nullptr, 1), "Input pcLine is empty");
    EXPECT_EQ(parse("x", 0), "Input pcLine is empty");
}

TEST(ThrowSites, UnknownStartTag) {
    Cue cue;
    EXPECT_EQ(message_of<BadAllocException>(
                  [&] { cue.fgParseCuePayload("<foo>x", 6); },
                  support::error_line("unexcepted start tag <foo> detected. Ignored")),
              "create new Node Failed\n");
}

// What is told by value inside the module, for callers who are promised an exception.
TEST(ThrowSites, EveryOutcomeHasItsException) {
    EXPECT_TRUE(throw_unless_read(Outcome::kDone));
    EXPECT_FALSE(throw_unless_read(Outcome::kRejected));
    EXPECT_EQ(message_of<InvalidArgumentException>([] { throw_unless_read(Outcome::kEmptyInput); }),
              "Input pcLine is empty");
    const struct {
        Outcome outcome;
        const char* message;
    } kShortages[] = {{Outcome::kNoNode, "create new Node Failed\n"},
                      {Outcome::kNoRecord, "Create WebvttCue Node failed"},
                      {Outcome::kNoBlock, "apply memory failed at Line"},
                      {Outcome::kNoCarried, "Create Unused Buffer failed"}};
    for (const auto& c : kShortages) {
        EXPECT_EQ(message_of<BadAllocException>([&] { throw_unless_read(c.outcome); }), c.message);
    }
}

TEST(ThrowSites, NullHeaderLine) {
    RegionMetaDataHeader region;
    TimeStampMetaDataHeader map;
    EXPECT_EQ(message_of<InvalidArgumentException>([&] { region.vParse(nullptr); }),
              "Input pcLine is NULL");
    EXPECT_EQ(message_of<InvalidArgumentException>([&] { map.vParse(nullptr); }),
              "Input pcLine is NULL");
}

TEST(ThrowSites, LineSlotThatIsNotEmpty) {
    WebVTTParser parser;
    char chunk[] = "a\n";
    char slot = 'x';
    char* line = &slot;
    parser.vSetParsingBuffer(chunk, 2);
    EXPECT_EQ(message_of<InvalidArgumentException>([&] { parser.fgCollectLine(&line); }),
              "Input pcLine Shall be empty");
    EXPECT_EQ(line, &slot);
}

}  // namespace
}  // namespace webvtt
