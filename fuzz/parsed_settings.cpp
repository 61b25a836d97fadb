#include "fuzz/parsed_settings.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "base/errors.h"
#include "cue/cue.h"
#include "fuzz/check.h"
#include "fuzz/expected_values.h"
#include "header/region_header.h"
#include "header/timestamp_header.h"
#include "support/exact_block.h"

namespace fuzz {
namespace {

using webvtt::Cue;
using webvtt::WebvttString;

/// Digits without end make a NaN, which is out of no range.
bool is_percentage_of_box(double value) {
    return value != value || (value >= 0.0 && value <= 100.0);
}

void check_fields(const Cue& cue) {
    FUZZ_CHECK(cue.eVertical >= webvtt::Vertical_Type::HORIZONTAL &&
               cue.eVertical <= webvtt::Vertical_Type::VERTICAL_GROWING_RIGHT);
    FUZZ_CHECK(cue.eTextAlign >= webvtt::Text_Align_Type::START &&
               cue.eTextAlign <= webvtt::Text_Align_Type::RIGHT);
    FUZZ_CHECK(cue.eLineAlign >= webvtt::Line_Align_Type::START &&
               cue.eLineAlign <= webvtt::Line_Align_Type::END);
    FUZZ_CHECK(cue.ePositionAlign >= webvtt::Line_Align_Type::START &&
               cue.ePositionAlign <= webvtt::Line_Align_Type::END);
    FUZZ_CHECK(is_percentage_of_box(cue.dPosition));
    FUZZ_CHECK(cue.fgSnapToLines || is_percentage_of_box(cue.dLine));
    FUZZ_CHECK(cue.acRegionId[sizeof(cue.acRegionId) - 1] == '\0');
    cue.vPrintCueSettings();
}

/// A region is only kept beside a percentage line, at full size, for horizontal text.
void check_derived_fields(const Cue& cue) {
    const bool may_have_region = !cue.fgSnapToLines && cue.dSize == 100.0 &&
                                 cue.eVertical == webvtt::Vertical_Type::HORIZONTAL;
    const bool has_region = std::any_of(std::begin(cue.acRegionId), std::end(cue.acRegionId),
                                        [](char c) { return c != '\0'; });
    FUZZ_CHECK(may_have_region || !has_region);
}

void check_out_of_range(const std::out_of_range& error) {
    const std::string_view text = error.what();
    FUZZ_CHECK(text == "basic_string::at" || text == "basic_string::substr");
}

void parse_timing_line(std::string_view text) {
    Cue cue;
    WebvttString line(text);
    try {
        const bool is_valid = cue.fgParseCueTimeAndSettings(line);
        check_fields(cue);
        if (is_valid) {
            check_derived_fields(cue);
            FUZZ_CHECK(cue.dStartTime >= 0.0 && cue.dEndTime >= 0.0);
            FUZZ_CHECK(!line.does_contain(" "));  // the last setting
        }
    } catch (const webvtt::InvalidArgumentException&) {
        FUZZ_CHECK(text.find("-->") != std::string_view::npos);
    } catch (const std::out_of_range& error) {
        check_out_of_range(error);
        FUZZ_CHECK(text.find("line:") != std::string_view::npos);
    }
    // What is left is the rest of the line, and all of it when there is no arrow.
    FUZZ_CHECK(text.find(line.text) != std::string_view::npos);
    FUZZ_CHECK((line.text == text) == (text.find("-->") == std::string_view::npos));
}

/// Feeds a header a line in a block of exactly its size. False when the line threw.
template <typename Header>
bool parse_header(Header& header, std::string_view line) {
    support::ExactText text(line);
    try {
        header.vParse(text.c_str());
        return true;
    } catch (const std::out_of_range& error) {
        check_out_of_range(error);
        return false;
    }
}

void check_map_line(std::string_view line) {
    webvtt::TimeStampMetaDataHeader header;
    parse_header(header, line);
    FUZZ_CHECK(header.eType() == webvtt::HEADER_TIMESTAMP);
    FUZZ_CHECK(header.dLocalTime >= 0.0 || header.dLocalTime == -1.0);
    FUZZ_CHECK(!header.fgIsValid() || header.dLocalTime >= 0.0);
}

}  // namespace

void check_timing_line(std::string_view text) {
    parse_timing_line(text);
    parse_timing_line(std::string("00:01.000 --> 00:02.000 ").append(text));
}

void check_setting(std::string_view text) {
    Cue cue;
    try {
        cue.vParseCueSettingItem(WebvttString(text));
    } catch (const std::out_of_range& error) {
        check_out_of_range(error);
        FUZZ_CHECK(text.substr(0, 5) == "line:");
    }
    check_fields(cue);
}

void check_region(std::string_view text) {
    const std::string line = std::string("Region:").append(text).append("\n");
    webvtt::RegionMetaDataHeader header;
    FUZZ_CHECK(parse_header(header, line));  // a region never throws
    FUZZ_CHECK(header.eType() == webvtt::HEADER_REGION);
    FUZZ_CHECK(header.fgScroll <= 1);

    webvtt::RegionMetaDataHeader bare;
    FUZZ_CHECK(parse_header(bare, text) || text.empty() || text.front() == '\0');

    webvtt::RegionMetaDataHeader item;
    const bool is_known = item.fgParseSettingItem(WebvttString(text));
    FUZZ_CHECK(!is_known || text.find('=') != std::string_view::npos);
}

void check_map(std::string_view text) {
    check_map_line(text);
    check_map_line(std::string("X-TIMESTAMP-MAP").append(text).append("\n"));

    webvtt::TimeStampMetaDataHeader header;
    const bool has_local = header.fgParseLocalTime(WebvttString("LOCAL:" + std::string(text)));
    FUZZ_CHECK(has_local == is_time(text));
    const bool has_ticks = header.fgParseMpegPts(WebvttString("MPEGTS:" + std::string(text)));
    FUZZ_CHECK(has_ticks == is_integer(text));
    FUZZ_CHECK(!has_ticks || header.u4MpegTs == expected_integer(text));
}

}  // namespace fuzz
