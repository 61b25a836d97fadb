// A depth-first walk over a payload tree.
#pragma once

#include <vector>

#include "payload/node.h"

namespace webvtt {

/// Calls visit(node) for the node and everything below it, parents before children, children in
/// document order; null nodes are skipped.
///
/// A loop with a list of its own: a payload decides how deep its tags nest, and a board's stack
/// must not depend on that. Nothing is allocated for a tree whose tags do not nest.
template <typename Visit>
void walk_tree(WebvttNode* root, Visit visit) {
    if (root == nullptr) {
        return;
    }
    struct Level {
        WebvttNode* node;
        std::size_t next;  // index of the child to visit next
    };
    Level level{root, 0};
    std::vector<Level> above;
    visit(root);
    for (;;) {
        if (level.next >= level.node->vecChildren.size()) {
            if (above.empty()) {
                return;
            }
            level = above.back();
            above.pop_back();
            continue;
        }
        WebvttNode* const child = level.node->vecChildren[level.next++];
        if (child == nullptr) {
            continue;
        }
        visit(child);
        if (!child->vecChildren.empty()) {
            above.push_back(level);
            level = {child, 0};
        }
    }
}

}  // namespace webvtt
