#include "header/metadata_header.h"

namespace webvtt {

MetaDataHeader::~MetaDataHeader() = default;

void MetaDataHeader::vParse(const char* /*pcLine*/) {}

MetaData_Header_Type MetaDataHeader::eType() {
    return HEADER_NONE;
}

}  // namespace webvtt
