// Freeing and walking trees: the order, holes in the lists, and trees that no stack would hold.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cue/cue.h"
#include "payload/node.h"
#include "payload/node_walk.h"
#include "support/stdout_capture.h"

namespace webvtt {
namespace {

/// Writes its name into a log when it is destroyed and when it is asked for its kind.
class LoggedNode : public WebvttNode {
  public:
    LoggedNode(std::string name, std::string& log) : m_name(std::move(name)), m_log(log) {}
    ~LoggedNode() override { m_log += "~" + m_name + " "; }
    Node_Type eGetNodeType() const override {
        m_log += m_name + " ";
        return NODE_ROOT;
    }

  private:
    std::string m_name;
    std::string& m_log;
};

/// root ( a ( c d ( e ) ) b )
class LoggedTree : public testing::Test {
  protected:
    LoggedNode* make(const char* name, WebvttNode* parent) {
        auto* const node = new LoggedNode(name, log);
        if (parent != nullptr) {
            parent->vAppendNode(node);
        }
        return node;
    }

    std::string log;
    LoggedNode* root = make("root", nullptr);
    LoggedNode* a = make("a", root);
    LoggedNode* b = make("b", root);
    LoggedNode* c = make("c", a);
    LoggedNode* d = make("d", a);
    LoggedNode* e = make("e", d);
    static constexpr const char* kChildrenFirst = "~c ~e ~d ~a ~b ~root ";
};

TEST_F(LoggedTree, IsReleasedChildrenFirstAndFirstChildFirst) {
    Cue().vReleaseNode(root);
    EXPECT_EQ(log, kChildrenFirst);
}

TEST_F(LoggedTree, IsReleasedByTheCueThatOwnsIt) {
    {
        Cue cue;
        cue.pRootNode = root;
        EXPECT_EQ(log, "");
    }
    EXPECT_EQ(log, kChildrenFirst);
}

TEST_F(LoggedTree, ReleaseSkipsHoles) {
    root->vecChildren.insert(root->vecChildren.begin(), nullptr);
    root->vecChildren.push_back(nullptr);
    d->vecChildren.assign({nullptr, nullptr, e, nullptr});
    c->vecChildren.assign({nullptr});
    Cue().vReleaseNode(root);
    EXPECT_EQ(log, kChildrenFirst);
}

TEST_F(LoggedTree, ReleaseFollowsTheListsNotTheParents) {
    for (LoggedNode* const node : {a, b, c, d, e}) {
        node->pParent = nullptr;
    }
    Cue().vReleaseNode(root);
    EXPECT_EQ(log, kChildrenFirst);
}

TEST_F(LoggedTree, ReleaseOfASubtreeLeavesTheRest) {
    Cue cue;
    root->vecChildren = {b};
    cue.vReleaseNode(a);  // its parent link still leads to the root
    EXPECT_EQ(log, "~c ~e ~d ~a ");
    cue.vReleaseNode(root);
    EXPECT_EQ(log, kChildrenFirst);
}

TEST_F(LoggedTree, DestructorOfANodeFreesNoChild) {
    delete d;
    EXPECT_EQ(log, "~d ");
    a->vecChildren = {c, e};
    Cue().vReleaseNode(root);
    EXPECT_EQ(log, "~d ~c ~e ~a ~b ~root ");
}

TEST_F(LoggedTree, IsWalkedParentsFirst) {
    a->vecChildren.insert(a->vecChildren.begin(), nullptr);
    walk_tree(root, [](const WebvttNode* node) { node->eGetNodeType(); });
    EXPECT_EQ(log, "root a c d e b ");
    Cue().vReleaseNode(root);
}

TEST(NodeRelease, NullIsNothing) {
    Cue cue;
    cue.vReleaseNode(nullptr);
    walk_tree(nullptr, [](const WebvttNode*) { FAIL(); });
    EXPECT_EQ(cue.pRootNode, nullptr);
}

// A payload decides how deep its tags nest; a board's stack must not depend on that.
TEST(NodeRelease, MillionDeepTreeIsWalkedAndReleasedWithoutRecursion) {
    constexpr unsigned kDepth = 1000000;
    Cue cue;
    cue.pRootNode = new WebvttNode;
    WebvttNode* innermost = cue.pRootNode;
    for (unsigned depth = 1; depth < kDepth; ++depth) {
        WebvttNode* const child = new WebvttBoldNode;
        innermost->vAppendNode(child);
        innermost = child;
    }
    innermost->vAppendNode(new WebvttTextNode(WebvttString("deep")));

    unsigned visited = 0;
    walk_tree(cue.pRootNode, [&visited](const WebvttNode*) { ++visited; });
    EXPECT_EQ(visited, kDepth + 1);
    EXPECT_EQ(cue.strGetCueContent().text, "deep");
    EXPECT_EQ(support::output_of([&] { cue.vPrintCueNodeList(); }), "");
}

TEST(NodeRelease, WideTreeIsReleasedInOrder) {
    constexpr int kWidth = 100000;
    std::string log;
    std::string expected;
    auto* const root = new WebvttNode;
    for (int child = 0; child < kWidth; ++child) {
        const std::string name = std::to_string(child);
        root->vAppendNode(new LoggedNode(name, log));
        expected += "~" + name + " ";
    }
    Cue().vReleaseNode(root);
    EXPECT_TRUE(log == expected);
}

}  // namespace
}  // namespace webvtt
