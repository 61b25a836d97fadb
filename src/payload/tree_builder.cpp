// Builds the tree of a payload from its tokens and reports bad tags.
#include <cstring>
#include <memory>
#include <new>

#include "base/diagnostics.h"
#include "base/errors.h"
#include "base/value_parsers.h"
#include "payload/tokenizer.h"

namespace webvtt {
namespace {

using NodeFactory = WebvttNode* (*)();

template <typename Node>
WebvttNode* make_node() {
    return new (std::nothrow) Node;
}

struct Tag {
    std::string_view name;
    Node_Type eType;
    NodeFactory make;
};

constexpr Tag kTags[] = {
    {"c", NODE_CLASS, make_node<WebvttClassNode>},
    {"i", NODE_ITALIC, make_node<WebvttItalicNode>},
    {"b", NODE_BOLD, make_node<WebvttBoldNode>},
    {"u", NODE_UNDERLINE, make_node<WebvttUnderlineNode>},
    {"ruby", NODE_RUBY, make_node<WebvttRubyNode>},
    {"rt", NODE_RUBY_TEXT, make_node<WebvttRubyTextNode>},
    {"v", NODE_VOICE, make_node<WebvttVoiceNode>},
    {"lang", NODE_LANGUAGE, make_node<WebvttLanguageNode>},
};

const Tag* find_tag(std::string_view name) {
    for (const Tag& tag : kTags) {
        if (tag.name == name) {
            return &tag;
        }
    }
    return nullptr;
}

/// Appends a node that was just made; null means that memory ran out.
WebvttNode* append_new(WebvttNode* parent, WebvttNode* made) {
    std::unique_ptr<WebvttNode> node(made);
    if (node == nullptr) {
        throw BadAllocException("create new Node Failed\n", nullptr);
    }
    parent->vAppendNode(node.get());
    return node.release();
}

/// Puts the nodes of one payload in place, token by token.
class TreeBuilder {
  public:
    TreeBuilder(Cue& cue, WebvttNode* root) : m_cue(cue), m_current(root) {}

    void vAdd(Cue::Token_Type eType, Cue::Tokenizer_Data& token) {
        switch (eType) {
            case Cue::TOKEN_STRING:
                append_new(m_current,
                           new (std::nothrow) WebvttTextNode(std::move(token.strResult)));
                break;
            case Cue::TOKEN_START_TAG:
                vOpen(token.strResult.text);
                break;
            case Cue::TOKEN_END_TAG:
                vClose(token.strResult.text);
                break;
            case Cue::TOKEN_TIMESTAMP:
                vAddTimestamp(token.strResult.text);
                break;
            case Cue::TOKEN_NONE:  // a list of classes that a line feed ended
                break;
        }
    }

  private:
    void vOpen(const std::string& name) {
        const Tag* const tag = find_tag(name);
        if (tag == nullptr) {
            // "Ignored" is what it prints, but the rest of the payload is given up: hosts count
            // on the result code 2 that this ends in.
            print_error("unexcepted start tag <%s> detected. Ignored", name.c_str());
            throw BadAllocException("create new Node Failed\n", nullptr);
        }
        if (tag->eType == NODE_LANGUAGE) {
            m_cue.vPushApplicableLanguage(WebvttString(tag->name));  // the tag's name, always
        }
        m_current = append_new(m_current, tag->make());
    }

    /// Closes the innermost tag if it has this name; otherwise nothing is closed.
    void vClose(const std::string& name) {
        const Tag* const tag = find_tag(name);
        if (tag == nullptr) {
            print_error("unexcepted end tag <%s> detected. Ignored", name.c_str());
            return;
        }
        if (m_current->eGetNodeType() != tag->eType) {
            return;
        }
        m_current = m_current->prGetParent();
        if (tag->eType == NODE_LANGUAGE) {
            m_cue.vPopApplicableLanguage();
        }
    }

    void vAddTimestamp(const std::string& text) {
        double checked = 0.0;
        if (!parse_timestamp(text, checked)) {
            print_error("Invalid time stamp tag <%s> detected. Ignored", text.c_str());
            return;
        }
        append_new(m_current, make_node<WebvttTimeStampNode>());
    }

    Cue& m_cue;
    WebvttNode* m_current;
};

}  // namespace

bool Cue::fgParseCuePayload(const char* pcPayload, unsigned int uLength) {
    if (uLength == 0 || pcPayload == nullptr) {
        throw InvalidArgumentException("Input pcLine is empty", nullptr);
    }
    if (pRootNode == nullptr) {
        pRootNode = new (std::nothrow) WebvttNode;
        if (pRootNode == nullptr) {
            throw BadAllocException("create new WebvttNode Instance Failed", nullptr);
        }
    }
    TreeBuilder builder(*this, pRootNode);
    // A zero byte ends the payload even if the length says otherwise.
    const char* const end = pcPayload + strnlen(pcPayload, uLength);
    while (pcPayload < end) {
        Tokenizer_Data token(pcPayload, static_cast<int>(end - pcPayload));
        builder.vAdd(eTokenizer(token), token);
        pcPayload += token.iPosition;
    }
    return true;
}

void Cue::vAddApplicableClass(WebvttString strClass) {
    vecApplicableClasses.push_back(std::move(strClass));
}

void Cue::vPushApplicableLanguage(WebvttString strLanguage) {
    dqApplicableLanguages.push_back(std::move(strLanguage));
}

void Cue::vPopApplicableLanguage() {
    dqApplicableLanguages.pop_back();
}

}  // namespace webvtt
