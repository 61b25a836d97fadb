// The header lines between the signature line and the first cue.
#pragma once

#include <cstdint>

namespace webvtt {

enum MetaData_Header_Type : std::int32_t {
    HEADER_NONE = -1,
    HEADER_REGION = 0,
    HEADER_TIMESTAMP = 1
};

/// The base of header objects: one object per header line, parsed once, owned by the parser until
/// it is destroyed.
class MetaDataHeader {
  public:
    MetaDataHeader() = default;
    MetaDataHeader(const MetaDataHeader&) = delete;
    MetaDataHeader& operator=(const MetaDataHeader&) = delete;
    virtual ~MetaDataHeader();

    /// Parses a whole header line into the object's fields.
    /// @param pcLine zero-terminated, its line feed included; read during the call only.
    virtual void vParse(const char* pcLine);

    virtual MetaData_Header_Type eType();
};

}  // namespace webvtt
