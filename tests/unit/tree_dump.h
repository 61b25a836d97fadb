// A payload tree as one line of text.
#pragma once

#include <string>

#include "payload/node.h"

namespace webvtt {

/// "root('a' b('c') time=0 'd')". Parents that do not match the lists show as "!".
inline std::string dump_tree(const WebvttNode* node) {
    static constexpr const char* kNames[] = {"root", "c", "i", "b", "u", "ruby", "rt", "v", "lang"};
    if (node == nullptr) {
        return "null";
    }
    const Node_Type eType = node->eGetNodeType();
    if (eType == NODE_TEXT) {
        return "'" + static_cast<const WebvttTextNode*>(node)->strText.text + "'";
    }
    if (eType == NODE_TIMESTAMP) {
        const double time = static_cast<const WebvttTimeStampNode*>(node)->dTimeStamp;
        return "time=" + std::to_string(static_cast<int>(time));
    }
    std::string dump = std::string(kNames[eType]) + "(";
    for (const WebvttNode* child : node->vecChildren) {
        dump += dump.back() == '(' ? "" : " ";
        dump += child != nullptr && child->prGetParent() != node ? "!" : "";
        dump += dump_tree(child);
    }
    return dump + ")";
}

}  // namespace webvtt
