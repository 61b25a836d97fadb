// The diagnostic dump: silent, and without effect on the cue.
#include <gtest/gtest.h>

#include <string>

#include "cue/cue.h"
#include "setting_dump.h"
#include "support/stdout_capture.h"
#include "tree_dump.h"

namespace webvtt {
namespace {

using support::output_of;

void dump(const Cue& cue) {
    cue.vPrintCueSettings();
    cue.vPrintCueNodeList();
    cue.vPrintCueNode(cue.pRootNode);
}

TEST(CueDump, IsSilentAndChangesNothing) {
    Cue cue;
    const std::string block =
        "00:01.000 --> 00:02.000 align:left vertical:rl size:10% line:5,end\na<b.x><lang>b";
    ASSERT_TRUE(cue.fgParse(block.c_str(), static_cast<unsigned>(block.size())));
    const std::string settings = dump_settings(cue);
    const std::string tree = dump_tree(cue.pRootNode);

    EXPECT_EQ(output_of([&] { dump(cue); }), "");
    EXPECT_EQ(dump_settings(cue), settings);
    EXPECT_EQ(dump_tree(cue.pRootNode), tree);
    EXPECT_EQ(cue.dStartTime, 1.0);
    EXPECT_EQ(cue.dEndTime, 2.0);
    EXPECT_EQ(cue.vecApplicableClasses.size(), 1u);
    EXPECT_EQ(cue.dqApplicableLanguages.size(), 1u);
}

TEST(CueDump, WithoutATreeReturnsAtOnce) {
    const Cue cue;
    EXPECT_EQ(output_of([&] { dump(cue); }), "");
    EXPECT_EQ(cue.pRootNode, nullptr);
}

TEST(CueDump, ValuesWithoutALabelAreHarmless) {
    for (const int value : {0, 1, 2, 3, 4, 5, 7, -1, 2147483647}) {
        Cue cue;
        cue.fgSnapToLines = value % 2 == 0;
        cue.eVertical = static_cast<Vertical_Type>(value);
        cue.eLineAlign = static_cast<Line_Align_Type>(value);
        cue.ePositionAlign = static_cast<Line_Align_Type>(value);
        cue.eTextAlign = static_cast<Text_Align_Type>(value);
        EXPECT_EQ(output_of([&] { cue.vPrintCueSettings(); }), "");
        EXPECT_EQ(static_cast<int>(cue.eTextAlign), value);
    }
}

/// Counts how often it is asked for its kind; the first time it appends a node to its parent.
class CountedNode : public WebvttNode {
  public:
    explicit CountedNode(int& count, WebvttNode* late = nullptr) : m_count(count), m_late(late) {}
    Node_Type eGetNodeType() const override {
        ++m_count;
        if (m_late != nullptr) {
            prGetParent()->vAppendNode(m_late);
            m_late = nullptr;
        }
        return NODE_ROOT;
    }

  private:
    int& m_count;
    mutable WebvttNode* m_late;
};

TEST(CueDump, VisitsEachNodeOnceAndSkipsHoles) {
    int count = 0;
    Cue cue;
    cue.pRootNode = new CountedNode(count);
    auto* const inner = new CountedNode(count);
    cue.pRootNode->vecChildren.push_back(nullptr);
    cue.pRootNode->vAppendNode(inner);
    cue.pRootNode->vecChildren.push_back(nullptr);
    inner->vAppendNode(new CountedNode(count));
    inner->vecChildren.push_back(nullptr);
    cue.pRootNode->vAppendNode(new CountedNode(count));

    cue.vPrintCueNodeList();
    EXPECT_EQ(count, 4);
    count = 0;
    cue.vPrintCueNode(inner);
    EXPECT_EQ(count, 2);
    cue.vPrintCueNode(nullptr);
    EXPECT_EQ(count, 2);
}

TEST(CueDump, SeesChildrenThatAreAppendedMeanwhile) {
    int count = 0;
    Cue cue;
    cue.pRootNode = new CountedNode(count);
    cue.pRootNode->vAppendNode(new CountedNode(count, new CountedNode(count)));
    cue.vPrintCueNodeList();
    EXPECT_EQ(count, 3);
}

}  // namespace
}  // namespace webvtt
