// The tree that a cue's payload becomes: tags are internal nodes, text runs and inline timestamps
// are leaves.
#pragma once

#include <cstdint>
#include <vector>

#include "base/webvtt_string.h"

namespace webvtt {

enum Node_Type : std::int32_t {
    NODE_ROOT = 0,
    NODE_CLASS = 1,
    NODE_ITALIC = 2,
    NODE_BOLD = 3,
    NODE_UNDERLINE = 4,
    NODE_RUBY = 5,
    NODE_RUBY_TEXT = 6,
    NODE_VOICE = 7,
    NODE_LANGUAGE = 8,
    NODE_TEXT = 9,
    NODE_TIMESTAMP = 10
};

/// The base of all nodes, and the class of each tree's root.
///
/// A node lists its children but does not free them: a tree is freed as a whole, by
/// Cue::vReleaseNode on its root. Nodes are not copied.
class WebvttNode {
  public:
    WebvttNode() = default;
    WebvttNode(const WebvttNode&) = delete;
    WebvttNode& operator=(const WebvttNode&) = delete;
    virtual ~WebvttNode();

    /// Appends a child and becomes its parent. Null and the node itself are ignored. A child that
    /// already has a parent is not noticed and would be listed twice.
    virtual void vAppendNode(WebvttNode* pChild);

    /// Base classes answer NODE_ROOT, a kind that no tag name has.
    virtual Node_Type eGetNodeType() const;

    /// Null for a root and for a node that was not yet appended.
    WebvttNode* prGetParent() const { return pParent; }

    std::vector<WebvttNode*> vecChildren;  ///< in document order; freed with the tree
    WebvttNode* pParent = nullptr;         ///< not owned
};

/// A tag with text inside.
class WebvttInternalNode : public WebvttNode {
  public:
    ~WebvttInternalNode() override;
    void vSetApplicableLanguage(const WebvttString& language) { strApplicableLanguage = language; }

    WebvttString strApplicableLanguage;  ///< stays empty in trees built from a payload
};

class WebvttClassNode : public WebvttInternalNode {
  public:
    Node_Type eGetNodeType() const override { return NODE_CLASS; }
};

class WebvttItalicNode : public WebvttInternalNode {
  public:
    Node_Type eGetNodeType() const override { return NODE_ITALIC; }
};

class WebvttBoldNode : public WebvttInternalNode {
  public:
    Node_Type eGetNodeType() const override { return NODE_BOLD; }
};

class WebvttUnderlineNode : public WebvttInternalNode {
  public:
    Node_Type eGetNodeType() const override { return NODE_UNDERLINE; }
};

class WebvttRubyNode : public WebvttInternalNode {
  public:
    Node_Type eGetNodeType() const override { return NODE_RUBY; }
};

class WebvttRubyTextNode : public WebvttInternalNode {
  public:
    Node_Type eGetNodeType() const override { return NODE_RUBY_TEXT; }
};

class WebvttVoiceNode : public WebvttInternalNode {
  public:
    Node_Type eGetNodeType() const override { return NODE_VOICE; }
};

class WebvttLanguageNode : public WebvttInternalNode {
  public:
    Node_Type eGetNodeType() const override { return NODE_LANGUAGE; }
};

/// A node that is not meant to have children. Called as a WebvttNode it still accepts them; the
/// tree builder never does that, because a leaf never becomes its current node.
class WebvttLeafNode : public WebvttNode {
  public:
    ~WebvttLeafNode() override;
    using WebvttNode::vAppendNode;
    /// Does nothing: an overload of its own, not an override.
    virtual void vAppendNode(const WebvttNode* pChild) const;
};

/// One run of text, character references replaced.
class WebvttTextNode : public WebvttLeafNode {
  public:
    WebvttTextNode() = default;
    explicit WebvttTextNode(const WebvttString& text) : strText(text) {}
    explicit WebvttTextNode(WebvttString&& text) noexcept : strText(std::move(text)) {}
    Node_Type eGetNodeType() const override { return NODE_TEXT; }

    WebvttString strText;
};

/// An inline timestamp tag.
class WebvttTimeStampNode : public WebvttLeafNode {
  public:
    Node_Type eGetNodeType() const override { return NODE_TIMESTAMP; }

    double dTimeStamp = 0.0;  ///< always 0: the tag's time is checked, then dropped
};

}  // namespace webvtt
