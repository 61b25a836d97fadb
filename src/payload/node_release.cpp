#include <algorithm>

#include "cue/cue.h"
#include "payload/node.h"

namespace webvtt {
namespace {

/// Turns the list round, so that taking the last child each time frees the first one first
/// without moving the others down.
void prepare_release(WebvttNode* node) {
    std::reverse(node->vecChildren.begin(), node->vecChildren.end());
}

}  // namespace

// Climbs by the parent links instead of recursing: a payload decides how deep its tags nest.
void Cue::vReleaseNode(WebvttNode* pNode) {
    if (pNode == nullptr) {
        return;
    }
    pNode->pParent = nullptr;  // it is the last one, whatever lies above it
    prepare_release(pNode);
    while (pNode != nullptr) {
        if (pNode->vecChildren.empty()) {
            WebvttNode* const parent = pNode->pParent;
            pNode->pParent = nullptr;
            delete pNode;
            pNode = parent;
            continue;
        }
        WebvttNode* const child = pNode->vecChildren.back();
        pNode->vecChildren.pop_back();
        if (child != nullptr) {
            child->pParent = pNode;
            prepare_release(child);
            pNode = child;
        }
    }
}

}  // namespace webvtt
