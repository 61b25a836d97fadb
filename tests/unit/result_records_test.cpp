// Result records: defaults, copies, assignment, counting; and their places in memory by number.
#include "parser/result_records.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <type_traits>

#include "quillcaption/quillcaption.h"
#include "support/cue_record.h"

namespace webvtt {
namespace {

using support::CueRecord;
using support::value_at;

static_assert(!std::is_polymorphic_v<WebvttCue> && !std::is_polymorphic_v<WebvttCueNode>);
static_assert(std::is_base_of_v<WebvttCue, WebvttCueNode>);
static_assert(sizeof(WebvttCueNode) == 48 && alignof(WebvttCueNode) == 8);
static_assert(sizeof(WebvttDataInfo) == 12 && alignof(WebvttDataInfo) == 4);
static_assert(sizeof(WEBVTT_EVENT_T) == 4);

void expect_defaults(const WebvttCue& cue) {
    EXPECT_EQ(cue.dStartTime, 0.0);
    EXPECT_EQ(cue.dEndTime, 0.0);
    EXPECT_EQ(cue.i4Line, -1);
    EXPECT_EQ(cue.fgReserved, 0);
    EXPECT_EQ(cue.fgSnapToLines, 1);
    EXPECT_EQ(cue.u1Position, 0);
    EXPECT_EQ(cue.u1Size, 0);
    EXPECT_EQ(static_cast<int>(cue.eTextAlign), 0);
    EXPECT_EQ(static_cast<int>(cue.eVertical), 0);
}

void fill(WebvttCue& cue) {
    cue.dStartTime = -1.25;
    cue.dEndTime = 1e300;
    cue.i4Line = -2147483647 - 1;
    cue.fgReserved = 0x12;
    cue.fgSnapToLines = 0x34;
    cue.u1Position = 0x56;
    cue.u1Size = 0xFE;
    cue.eTextAlign = Text_Align_Type::RIGHT;
    cue.eVertical = Vertical_Type::VERTICAL_GROWING_RIGHT;
}

void expect_filled(const WebvttCue& cue) {
    EXPECT_EQ(cue.dStartTime, -1.25);
    EXPECT_EQ(cue.dEndTime, 1e300);
    EXPECT_EQ(cue.i4Line, -2147483647 - 1);
    EXPECT_EQ(cue.fgReserved, 0x12);
    EXPECT_EQ(cue.fgSnapToLines, 0x34);
    EXPECT_EQ(cue.u1Position, 0x56);
    EXPECT_EQ(cue.u1Size, 0xFE);
    EXPECT_EQ(cue.eTextAlign, Text_Align_Type::RIGHT);
    EXPECT_EQ(cue.eVertical, Vertical_Type::VERTICAL_GROWING_RIGHT);
}

TEST(ResultRecord, Defaults) {
    const WebvttCueNode node;
    expect_defaults(node);
    EXPECT_EQ(node.pcAuxText, nullptr);
    EXPECT_EQ(node.pcText, nullptr);
    EXPECT_EQ(node.prNext, nullptr);
    expect_defaults(WebvttCue());
}

TEST(ResultRecord, CopiesTheTextsThatAreGiven) {
    char text[] = "text";
    char aux[] = "aux";
    const WebvttCueNode both(aux, text);
    const WebvttCueNode text_only(nullptr, text);
    const WebvttCue aux_only(aux, nullptr);
    const WebvttCue empty("", "");
    std::strcpy(text, "????");
    std::strcpy(aux, "???");
    EXPECT_STREQ(both.pcAuxText, "aux");
    EXPECT_STREQ(both.pcText, "text");
    EXPECT_EQ(both.prNext, nullptr);
    expect_defaults(both);
    EXPECT_EQ(text_only.pcAuxText, nullptr);
    EXPECT_STREQ(text_only.pcText, "text");
    EXPECT_STREQ(aux_only.pcAuxText, "aux");
    EXPECT_EQ(aux_only.pcText, nullptr);
    EXPECT_STREQ(empty.pcText, "");
}

TEST(ResultRecord, CopyHasTextsOfItsOwnAndIsNotInTheQueue) {
    WebvttCueNode next;
    auto original = std::make_unique<WebvttCueNode>("aux", "text");
    fill(*original);
    original->prNext = &next;
    const WebvttCueNode copy(*original);
    EXPECT_NE(copy.pcText, original->pcText);
    EXPECT_NE(copy.pcAuxText, original->pcAuxText);
    original.reset();
    EXPECT_STREQ(copy.pcAuxText, "aux");
    EXPECT_STREQ(copy.pcText, "text");
    EXPECT_EQ(copy.prNext, nullptr);
    expect_filled(copy);

    const WebvttCue without_texts{WebvttCue()};
    EXPECT_EQ(without_texts.pcText, nullptr);
}

// Made in its own place, where the compiler cannot know it: hence the volatile pointer.
TEST(ResultRecord, CopyOfItselfChangesNothing) {
    WebvttCueNode next;
    WebvttCueNode node("aux", "text");
    WebvttCue& cue = node;
    fill(node);
    node.prNext = &next;
    const char* const aux = node.pcAuxText;
    const char* const text = node.pcText;
    void* volatile place = &cue;
    new (place) WebvttCue(*static_cast<const WebvttCue*>(place));
    EXPECT_EQ(node.pcAuxText, aux);
    EXPECT_EQ(node.pcText, text);
    EXPECT_STREQ(node.pcText, "text");
    EXPECT_EQ(node.prNext, &next);
    expect_filled(node);

    place = &node;
    new (place) WebvttCueNode(*static_cast<const WebvttCueNode*>(place));
    EXPECT_EQ(node.pcText, text);
    EXPECT_EQ(node.prNext, nullptr);  // as in every copy
    expect_filled(node);
}

TEST(ResultRecord, AssigningANodeChangesNothing) {
    WebvttCueNode next;
    WebvttCueNode target("aux", "text");
    fill(target);
    target.prNext = &next;
    const WebvttCueNode source(nullptr, "other");
    EXPECT_EQ(&(target = source), &target);
    EXPECT_STREQ(target.pcText, "text");
    EXPECT_STREQ(target.pcAuxText, "aux");
    EXPECT_EQ(target.prNext, &next);
    expect_filled(target);
}

TEST(DataInfo, CountsTheList) {
    WebvttCueNode nodes[3];
    nodes[0].prNext = &nodes[1];
    nodes[1].prNext = &nodes[2];
    const WebvttDataInfo all(&nodes[0]);
    EXPECT_EQ(all.prCueList, &nodes[0]);
    EXPECT_EQ(all.u4CueCount, 3u);
    EXPECT_EQ(all.u4Reserved, 0u);
    EXPECT_EQ(WebvttDataInfo(&nodes[2]).u4CueCount, 1u);
    const WebvttDataInfo none(nullptr);
    EXPECT_EQ(none.prCueList, nullptr);
    EXPECT_EQ(none.u4CueCount, 0u);
    EXPECT_EQ(none.u4Reserved, 0u);
}

TEST(Layout, CueRecordByNumber) {
    WebvttCueNode next;
    WebvttCueNode node("aux", "text");
    fill(node);
    node.prNext = &next;
    EXPECT_EQ(value_at<char*>(&node, 0), node.pcAuxText);
    EXPECT_EQ(value_at<double>(&node, 8), -1.25);
    EXPECT_EQ(value_at<double>(&node, 16), 1e300);
    EXPECT_EQ(value_at<char*>(&node, 24), node.pcText);
    EXPECT_EQ(value_at<std::int32_t>(&node, 28), -2147483647 - 1);
    EXPECT_EQ(value_at<std::uint8_t>(&node, 32), 0x12);
    EXPECT_EQ(value_at<std::uint8_t>(&node, 33), 0x34);
    EXPECT_EQ(value_at<std::uint8_t>(&node, 34), 0x56);
    EXPECT_EQ(value_at<std::uint8_t>(&node, 35), 0xFE);
    EXPECT_EQ(value_at<std::int32_t>(&node, 36), 4);
    EXPECT_EQ(value_at<std::int32_t>(&node, 40), 2);
    EXPECT_EQ(value_at<const void*>(&node, 44), &next);
}

TEST(Layout, DataInfoByNumber) {
    WebvttCueNode node;
    const WebvttDataInfo info(&node);
    EXPECT_EQ(value_at<const void*>(&info, 0), &node);
    EXPECT_EQ(value_at<std::uint32_t>(&info, 4), 1u);
    EXPECT_EQ(value_at<std::uint32_t>(&info, 8), 0u);
}

// A host in C reads the records through the structs of the public header.
TEST(Layout, PublicHeaderSeesTheSame) {
    WebvttCueNode node("aux", "text");
    fill(node);
    ::WebvttCueNode seen;
    std::memcpy(&seen, static_cast<const void*>(&node), sizeof(seen));
    EXPECT_EQ(seen.pcAuxText, node.pcAuxText);
    EXPECT_EQ(seen.dStartTime, -1.25);
    EXPECT_EQ(seen.dEndTime, 1e300);
    EXPECT_EQ(seen.pcText, node.pcText);
    EXPECT_EQ(seen.i4Line, -2147483647 - 1);
    EXPECT_EQ(seen.fgReserved, 0x12);
    EXPECT_EQ(seen.fgSnapToLines, 0x34);
    EXPECT_EQ(seen.u1Position, 0x56);
    EXPECT_EQ(seen.u1Size, 0xFE);
    EXPECT_EQ(seen.eTextAlign, WEBVTT_TEXT_ALIGN_RIGHT);
    EXPECT_EQ(seen.eVertical, WEBVTT_VERTICAL_GROWING_RIGHT);
    EXPECT_EQ(seen.prNext, nullptr);
}

}  // namespace
}  // namespace webvtt
