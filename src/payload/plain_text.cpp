// The plain text that a host receives.
#include "base/errors.h"
#include "payload/node_walk.h"
#include "payload/payload_reader.h"

namespace webvtt {
namespace {

/// Joins the runs of text. Tags need not even be paired for that.
class TextCollector final : public PayloadSink {
  public:
    explicit TextCollector(std::string& joined) : m_joined(joined) {}

    void vText(std::string_view text) override { m_joined += text; }
    void vOpenTag(Node_Type /*eType*/) override {}
    void vCloseTag(Node_Type /*eType*/) override {}
    void vTimestamp() override {}

  private:
    std::string& m_joined;
};

bool has_markup(std::string_view payload) {
    return payload.find('<') != std::string_view::npos ||
           payload.find('&') != std::string_view::npos;
}

}  // namespace

void Cue::vReadPayloadText(std::string_view payload) {
    if (payload.empty()) {
        throw InvalidArgumentException("Input pcLine is empty", nullptr);
    }
    if (!has_markup(payload)) {
        m_plain_text = payload;  // where it lies: nothing is copied but into the record
        return;
    }
    m_for_text = true;
    m_joined_text.reserve(payload.size());
    TextCollector collector(m_joined_text);
    read_payload(*this, payload, collector);
    m_plain_text = m_joined_text;
}

void Cue::vTravelNodeTreeWithAction(WebvttNode* pNode, Travel_Action_Type eAction,
                                    void* pvData) const {
    walk_tree(pNode, [eAction, pvData](const WebvttNode* node) {
        if (eAction == TRAVEL_ACTION_GET_CONTENT && node->eGetNodeType() == NODE_TEXT) {
            static_cast<WebvttString*>(pvData)->text +=
                static_cast<const WebvttTextNode*>(node)->strText.text;
        }
    });
}

WebvttString Cue::strGetCueContent() const {
    WebvttString content;
    vTravelNodeTreeWithAction(pRootNode, TRAVEL_ACTION_GET_CONTENT, &content);
    return content;
}

}  // namespace webvtt
