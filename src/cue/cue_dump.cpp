// A look at a parsed cue, for debugging. The labels are computed and the tree is walked, but
// nothing is written anywhere: a debugger's breakpoint shows them, standard output must not.
#include <string_view>

#include "cue/cue.h"
#include "payload/node_walk.h"

namespace webvtt {
namespace {

/// The label of an enumeration's value; "INVALID" for a value without one.
template <typename Value, std::size_t Count>
const char* label_of(Value value, const char* const (&labels)[Count]) {
    const auto index = static_cast<std::size_t>(value);
    return index < Count ? labels[index] : "INVALID";
}

constexpr const char* kVerticalLabels[] = {"HORIZONTAL", "VERTICAL GROWING LEFT",
                                           "VERTICAL GROWING RIGHT"};
constexpr const char* kAlignLabels[] = {"START", "MIDDLE", "END", "LEFT", "RIGHT"};
constexpr const char* kLineAlignLabels[] = {"START", "MIDDLE", "END"};

}  // namespace

void Cue::vPrintCueSettings() const {
    WebvttString label;
    label = fgSnapToLines ? "TRUE" : "FALSE";
    label = label_of(eVertical, kVerticalLabels);
    label = label_of(eLineAlign, kLineAlignLabels);
    label = label_of(ePositionAlign, kLineAlignLabels);
    label = label_of(eTextAlign, kAlignLabels);
}

void Cue::vPrintCueNodeList() const {
    vPrintCueNode(pRootNode);
}

void Cue::vPrintCueNode(WebvttNode* node) const {
    walk_tree(node, [](const WebvttNode* visited) { visited->eGetNodeType(); });
}

}  // namespace webvtt
