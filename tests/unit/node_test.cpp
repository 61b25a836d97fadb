// Payload nodes: kinds, defaults, appending.
#include "payload/node.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace webvtt {
namespace {

static_assert(std::is_base_of_v<WebvttInternalNode, WebvttClassNode>);
static_assert(std::is_base_of_v<WebvttInternalNode, WebvttLanguageNode>);
static_assert(std::is_base_of_v<WebvttLeafNode, WebvttTextNode>);
static_assert(std::is_base_of_v<WebvttLeafNode, WebvttTimeStampNode>);
static_assert(!std::is_base_of_v<WebvttInternalNode, WebvttLeafNode>);
static_assert(std::has_virtual_destructor_v<WebvttNode>);

template <typename Node>
int kind_of() {
    const Node node;
    const WebvttNode& base = node;
    return base.eGetNodeType();
}

TEST(Node, EachClassHasItsKind) {
    EXPECT_EQ(kind_of<WebvttNode>(), 0);
    EXPECT_EQ(kind_of<WebvttInternalNode>(), 0);
    EXPECT_EQ(kind_of<WebvttClassNode>(), 1);
    EXPECT_EQ(kind_of<WebvttItalicNode>(), 2);
    EXPECT_EQ(kind_of<WebvttBoldNode>(), 3);
    EXPECT_EQ(kind_of<WebvttUnderlineNode>(), 4);
    EXPECT_EQ(kind_of<WebvttRubyNode>(), 5);
    EXPECT_EQ(kind_of<WebvttRubyTextNode>(), 6);
    EXPECT_EQ(kind_of<WebvttVoiceNode>(), 7);
    EXPECT_EQ(kind_of<WebvttLanguageNode>(), 8);
    EXPECT_EQ(kind_of<WebvttLeafNode>(), 0);
    EXPECT_EQ(kind_of<WebvttTextNode>(), 9);
    EXPECT_EQ(kind_of<WebvttTimeStampNode>(), 10);
}

TEST(Node, StartsAlone) {
    const WebvttNode node;
    EXPECT_TRUE(node.vecChildren.empty());
    EXPECT_EQ(node.pParent, nullptr);
    EXPECT_EQ(node.prGetParent(), nullptr);
    EXPECT_EQ(WebvttBoldNode().strApplicableLanguage.text, "");
    EXPECT_EQ(WebvttTextNode().strText.text, "");
    EXPECT_EQ(WebvttTimeStampNode().dTimeStamp, 0.0);
}

TEST(Node, TextNodeCopiesItsText) {
    WebvttString text("a\nb");
    const WebvttTextNode node(text);
    text.text = "changed";
    EXPECT_EQ(node.strText.text, "a\nb");
    EXPECT_EQ(WebvttTextNode(WebvttString("moved")).strText.text, "moved");
}

TEST(Node, InternalNodeTakesALanguage) {
    WebvttVoiceNode node;
    node.vSetApplicableLanguage(WebvttString("en"));
    EXPECT_EQ(node.strApplicableLanguage.text, "en");
    node.vSetApplicableLanguage(WebvttString(""));
    EXPECT_EQ(node.strApplicableLanguage.text, "");
}

TEST(Node, AppendKeepsTheOrderAndSetsTheParent) {
    WebvttNode root;
    WebvttBoldNode bold;
    WebvttTextNode text;
    root.vAppendNode(&bold);
    root.vAppendNode(&text);
    EXPECT_EQ(root.vecChildren, (std::vector<WebvttNode*>{&bold, &text}));
    EXPECT_EQ(bold.prGetParent(), &root);
    EXPECT_EQ(text.prGetParent(), &root);
    EXPECT_EQ(root.prGetParent(), nullptr);
}

TEST(Node, AppendIgnoresNullAndTheNodeItself) {
    WebvttNode root;
    root.vAppendNode(nullptr);
    root.vAppendNode(&root);
    EXPECT_TRUE(root.vecChildren.empty());
    EXPECT_EQ(root.prGetParent(), nullptr);
}

TEST(Node, AppendDoesNotNoticeAnEarlierParent) {
    WebvttNode first;
    WebvttNode second;
    WebvttNode child;
    first.vAppendNode(&child);
    second.vAppendNode(&child);
    second.vAppendNode(&child);
    EXPECT_EQ(first.vecChildren.size(), 1u);
    EXPECT_EQ(second.vecChildren, (std::vector<WebvttNode*>{&child, &child}));
    EXPECT_EQ(child.prGetParent(), &second);
}

TEST(Node, LeafCalledAsANodeAcceptsChildren) {
    WebvttTextNode text;
    WebvttTimeStampNode stamp;
    WebvttNode child;
    static_cast<WebvttNode&>(text).vAppendNode(&child);
    EXPECT_EQ(text.vecChildren, (std::vector<WebvttNode*>{&child}));
    EXPECT_EQ(child.prGetParent(), &text);
    static_cast<WebvttNode&>(stamp).vAppendNode(&child);
    EXPECT_EQ(stamp.vecChildren.size(), 1u);
}

TEST(Node, LeafOverloadForConstantsDoesNothing) {
    WebvttTextNode text;
    const WebvttNode child;
    text.vAppendNode(&child);
    static_cast<const WebvttLeafNode&>(text).vAppendNode(&child);
    EXPECT_TRUE(text.vecChildren.empty());
    EXPECT_EQ(child.prGetParent(), nullptr);
}

}  // namespace
}  // namespace webvtt
