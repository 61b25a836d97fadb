// Builds the tree of a payload.
#include <cstring>
#include <memory>
#include <new>

#include "base/errors.h"
#include "payload/payload_reader.h"

namespace webvtt {
namespace {

/// Null when memory ran out.
WebvttNode* make_tag_node(Node_Type eType) {
    switch (eType) {
        case NODE_CLASS:
            return new (std::nothrow) WebvttClassNode;
        case NODE_ITALIC:
            return new (std::nothrow) WebvttItalicNode;
        case NODE_BOLD:
            return new (std::nothrow) WebvttBoldNode;
        case NODE_UNDERLINE:
            return new (std::nothrow) WebvttUnderlineNode;
        case NODE_RUBY:
            return new (std::nothrow) WebvttRubyNode;
        case NODE_RUBY_TEXT:
            return new (std::nothrow) WebvttRubyTextNode;
        case NODE_VOICE:
            return new (std::nothrow) WebvttVoiceNode;
        default:
            return new (std::nothrow) WebvttLanguageNode;
    }
}

/// Hangs each node under the innermost open tag.
class TreeBuilder final : public PayloadSink {
  public:
    TreeBuilder(Cue& cue, WebvttNode* root) : m_cue(cue), m_current(root) {}

    void vText(std::string_view piece) override { m_text += piece; }

    void vEndText() override {
        prAppend(new (std::nothrow) WebvttTextNode(WebvttString(m_text)));
        m_text.clear();
    }

    void vOpenTag(Node_Type eType) override {
        if (eType == NODE_LANGUAGE) {
            m_cue.vPushApplicableLanguage("lang");  // the tag's name, never the language itself
        }
        m_current = prAppend(make_tag_node(eType));
    }

    void vCloseTag(Node_Type eType) override {
        if (m_current->eGetNodeType() != eType) {
            return;
        }
        m_current = m_current->prGetParent();
        if (eType == NODE_LANGUAGE) {
            m_cue.vPopApplicableLanguage();
        }
    }

    void vTimestamp() override { prAppend(new (std::nothrow) WebvttTimeStampNode); }

  private:
    /// Appends a node that was just made; null means that memory ran out.
    WebvttNode* prAppend(WebvttNode* made) {
        std::unique_ptr<WebvttNode> node(made);
        if (node == nullptr) {
            throw_failure(Outcome::kNoNode);
        }
        m_current->vAppendNode(node.get());
        return node.release();
    }

    Cue& m_cue;
    WebvttNode* m_current;
    std::string m_text;  // of the run that is being read
};

}  // namespace

bool Cue::fgParseCuePayload(const char* pcPayload, unsigned int uLength) {
    if (uLength == 0 || pcPayload == nullptr) {
        throw_failure(Outcome::kEmptyInput);
    }
    if (pRootNode == nullptr) {
        pRootNode = new (std::nothrow) WebvttNode;
        if (pRootNode == nullptr) {
            throw BadAllocException("create new WebvttNode Instance Failed", nullptr);
        }
    }
    TreeBuilder builder(*this, pRootNode);
    // A zero byte ends the payload, but not the token that it is part of.
    return throw_unless_read(
        read_payload(*this, {pcPayload, uLength}, strnlen(pcPayload, uLength), builder));
}

void Cue::vAddApplicableClass(WebvttString strClass) {
    if (fgKeepsClasses()) {
        vecApplicableClasses.push_back(std::move(strClass));
    }
}

void Cue::vPushApplicableLanguage(WebvttString strLanguage) {
    dqApplicableLanguages.push_back(std::move(strLanguage));
}

void Cue::vPopApplicableLanguage() {
    dqApplicableLanguages.pop_back();
}

}  // namespace webvtt
