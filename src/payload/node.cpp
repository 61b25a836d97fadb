#include "payload/node.h"

namespace webvtt {

WebvttNode::~WebvttNode() = default;
WebvttInternalNode::~WebvttInternalNode() = default;
WebvttLeafNode::~WebvttLeafNode() = default;

void WebvttNode::vAppendNode(WebvttNode* pChild) {
    if (pChild == nullptr || pChild == this) {
        return;
    }
    vecChildren.push_back(pChild);
    pChild->pParent = this;
}

Node_Type WebvttNode::eGetNodeType() const {
    return NODE_ROOT;
}

void WebvttLeafNode::vAppendNode(const WebvttNode* /*pChild*/) const {}

}  // namespace webvtt
