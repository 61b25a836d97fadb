// "Region:" header lines:
//
//     Region: id=fred width=40% lines=3 regionanchor=0%,100% viewportanchor=10%,90% scroll=up
#pragma once

#include <cstdint>

#include "base/webvtt_string.h"
#include "header/metadata_header.h"

namespace webvtt {

/// One region definition. The parser keeps it until it is destroyed; cues are not linked to it.
class RegionMetaDataHeader : public MetaDataHeader {
  public:
    ~RegionMetaDataHeader() override;

    /// Items are separated by single spaces; extra spaces are harmless, a tab is part of an item.
    /// What is not known or not valid is skipped silently, but for the value parsers' traces.
    /// @throws InvalidArgumentException pcLine is null
    /// @throws std::out_of_range        "basic_string::at": the line is empty
    void vParse(const char* pcLine) override;
    MetaData_Header_Type eType() override { return HEADER_REGION; }

    /// Applies one "name=value" item. True when the name is known, whatever the value.
    bool fgParseSettingItem(const WebvttString& item);

    std::uint32_t fgScroll = 0;   ///< 1 for "scroll=up"
    char acId[16] = {};           ///< zero-filled behind a shorter one; 16 bytes have no zero
    std::uint32_t uLines = 0;     ///< 0 when the line does not say
    double dWidth = 0.0;          ///< percent, not checked; 0 when the line does not say
    double dRegionAnchorX = 0.0;  ///< percent, not checked
    double dRegionAnchorY = 100.0;
    double dViewportAnchorX = 0.0;  ///< percent, not checked
    double dViewportAnchorY = 100.0;

    static WebvttString* const REGION_SETTING_HEADER;
    static WebvttString* const REGION_SETTING_ID;
    static WebvttString* const REGION_SETTING_WIDTH;
    static WebvttString* const REGION_SETTING_LINES;
    static WebvttString* const REGION_SETTING_REGIONANCHOR;
    static WebvttString* const REGION_SETTING_VIEWPORTANCHOR;
    static WebvttString* const REGION_SETTING_SCROLL;

  private:
    void vSetId(std::string_view value);
    void vSetWidth(std::string_view value);
    void vSetLines(std::string_view value);
    void vSetRegionAnchor(std::string_view value);
    void vSetViewportAnchor(std::string_view value);
    void vSetScroll(std::string_view value);

    struct Setting;
    static const Setting kSettings[6];
};

}  // namespace webvtt
