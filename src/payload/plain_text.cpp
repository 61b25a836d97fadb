// The plain text that a host receives.
#include "payload/node_walk.h"
#include "payload/payload_reader.h"

namespace webvtt {
namespace {

/// Joins the runs of text. Tags need not even be paired for that.
class TextCollector final : public PayloadSink {
  public:
    explicit TextCollector(std::string& joined) : m_joined(joined) {}

    void vText(std::string_view piece) override { m_joined += piece; }
    void vEndText() override {}
    void vOpenTag(Node_Type /*eType*/) override {}
    void vCloseTag(Node_Type /*eType*/) override {}
    void vTimestamp() override {}

  private:
    std::string& m_joined;
};

}  // namespace

Outcome Cue::eReadPayloadText(std::string_view payload, std::string& joined) {
    joined.clear();
    joined.reserve(payload.size());
    TextCollector collector(joined);
    const Outcome outcome = read_payload(*this, payload, payload.size(), collector);
    m_plain_text = joined;
    return outcome;
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
