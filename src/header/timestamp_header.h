// "X-TIMESTAMP-MAP" header lines:
//
//     X-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000      (the two items in either order)
#pragma once

#include <string_view>

#include "base/webvtt_string.h"
#include "header/metadata_header.h"

namespace webvtt {

/// Ties the track's times to the clock of the video: an MPEG time stamp and the local time that
/// corresponds to it.
///
/// Items must begin with their names: a name is looked for anywhere in an item, but the value is
/// taken from a fixed place, so a space after the comma makes the second item invalid.
class TimeStampMetaDataHeader : public MetaDataHeader {
  public:
    ~TimeStampMetaDataHeader() override;

    /// Parses the line, traces its items on std::cout, and reports what is wrong with it. When an
    /// item's value is invalid both fields are unset again.
    /// @throws InvalidArgumentException pcLine is null
    /// @throws std::out_of_range "basic_string::at": nothing behind the keyword;
    ///                           "basic_string::substr": no second item (the first one stays set)
    void vParse(const char* pcLine) override;
    MetaData_Header_Type eType() override { return HEADER_TIMESTAMP; }

    /// Sets dLocalTime from an item that begins with "LOCAL:"; false when its time is invalid.
    /// @throws std::out_of_range "basic_string::substr": the item is shorter than its name
    bool fgParseLocalTime(const WebvttString& item);

    /// Sets u4MpegTs from an item that begins with "MPEGTS:", likewise.
    bool fgParseMpegPts(const WebvttString& item);

    /// Whether both fields are set. A map that is not valid does not shift any cue.
    bool fgIsValid();

    double dLocalTime = kUnsetLocalTime;    ///< seconds
    unsigned long u4MpegTs = kUnsetMpegTs;  ///< ticks of 90 kHz, 32 bits

    static WebvttString* const TIMESTAMP_ID;
    static WebvttString* const TIMESTAMP_LOCAL_ID;
    static WebvttString* const TIMESTAMP_MPEGTS_ID;

  private:
    enum class ItemResult { kSet, kUnknown, kInvalid };

    ItemResult eParseItem(std::string_view item);
    void vUnset();

    static constexpr double kUnsetLocalTime = -1.0;
    static constexpr unsigned long kUnsetMpegTs = 4294967295UL;
};

}  // namespace webvtt
