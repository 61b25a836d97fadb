#include "header/timestamp_header.h"

#include "base/diagnostics.h"
#include "base/text.h"
#include "base/value_parsers.h"
#include "header/header_line.h"
#include "header/immortal.h"

namespace webvtt {
namespace {

Immortal<WebvttString> timestamp_id("X-TIMESTAMP-MAP");
Immortal<WebvttString> timestamp_local_id("LOCAL:");
Immortal<WebvttString> timestamp_mpegts_id("MPEGTS:");

}  // namespace

WebvttString* const TimeStampMetaDataHeader::TIMESTAMP_ID = timestamp_id.get();
WebvttString* const TimeStampMetaDataHeader::TIMESTAMP_LOCAL_ID = timestamp_local_id.get();
WebvttString* const TimeStampMetaDataHeader::TIMESTAMP_MPEGTS_ID = timestamp_mpegts_id.get();

TimeStampMetaDataHeader::~TimeStampMetaDataHeader() {
    vUnset();
}

void TimeStampMetaDataHeader::vUnset() {
    dLocalTime = kUnsetLocalTime;
    u4MpegTs = kUnsetMpegTs;
}

bool TimeStampMetaDataHeader::fgIsValid() {
    return dLocalTime != kUnsetLocalTime && u4MpegTs != kUnsetMpegTs;
}

void TimeStampMetaDataHeader::vParse(const char* pcLine) {
    std::string_view value = header_value(pcLine, TIMESTAMP_ID->text);
    if (char_at(value, 0) == '=') {
        value.remove_prefix(1);
    }
    value = trim_spaces(value);

    const std::string_view first = split_first(value, ',').head;
    print_trace(first);
    ItemResult result = eParseItem(first);
    if (result == ItemResult::kUnknown) {
        print_error("Invalid X-TIMESTAMP-MAP Meta Header 1!");
        return;
    }
    if (result == ItemResult::kSet) {
        // Without a comma this is one past the end, and the error leaves the module: a map with
        // one item is not a map.
        const std::string_view second = text_from(value, first.size() + 1);
        result = eParseItem(second);
        if (result == ItemResult::kUnknown) {
            print_error("Invalid X-TIMESTAMP-MAP Meta Header 2!");
            return;
        }
    }
    if (result == ItemResult::kInvalid) {
        print_error("Invalid X-TIMESTAMP-MAP Meta Header Value!");
        vUnset();
    }
}

TimeStampMetaDataHeader::ItemResult TimeStampMetaDataHeader::eParseItem(std::string_view item) {
    bool valid = false;
    if (contains(item, TIMESTAMP_LOCAL_ID->text)) {
        valid = fgParseLocalTime(WebvttString(item));
    } else if (contains(item, TIMESTAMP_MPEGTS_ID->text)) {
        valid = fgParseMpegPts(WebvttString(item));
    } else {
        return ItemResult::kUnknown;
    }
    return valid ? ItemResult::kSet : ItemResult::kInvalid;
}

bool TimeStampMetaDataHeader::fgParseLocalTime(const WebvttString& item) {
    return parse_timestamp(text_from(item.text, TIMESTAMP_LOCAL_ID->text.size()), dLocalTime);
}

bool TimeStampMetaDataHeader::fgParseMpegPts(const WebvttString& item) {
    print_trace(item.text, "fgParseMpegPts");
    const std::string_view ticks = text_from(item.text, TIMESTAMP_MPEGTS_ID->text.size());
    print_trace("fgParseMpegPts", ticks);
    return parse_ulong(ticks, u4MpegTs);
}

}  // namespace webvtt
