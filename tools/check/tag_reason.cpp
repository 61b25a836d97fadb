#include "tools/check/tag_reason.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "tools/console/text.h"

namespace quill::check {
namespace {

// Where the tag begins.
BlockPlace TagPlace(const BlockText& block, std::string_view name) {
    const std::string tag = "<" + std::string(name.substr(0, name.find('\n')));
    for (std::size_t index = block.TimingIndex() + 1; index < block.size(); ++index) {
        const std::size_t at = block.text(index).find(tag);
        if (at == std::string_view::npos) {
            continue;
        }
        const std::string_view behind = block.text(index).substr(at + tag.size());
        if (behind.empty() ||
            std::string_view(">. \t\f").find(behind[0]) != std::string_view::npos) {
            return {index, at};
        }
    }
    return {std::min(block.TimingIndex() + 1, block.size() - 1), std::string_view::npos};
}

bool IsTag(const std::string& name, LoneParser& asked) {
    return asked.Ask("00:00.000 --> 00:01.000\n<" + name + ">x\n\n").fate == Fate::kDelivered;
}

}  // namespace

std::string TagOfTrack(std::string name) {
    static constexpr struct {
        const char* of_page;
        const char* of_track;
    } kTags[] = {{"em", "i"}, {"strong", "b"}, {"ins", "u"}};
    name = console::InSmallLetters(name);
    for (const auto& tag : kTags) {
        if (name == tag.of_page) {
            return tag.of_track;
        }
    }
    return name;
}

Finding UnknownTag(const BlockText& block, std::string_view name, LoneParser& asked) {
    const BlockPlace place = TagPlace(block, name);
    const std::uint32_t line = block.number(place.line);
    const std::string_view text = block.text(place.line);
    if (name.empty()) {
        return Finding(line, "unnamed-tag", "a \"<\" that begins no tag").At(text, place.byte);
    }
    const std::string tag(name);
    const std::string known = TagOfTrack(tag);
    std::string fix;
    if (known == "br" || known == "br/") {
        fix = "write a line end for it";
    } else if (known != tag && IsTag(known, asked)) {
        fix = "write \"<" + known + ">\", and \"</" + known + ">\" where it ends";
    }
    return Finding(line, "unknown-tag", "unknown start tag " + Quoted("<" + tag + ">"), fix)
        .At(text, place.byte);
}

}  // namespace quill::check
