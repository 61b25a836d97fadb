// Class-wide constants and the numbers behind the enumerations.
#include <gtest/gtest.h>

#include "cue/cue.h"
#include "cue/cue_constants.h"
#include "header/region_header.h"
#include "header/timestamp_header.h"
#include "quillcaption/quillcaption.h"

namespace webvtt {
namespace {

TEST(Constants, CharacterReferences) {
    EXPECT_EQ(ESCAPE_AMP.text, "&amp");
    EXPECT_EQ(ESCAPE_LT.text, "&lt");
    EXPECT_EQ(ESCAPE_GT.text, "&gt");
    EXPECT_EQ(ESCAPE_LRM.text, "&lrm");
    EXPECT_EQ(ESCAPE_RLM.text, "&rlm");
    EXPECT_EQ(ESCAPE_NBSP.text, "&nbsp");
}

TEST(Constants, CueSettings) {
    EXPECT_EQ(CUE_SETTING_REGION.text, "region");
    EXPECT_EQ(CUE_SETTING_VERTICAL.text, "vertical");
    EXPECT_EQ(CUE_SETTING_LINE.text, "line");
    EXPECT_EQ(CUE_SETTING_SIZE.text, "size");
    EXPECT_EQ(CUE_SETTING_POSITION.text, "position");
    EXPECT_EQ(CUE_SETTING_ALIGN.text, "align");
}

TEST(Constants, RegionHeader) {
    EXPECT_EQ(RegionMetaDataHeader::REGION_SETTING_HEADER->text, "Region:");
    EXPECT_EQ(RegionMetaDataHeader::REGION_SETTING_ID->text, "id");
    EXPECT_EQ(RegionMetaDataHeader::REGION_SETTING_WIDTH->text, "width");
    EXPECT_EQ(RegionMetaDataHeader::REGION_SETTING_LINES->text, "lines");
    EXPECT_EQ(RegionMetaDataHeader::REGION_SETTING_REGIONANCHOR->text, "regionanchor");
    EXPECT_EQ(RegionMetaDataHeader::REGION_SETTING_VIEWPORTANCHOR->text, "viewportanchor");
    EXPECT_EQ(RegionMetaDataHeader::REGION_SETTING_SCROLL->text, "scroll");
}

TEST(Constants, TimestampHeader) {
    EXPECT_EQ(TimeStampMetaDataHeader::TIMESTAMP_ID->text, "X-TIMESTAMP-MAP");
    EXPECT_EQ(TimeStampMetaDataHeader::TIMESTAMP_LOCAL_ID->text, "LOCAL:");
    EXPECT_EQ(TimeStampMetaDataHeader::TIMESTAMP_MPEGTS_ID->text, "MPEGTS:");
}

template <typename Value>
constexpr int number(Value value) {
    static_assert(sizeof(Value) == 4, "enumerations are 32 bits wide");
    return static_cast<int>(value);
}

TEST(Enumerations, CueSettings) {
    EXPECT_EQ(number(Vertical_Type::HORIZONTAL), 0);
    EXPECT_EQ(number(Vertical_Type::VERTICAL_GROWING_LEFT), 1);
    EXPECT_EQ(number(Vertical_Type::VERTICAL_GROWING_RIGHT), 2);
    EXPECT_EQ(number(Text_Align_Type::START), 0);
    EXPECT_EQ(number(Text_Align_Type::MIDDLE), 1);
    EXPECT_EQ(number(Text_Align_Type::END), 2);
    EXPECT_EQ(number(Text_Align_Type::LEFT), 3);
    EXPECT_EQ(number(Text_Align_Type::RIGHT), 4);
    EXPECT_EQ(number(Line_Align_Type::START), 0);
    EXPECT_EQ(number(Line_Align_Type::MIDDLE), 1);
    EXPECT_EQ(number(Line_Align_Type::END), 2);
}

TEST(Enumerations, Payload) {
    EXPECT_EQ(number(NODE_ROOT), 0);
    EXPECT_EQ(number(NODE_CLASS), 1);
    EXPECT_EQ(number(NODE_ITALIC), 2);
    EXPECT_EQ(number(NODE_BOLD), 3);
    EXPECT_EQ(number(NODE_UNDERLINE), 4);
    EXPECT_EQ(number(NODE_RUBY), 5);
    EXPECT_EQ(number(NODE_RUBY_TEXT), 6);
    EXPECT_EQ(number(NODE_VOICE), 7);
    EXPECT_EQ(number(NODE_LANGUAGE), 8);
    EXPECT_EQ(number(NODE_TEXT), 9);
    EXPECT_EQ(number(NODE_TIMESTAMP), 10);
    EXPECT_EQ(number(Cue::TRAVEL_ACTION_GET_CONTENT), 0);
}

TEST(Enumerations, Tokenizer) {
    EXPECT_EQ(number(Cue::STATE_DATA), 0);
    EXPECT_EQ(number(Cue::STATE_ESCAPE), 1);
    EXPECT_EQ(number(Cue::STATE_TAG), 2);
    EXPECT_EQ(number(Cue::STATE_START_TAG), 3);
    EXPECT_EQ(number(Cue::STATE_START_TAG_CLASS), 4);
    EXPECT_EQ(number(Cue::STATE_START_TAG_ANNOTATION), 5);
    EXPECT_EQ(number(Cue::STATE_END_TAG), 6);
    EXPECT_EQ(number(Cue::STATE_TIMESTAMP), 7);
    EXPECT_EQ(number(Cue::TOKEN_NONE), 0);
    EXPECT_EQ(number(Cue::TOKEN_STRING), 1);
    EXPECT_EQ(number(Cue::TOKEN_START_TAG), 2);
    EXPECT_EQ(number(Cue::TOKEN_END_TAG), 3);
    EXPECT_EQ(number(Cue::TOKEN_TIMESTAMP), 4);
}

TEST(Enumerations, HeadersResultsAndEvents) {
    EXPECT_EQ(number(HEADER_NONE), -1);
    EXPECT_EQ(number(HEADER_REGION), 0);
    EXPECT_EQ(number(HEADER_TIMESTAMP), 1);
    EXPECT_EQ(number(WEBVTT_EVENT_PARSE_RESULT), 0);
    EXPECT_EQ(WEBVTT_RESULT_OK, 0);
    EXPECT_EQ(WEBVTT_RESULT_HEADER, 1);
    EXPECT_EQ(WEBVTT_RESULT_ERROR, 2);
}

}  // namespace
}  // namespace webvtt
