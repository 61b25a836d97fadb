// The entry points, the registry behind them, and the two data objects.
#include "api/entry_points.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "api/handle_registry.h"
#include "parser/webvtt_parser.h"
#include "support/cue_record.h"
#include "support/diagnostic_lines.h"
#include "support/exact_block.h"
#include "support/stdout_capture.h"

namespace {

using support::handle_line;
using support::output_of;
using webvtt::HandleRegistry;

/// A handle that is released at the end of its test.
class EntryPoints : public testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(IZorWebVtt_Parser_Create(&handle), 0); }
    void TearDown() override {
        if (HandleRegistry::fgIsLive(handle)) {
            IZorWebVtt_Parser_Release(handle);
        }
    }

    int parse(std::string_view chunk) {
        int result = -1;
        output = output_of([&] {
            support::ExactBlock block(chunk);
            result = IZorWebVtt_Parser_rsltParse(handle, block.data(), block.size());
        });
        return result;
    }

    unsigned int handle = 0;
    std::string output;
};

/// What each entry point but Create prints for a handle, and that it does nothing else.
void expect_refused(unsigned int handle, const std::vector<std::string>& lines) {
    const char chunk[] = "WEBVTT\n\n";
    int result = -1;
    int tag = 0;
    const auto notify = [](WEBVTT_EVENT_T, void*, void*) { FAIL(); };
    EXPECT_EQ(output_of([&] { IZorWebVtt_Parser_Release(handle); }), lines[0]);
    EXPECT_EQ(output_of([&] { result = IZorWebVtt_Parser_rsltParse(handle, chunk, 8); }), lines[1]);
    EXPECT_EQ(result, 2);
    EXPECT_EQ(output_of([&] { IZorWebVtt_Parser_vSetWebvttEventNty(handle, &tag, notify); }),
              lines[2]);
    EXPECT_EQ(output_of([&] { IZorWebVtt_Parser_vGetParseResult(handle); }), lines[3]);
    EXPECT_EQ(output_of([&] { IZorWebVtt_Parser_vSetVideoPTS(handle, 1); }), lines[4]);
}

const std::vector<std::string> kNotLive = {
    "[WEBVTT API:IZorWebVtt_Parser_Release] handle MUST not be NULL\n",
    "[WEBVTT API:IZorWebVtt_Parser_rsltParse] handle MUST not be NULL\n",
    "[WEBVTT API:IZorWebVtt_Parser_vSetWebvttEventNty] handle MUST not be NULL\n",
    "[WEBVTT API:IZorWebVtt_Parser_vGetParseResult] handle MUST not be NULL\n",
    "[WEBVTT API:IZorWebVtt_Parser_vSetVideoPTS] handle MUST not be NULL\n",
};

TEST(EntryPointCreate, RefusesANullPointer) {
    int result = -1;
    EXPECT_EQ(output_of([&] { result = IZorWebVtt_Parser_Create(nullptr); }),
              handle_line("IZorWebVtt_Parser_Create"));
    EXPECT_EQ(result, 2);
}

TEST_F(EntryPoints, HandleIsNotZeroAndIsLive) {
    EXPECT_NE(handle, 0u);
    EXPECT_TRUE(HandleRegistry::fgIsLive(handle));
}

TEST_F(EntryPoints, TwoParsersAreIndependent) {
    unsigned int other = 0;
    ASSERT_EQ(IZorWebVtt_Parser_Create(&other), 0);
    EXPECT_NE(other, handle);
    EXPECT_EQ(parse("WEBVTT\n\n"), 0);
    int result = -1;
    output_of([&] { result = IZorWebVtt_Parser_rsltParse(other, "nonsense\n", 9); });
    EXPECT_EQ(result, 2);
    EXPECT_EQ(output_of([&] { IZorWebVtt_Parser_Release(handle); }), "");
    expect_refused(handle, kNotLive);
    EXPECT_EQ(output_of([&] { result = IZorWebVtt_Parser_rsltParse(other, "x", 1); }), "");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(output_of([&] { IZorWebVtt_Parser_Release(other); }), "");
    expect_refused(other, kNotLive);
}

// Were anything behind such an address touched, the process would not survive.
TEST_F(EntryPoints, UnknownHandlesAreRefused) {
    for (const unsigned int unknown : {0u, 1u, 4u, 0xFFFFFFFFu, handle + 1, handle - 4}) {
        SCOPED_TRACE(unknown);
        expect_refused(unknown, kNotLive);
    }
    EXPECT_EQ(parse("WEBVTT\n\n"), 0);  // and the live one is as it was
}

TEST_F(EntryPoints, ReleasedHandleIsRefused) {
    EXPECT_EQ(output_of([&] { IZorWebVtt_Parser_Release(handle); }), "");
    expect_refused(handle, kNotLive);
    expect_refused(handle, kNotLive);
}

TEST_F(EntryPoints, ResultsOfTheParserArePassedOn) {
    EXPECT_EQ(parse(""), 1);
    EXPECT_EQ(output, support::error_line("Invalid input, buffer size 0"));
    EXPECT_EQ(parse("WEBVTT\n"), 1);
    EXPECT_EQ(parse("\n"), 0);
    EXPECT_EQ(parse("00:01.000 --> 00:02.000\n<foo>\n\n"), 2);
}

