// The settings list of a timing line: "name:value" items separated by spaces.
//
// The keywords are this module's own ("middle" is the centre; "center", "line-left" and
// "line-right" are not known). A setting never makes a cue fail: what is not known or not valid is
// dropped. Only a "line" without a number raises an error, see vSetLine.
#include <algorithm>
#include <cstring>

#include "base/byte_finder.h"
#include "base/diagnostics.h"
#include "base/text.h"
#include "base/value_parsers.h"
#include "cue/cue.h"
#include "cue/cue_constants.h"

namespace webvtt {
namespace {

constexpr std::size_t kShortestItem = 3;

template <typename Value>
struct Keyword {
    std::string_view name;
    Value value;
};

constexpr Keyword<Text_Align_Type> kTextAlignments[] = {
    {"start", Text_Align_Type::START}, {"middle", Text_Align_Type::MIDDLE},
    {"end", Text_Align_Type::END},     {"left", Text_Align_Type::LEFT},
    {"right", Text_Align_Type::RIGHT},
};

constexpr Keyword<Line_Align_Type> kLineAlignments[] = {
    {"start", Line_Align_Type::START},
    {"middle", Line_Align_Type::MIDDLE},
    {"end", Line_Align_Type::END},
};

/// The first keyword's value, START, stands for every text that is not a keyword.
template <typename Value, std::size_t Count>
Value look_up(const Keyword<Value> (&keywords)[Count], std::string_view text) {
    for (const Keyword<Value>& keyword : keywords) {
        if (same_word(keyword.name, text)) {
            return keyword.value;
        }
    }
    return keywords[0].value;
}

bool is_percentage_of_box(double value) {
    return !(value < 0.0 || value > 100.0);
}

}  // namespace

struct Cue::Setting {
    const WebvttString& name;
    void (Cue::*vSet)(std::string_view value);
};

// Those that tracks use most come first.
const Cue::Setting Cue::kSettings[6] = {
    {CUE_SETTING_ALIGN, &Cue::vSetAlign},       {CUE_SETTING_POSITION, &Cue::vSetPosition},
    {CUE_SETTING_LINE, &Cue::vSetLine},         {CUE_SETTING_SIZE, &Cue::vSetSize},
    {CUE_SETTING_VERTICAL, &Cue::vSetVertical}, {CUE_SETTING_REGION, &Cue::vSetRegion},
};

Text_Align_Type Cue::eMapTextAlign(const WebvttString& keyword) const {
    return look_up(kTextAlignments, keyword.text);
}

Line_Align_Type Cue::eMapTextPositionAlign(const WebvttString& keyword) const {
    return look_up(kLineAlignments, keyword.text);
}

Line_Align_Type Cue::eMapLineAlign(const WebvttString& keyword) const {
    return look_up(kLineAlignments, keyword.text);
}

/// @param settings is left with the last item, or with all from the item on that threw
void Cue::vParseSettings(std::string_view& settings) {
    fgPositionSet = false;
    fgPositionAlignSet = false;
    while (!settings.empty()) {
        const char* const item = settings.data();
        const char* const end = item + settings.size();
        const char* const item_end = find_byte(item, end, ' ');
        vParseSetting({item, static_cast<std::size_t>(item_end - item)});
        if (item_end == end) {
            break;
        }
        settings.remove_prefix(static_cast<std::size_t>(item_end + 1 - item));
    }
    vDeriveSettings();
}

void Cue::vParseCueSettingItem(const WebvttString& item) {
    vParseSetting(item.text);
}

void Cue::vParseSetting(std::string_view item) {
    if (item.size() < kShortestItem) {  // one of the spaces between items, too
        return;
    }
    for (const Setting& known : kSettings) {
        const std::string_view name = known.name.text;
        if (item.size() > name.size() + 1 && item[name.size()] == ':' &&
            same_word(item.substr(0, name.size()), name)) {
            const std::string_view value = item.substr(name.size() + 1);
            (this->*known.vSet)(value);
            return;
        }
    }
    const Split parts = split_first(item, ':');
    if (!parts.found || parts.head.empty()) {
        print_error("Item is Empty");
    } else if (parts.tail.empty()) {
        print_error("Item %.*s value is empty!", WEBVTT_PRINTABLE(parts.head));
    }
}

void Cue::vSetRegion(std::string_view value) {
    // Only the value's own bytes are written: a shorter identifier after a longer one keeps the
    // longer one's tail.
    const std::size_t longest = sizeof(acRegionId) - 1;
    std::memcpy(acRegionId, value.data(), std::min(value.size(), longest));
    acRegionId[longest] = '\0';
}

void Cue::vSetVertical(std::string_view value) {
    if (value == "lr") {
        eVertical = Vertical_Type::VERTICAL_GROWING_LEFT;
    } else if (value == "rl") {
        eVertical = Vertical_Type::VERTICAL_GROWING_RIGHT;
    }
}

void Cue::vSetLine(std::string_view value) {
    // Reset before anything is checked: a "line" that is dropped still undoes an earlier
    // percentage's flag.
    fgSnapToLines = true;
    const Split parts = split_first(value, ',');
    std::string_view number = parts.head;
    const bool negative = char_at(number, 0) == '-';
    if (negative) {
        number.remove_prefix(1);
    }
    const bool percentage = char_at(number, number.size() - 1) == '%';

    double line = 0.0;
    if (!(percentage ? parse_percentage(number, line) : parse_double(number, line))) {
        return;
    }
    if (negative) {
        line = -line;
    }
    if (percentage) {
        if (!is_percentage_of_box(line)) {
            // The format's own line feed makes an empty line behind this one.
            print_error("dPos %f out of range [0.0, 100.0]\n", line);
            return;
        }
        fgSnapToLines = false;
    }
    dLine = line;
    eLineAlign = look_up(kLineAlignments, parts.tail);
}

void Cue::vSetSize(std::string_view value) {
    double size = 0.0;
    if (!parse_percentage(value, size)) {
        print_error("Invalid SIZE value string %.*s", WEBVTT_PRINTABLE(value));
        return;
    }
    dSize = size;  // any percentage, 150% too
}

void Cue::vSetPosition(std::string_view value) {
    const Split parts = split_first(value, ',');
    double position = 0.0;
    if (!parse_percentage(parts.head, position) || !is_percentage_of_box(position)) {
        return;
    }
    dPosition = position;
    fgPositionSet = true;
    ePositionAlign = look_up(kLineAlignments, parts.tail);
    // START also stands for "not given" and "not known"; only the word itself counts as given.
    if (ePositionAlign != Line_Align_Type::START || parts.tail == "start") {
        fgPositionAlignSet = true;
    }
}

void Cue::vSetAlign(std::string_view value) {
    eTextAlign = look_up(kTextAlignments, value);
}

void Cue::vDeriveSettings() {
    const bool at_start =
        eTextAlign == Text_Align_Type::START || eTextAlign == Text_Align_Type::LEFT;
    const bool at_end = eTextAlign == Text_Align_Type::END || eTextAlign == Text_Align_Type::RIGHT;
    if (!fgPositionSet && (at_start || at_end)) {
        dPosition = at_start ? 0.0 : 100.0;
    }
    if (!fgPositionAlignSet && (at_start || at_end)) {
        ePositionAlign = at_start ? Line_Align_Type::START : Line_Align_Type::END;
    }
    // fgSnapToLines starts true, so a region survives only beside a valid percentage line.
    if (fgSnapToLines || dSize != 100.0 || eVertical != Vertical_Type::HORIZONTAL) {
        std::memset(acRegionId, 0, sizeof(acRegionId));
    }
}

}  // namespace webvtt
