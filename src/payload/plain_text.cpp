// The plain text that a host receives.
#include <cstring>

#include "payload/node_walk.h"
#include "payload/payload_reader.h"

namespace webvtt {
namespace {

/// Joins the runs of text where the payload lies. What is written never reaches what is still to be
/// read: no token's text is longer than the token. Tags need not even be paired for that.
class TextCollector final : public PayloadSink {
  public:
    explicit TextCollector(char* begin) : m_end(begin) {}

    void vText(std::string_view piece) override {
        std::memmove(m_end, piece.data(), piece.size());
        m_end += piece.size();
    }
    void vEndText() override {}
    void vOpenTag(Node_Type /*eType*/) override {}
    void vCloseTag(Node_Type /*eType*/) override {}
    void vTimestamp() override {}

    const char* end() const { return m_end; }

  private:
    char* m_end;
};

}  // namespace

Outcome Cue::eReadPayloadText(std::string_view payload, char* pcText) {
    TextCollector collector(pcText);
    const Outcome outcome = read_payload(*this, payload, payload.size(), collector);
    m_plain_text = {pcText, static_cast<std::size_t>(collector.end() - pcText)};
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