TEST_F(EntryPoints, DeliverToTheCallback) {
    std::vector<support::Delivery> deliveries;
    IZorWebVtt_Parser_vSetWebvttEventNty(
        handle, &deliveries, [](WEBVTT_EVENT_T eEvent, void* tag, void* info) {
            EXPECT_EQ(eEvent, 0);
            static_cast<std::vector<support::Delivery>*>(tag)->emplace_back(info);
        });
    IZorWebVtt_Parser_vSetVideoPTS(handle, 180000);
    EXPECT_EQ(parse("WEBVTT\n\n00:01.500 --> 00:03.000\nHi\n\n"), 0);
    IZorWebVtt_Parser_vGetParseResult(handle);
    IZorWebVtt_Parser_vGetParseResult(handle);
    ASSERT_EQ(deliveries.size(), 2u);
    ASSERT_EQ(deliveries[0].cues.size(), 1u);
    EXPECT_EQ(deliveries[0].cues[0].start, -0.5);
    EXPECT_EQ(deliveries[0].cues[0].text, "Hi\n");
    EXPECT_EQ(deliveries[1].count, 0u);
}

TEST_F(EntryPoints, ExceptionsPassThrough) {
    EXPECT_EQ(parse("WEBVTT\n\n"), 0);
    std::string what = "nothing was thrown";
    try {
        parse("00:01.000 --> 00:02.000 line:-\nx\n\n");
    } catch (const std::out_of_range& error) {
        what = error.what();
    }
    EXPECT_EQ(what, "basic_string::at");
    EXPECT_EQ(parse("00:01.000 --> 00:02.000\nx\n\n"), 0);
}

// No parser lies at address 0; only a registry that holds a 0 all the same gets there.
TEST(EntryPointZero, IsAFatalErrorWhenTheRegistryHoldsIt) {
    ASSERT_EQ(HandleRegistry::u4Register(nullptr), 0u);
    expect_refused(0, {"[WEBVTT API:IZorWebVtt_Parser_Release] Fatal error \n",
                       "[WEBVTT API:IZorWebVtt_Parser_rsltParse] Fatal error \n",
                       "[WEBVTT API:IZorWebVtt_Parser_vSetWebvttEventNty] Fatal error \n",
                       "[WEBVTT API:IZorWebVtt_Parser_vGetParseResult] Fatal error \n",
                       "[WEBVTT API:IZorWebVtt_Parser_vSetVideoPTS] Fatal error \n"});
    HandleRegistry::vUnregister(0);
    EXPECT_FALSE(HandleRegistry::fgIsLive(0));
}

TEST(HandleRegistryTest, RemovesEveryEqualEntry) {
    webvtt::WebVTTParser first;
    webvtt::WebVTTParser second;
    const unsigned int handle = HandleRegistry::u4Register(&first);
    const unsigned int other = HandleRegistry::u4Register(&second);
    EXPECT_EQ(HandleRegistry::u4Register(&first), handle);
    EXPECT_EQ(handle, reinterpret_cast<unsigned int>(&first));
    HandleRegistry::vUnregister(handle);
    EXPECT_FALSE(HandleRegistry::fgIsLive(handle));
    EXPECT_TRUE(HandleRegistry::fgIsLive(other));
    HandleRegistry::vUnregister(other);
    HandleRegistry::vUnregister(other);
    EXPECT_FALSE(HandleRegistry::fgIsLive(other));
}

TEST(ModuleInfo, DescriptorByNumber) {
    const void* const info = &WEBVTT_MODULE_INFO;
    static_assert(sizeof(WEBVTT_MODULE_INFO) == 144);
    EXPECT_EQ(support::value_at<std::uint32_t>(info, 0), 1u);
    EXPECT_STREQ(support::value_at<const char*>(info, 4), "quillcaption.so");
    EXPECT_EQ(support::value_at<const void*>(info, 8), &WebVtt_Module_Methods);
    const auto* const bytes = static_cast<const char*>(info);
    EXPECT_EQ(std::string(bytes + 12, 132), std::string(132, '\0'));
}

TEST(ModuleInfo, TableByNumber) {
    const void* const table = &WebVtt_Module_Methods;
    static_assert(sizeof(WebVtt_Module_Methods) == 24);
    using support::value_at;
    EXPECT_EQ(value_at<decltype(&IZorWebVtt_Parser_Create)>(table, 0), IZorWebVtt_Parser_Create);
    EXPECT_EQ(value_at<decltype(&IZorWebVtt_Parser_Release)>(table, 4), IZorWebVtt_Parser_Release);
    EXPECT_EQ(value_at<decltype(&IZorWebVtt_Parser_rsltParse)>(table, 8),
              IZorWebVtt_Parser_rsltParse);
    EXPECT_EQ(value_at<decltype(&IZorWebVtt_Parser_vSetWebvttEventNty)>(table, 12),
              IZorWebVtt_Parser_vSetWebvttEventNty);
    EXPECT_EQ(value_at<decltype(&IZorWebVtt_Parser_vGetParseResult)>(table, 16),
              IZorWebVtt_Parser_vGetParseResult);
    EXPECT_EQ(value_at<decltype(&IZorWebVtt_Parser_vSetVideoPTS)>(table, 20),
              IZorWebVtt_Parser_vSetVideoPTS);
}

}  // namespace
