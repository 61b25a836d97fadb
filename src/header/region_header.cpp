#include "header/region_header.h"

#include <algorithm>
#include <cstring>

#include "base/saturate.h"
#include "base/text.h"
#include "base/value_parsers.h"
#include "header/header_line.h"
#include "header/immortal.h"

namespace webvtt {
namespace {

constexpr std::size_t kShortestRegionItem = 3;

Immortal<WebvttString> setting_header("Region:");
Immortal<WebvttString> setting_id("id");
Immortal<WebvttString> setting_width("width");
Immortal<WebvttString> setting_lines("lines");
Immortal<WebvttString> setting_regionanchor("regionanchor");
Immortal<WebvttString> setting_viewportanchor("viewportanchor");
Immortal<WebvttString> setting_scroll("scroll");

}  // namespace

WebvttString* const RegionMetaDataHeader::REGION_SETTING_HEADER = setting_header.get();
WebvttString* const RegionMetaDataHeader::REGION_SETTING_ID = setting_id.get();
WebvttString* const RegionMetaDataHeader::REGION_SETTING_WIDTH = setting_width.get();
WebvttString* const RegionMetaDataHeader::REGION_SETTING_LINES = setting_lines.get();
WebvttString* const RegionMetaDataHeader::REGION_SETTING_REGIONANCHOR = setting_regionanchor.get();
WebvttString* const RegionMetaDataHeader::REGION_SETTING_VIEWPORTANCHOR =
    setting_viewportanchor.get();
WebvttString* const RegionMetaDataHeader::REGION_SETTING_SCROLL = setting_scroll.get();

struct RegionMetaDataHeader::Setting {
    WebvttString* const& name;
    void (RegionMetaDataHeader::*vSet)(std::string_view value);
};

const RegionMetaDataHeader::Setting RegionMetaDataHeader::kSettings[6] = {
    {REGION_SETTING_ID, &RegionMetaDataHeader::vSetId},
    {REGION_SETTING_WIDTH, &RegionMetaDataHeader::vSetWidth},
    {REGION_SETTING_LINES, &RegionMetaDataHeader::vSetLines},
    {REGION_SETTING_REGIONANCHOR, &RegionMetaDataHeader::vSetRegionAnchor},
    {REGION_SETTING_VIEWPORTANCHOR, &RegionMetaDataHeader::vSetViewportAnchor},
    {REGION_SETTING_SCROLL, &RegionMetaDataHeader::vSetScroll},
};

RegionMetaDataHeader::~RegionMetaDataHeader() = default;

void RegionMetaDataHeader::vParse(const char* pcLine) {
    Split items{{}, header_value(pcLine, REGION_SETTING_HEADER->text), true};
    while (items.found) {
        items = split_first(items.tail, ' ');
        fgParseSettingItem(WebvttString(items.head));
    }
}

bool RegionMetaDataHeader::fgParseSettingItem(const WebvttString& item) {
    if (item.text.size() < kShortestRegionItem) {
        return false;
    }
    const Split setting = split_first(item.text, '=');
    if (!setting.found) {
        return false;
    }
    for (const Setting& known : kSettings) {
        if (setting.head == known.name->text) {
            (this->*known.vSet)(setting.tail);
            return true;
        }
    }
    return false;
}

void RegionMetaDataHeader::vSetId(std::string_view value) {
    // Only the value's own bytes are written: a shorter id after a longer one keeps its tail.
    std::memcpy(acId, value.data(), std::min(value.size(), sizeof(acId)));
}

void RegionMetaDataHeader::vSetWidth(std::string_view value) {
    parse_percentage(value, dWidth);
}

void RegionMetaDataHeader::vSetLines(std::string_view value) {
    double lines = 0.0;
    parse_double(value, lines);
    uLines = saturating_cast<std::uint32_t>(lines);
}

void RegionMetaDataHeader::vSetRegionAnchor(std::string_view value) {
    parse_anchorpoint(value, dRegionAnchorX, dRegionAnchorY);
}

void RegionMetaDataHeader::vSetViewportAnchor(std::string_view value) {
    parse_anchorpoint(value, dViewportAnchorX, dViewportAnchorY);
}

void RegionMetaDataHeader::vSetScroll(std::string_view value) {
    fgScroll = value == "up";
}

}  // namespace webvtt
