// The plain text of a tree.
#include <gtest/gtest.h>

#include "cue/cue.h"

namespace webvtt {
namespace {

/// root ( 'a' b ( 'b' time ) null 'c' )
class PlainText : public testing::Test {
  protected:
    PlainText() {
        cue.pRootNode = new WebvttNode;
        cue.pRootNode->vAppendNode(new WebvttTextNode(WebvttString("a")));
        bold = new WebvttBoldNode;
        cue.pRootNode->vAppendNode(bold);
        bold->vAppendNode(new WebvttTextNode(WebvttString("b\n")));
        bold->vAppendNode(new WebvttTimeStampNode);
        cue.pRootNode->vecChildren.push_back(nullptr);
        cue.pRootNode->vAppendNode(new WebvttTextNode(WebvttString("c")));
    }

    Cue cue;
    WebvttNode* bold;
};

TEST_F(PlainText, IsAllTextInDocumentOrder) {
    EXPECT_EQ(cue.strGetCueContent().text, "ab\nc");
}

TEST_F(PlainText, WalkCollectsBehindWhatIsThere) {
    WebvttString collected("<");
    cue.vTravelNodeTreeWithAction(bold, Cue::TRAVEL_ACTION_GET_CONTENT, &collected);
    EXPECT_EQ(collected.text, "<b\n");
}

TEST_F(PlainText, OtherActionsCollectNothing) {
    WebvttString collected;
    cue.vTravelNodeTreeWithAction(cue.pRootNode, static_cast<Cue::Travel_Action_Type>(1),
                                  &collected);
    EXPECT_EQ(collected.text, "");
}

TEST(PlainTextWithoutTree, IsEmpty) {
    const Cue cue;
    WebvttString collected("x");
    cue.vTravelNodeTreeWithAction(nullptr, Cue::TRAVEL_ACTION_GET_CONTENT, &collected);
    EXPECT_EQ(collected.text, "x");
    EXPECT_EQ(cue.strGetCueContent().text, "");
}

// A text node that was given children, which a leaf accepts when it is called as a node.
TEST_F(PlainText, TextComesBeforeWhatIsBelowIt) {
    bold->vecChildren[0]->vAppendNode(new WebvttTextNode(WebvttString("below")));
    EXPECT_EQ(cue.strGetCueContent().text, "ab\nbelowc");
}

}  // namespace
}  // namespace webvtt
