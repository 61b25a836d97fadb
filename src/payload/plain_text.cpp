// The plain text that a host receives, drawn from the tree of a payload.
#include "cue/cue.h"
#include "payload/node_walk.h"

namespace webvtt {

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
