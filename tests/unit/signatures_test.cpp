// The members that the rest of the system may call, by their exact types: what is const and what is
// not, what is virtual, what is returned. All of it is checked by compiling this file.
#include <gtest/gtest.h>

#include <type_traits>

#include "base/errors.h"
#include "cue/cue.h"
#include "header/region_header.h"
#include "header/timestamp_header.h"
#include "parser/webvtt_parser.h"
#include "payload/tokenizer.h"

namespace webvtt {
namespace {

template <typename Expected, typename Found>
constexpr bool is_exactly(Found) {
    return std::is_same_v<Expected, Found>;
}

using String = const WebvttString&;
using Data = Cue::Tokenizer_Data&;
using Notify = void (*)(WEBVTT_EVENT_T, void*, void*);

// The parser.
static_assert(is_exactly<int (WebVTTParser::*)(const void*, unsigned)>(&WebVTTParser::rsltParse));
static_assert(is_exactly<int (WebVTTParser::*)()>(&WebVTTParser::ersltCheckValidation));
static_assert(is_exactly<int (WebVTTParser::*)()>(&WebVTTParser::ersltParseMetadataHeader));
static_assert(is_exactly<int (WebVTTParser::*)()>(&WebVTTParser::ersltParseCue));
static_assert(
    is_exactly<const WebvttCueNode* (WebVTTParser::*)() const>(&WebVTTParser::prGetParseResult));
static_assert(
    is_exactly<void (WebVTTParser::*)(char*, unsigned)>(&WebVTTParser::vSetParsingBuffer));
static_assert(is_exactly<bool (WebVTTParser::*)()>(&WebVTTParser::fgIsBufferAvailable));
static_assert(is_exactly<bool (WebVTTParser::*)(char**)>(&WebVTTParser::fgCollectLine));
static_assert(is_exactly<void (WebVTTParser::*)(char**)>(&WebVTTParser::vDestoryLine));
static_assert(is_exactly<bool (WebVTTParser::*)(const char*)>(&WebVTTParser::fgSaveUnusedBuffer));
static_assert(is_exactly<void (WebVTTParser::*)()>(&WebVTTParser::vClearUnusedBuffer));
static_assert(is_exactly<void (WebVTTParser::*)(const Cue*)>(&WebVTTParser::vAppendNewCue));
static_assert(is_exactly<void (WebVTTParser::*)()>(&WebVTTParser::vGetParseResult));
static_assert(is_exactly<void (WebVTTParser::*)(void*, Notify)>(&WebVTTParser::vSetWebvttEventNty));
static_assert(is_exactly<void (WebVTTParser::*)(unsigned long)>(&WebVTTParser::vSetVideoPTS));
static_assert(std::has_virtual_destructor_v<WebVTTParser>);

// Text.
static_assert(is_exactly<WebvttString& (WebvttString::*)()>(&WebvttString::trim));
static_assert(is_exactly<bool (WebvttString::*)(String) const>(&WebvttString::does_contain));
static_assert(is_exactly<bool (WebvttString::*)() const>(&WebvttString::is_empty));
static_assert(is_exactly<WebvttString (WebvttString::*)(String) const>(
    &WebvttString::get_first_substr_before));
static_assert(is_exactly<bool (WebvttString::*)(double&) const>(&WebvttString::str_to_double));
static_assert(is_exactly<bool (WebvttString::*)(double&) const>(&WebvttString::get_percentage));
static_assert(is_exactly<bool (WebvttString::*)(unsigned&) const>(&WebvttString::str_to_uint));
static_assert(
    is_exactly<bool (WebvttString::*)(unsigned long&) const>(&WebvttString::str_to_ulong));
static_assert(
    is_exactly<bool (WebvttString::*)(double&, double&) const>(&WebvttString::get_anchorpoint));
static_assert(is_exactly<bool (WebvttString::*)(double&) const>(&WebvttString::get_timestamp));
static_assert(!std::is_polymorphic_v<WebvttString> && sizeof(WebvttString) == sizeof(std::string));
static_assert(std::is_same_v<decltype(WebvttString::text), std::string>);

// Errors.
static_assert(std::is_base_of_v<std::runtime_error, RuntimeException>);
static_assert(std::is_base_of_v<RuntimeException, InvalidArgumentException>);
static_assert(std::is_base_of_v<std::bad_alloc, BadAllocException>);
static_assert(!std::is_base_of_v<RuntimeException, BadAllocException>);

// The cue.
static_assert(is_exactly<bool (Cue::*)(const char*, unsigned)>(&Cue::fgParse));
static_assert(is_exactly<bool (Cue::*)(WebvttString&)>(&Cue::fgParseCueTimeAndSettings));
static_assert(is_exactly<void (Cue::*)(String)>(&Cue::vParseCueSettingItem));
static_assert(is_exactly<Text_Align_Type (Cue::*)(String) const>(&Cue::eMapTextAlign));
static_assert(is_exactly<Line_Align_Type (Cue::*)(String) const>(&Cue::eMapTextPositionAlign));
static_assert(is_exactly<Line_Align_Type (Cue::*)(String) const>(&Cue::eMapLineAlign));
static_assert(is_exactly<void (Cue::*)() const>(&Cue::vPrintCueSettings));
static_assert(is_exactly<void (Cue::*)() const>(&Cue::vPrintCueNodeList));
static_assert(is_exactly<void (Cue::*)(WebvttNode*) const>(&Cue::vPrintCueNode));
static_assert(is_exactly<bool (Cue::*)(const char*, unsigned)>(&Cue::fgParseCuePayload));
static_assert(is_exactly<void (Cue::*)(WebvttString)>(&Cue::vAddApplicableClass));
static_assert(is_exactly<void (Cue::*)(WebvttString)>(&Cue::vPushApplicableLanguage));
static_assert(is_exactly<void (Cue::*)()>(&Cue::vPopApplicableLanguage));
static_assert(is_exactly<void (Cue::*)(WebvttNode*, Cue::Travel_Action_Type, void*) const>(
    &Cue::vTravelNodeTreeWithAction));
static_assert(is_exactly<WebvttString (Cue::*)() const>(&Cue::strGetCueContent));
static_assert(is_exactly<void (Cue::*)(WebvttNode*)>(&Cue::vReleaseNode));
static_assert(is_exactly<Cue::Token_Type (Cue::*)(Data)>(&Cue::eTokenizer));
static_assert(is_exactly<void (Cue::*)(Data)>(&Cue::vProcessDataState));
static_assert(!std::is_polymorphic_v<Cue>);

// Nodes.
static_assert(std::is_polymorphic_v<WebvttNode> && std::has_virtual_destructor_v<WebvttNode>);
static_assert(is_exactly<WebvttNode* (WebvttNode::*)() const>(&WebvttNode::prGetParent));
static_assert(is_exactly<Node_Type (WebvttNode::*)() const>(&WebvttNode::eGetNodeType));
static_assert(is_exactly<void (WebvttNode::*)(WebvttNode*)>(&WebvttNode::vAppendNode));
static_assert(
    is_exactly<void (WebvttInternalNode::*)(String)>(&WebvttInternalNode::vSetApplicableLanguage));

// Headers.
static_assert(std::has_virtual_destructor_v<MetaDataHeader>);
static_assert(is_exactly<void (MetaDataHeader::*)(const char*)>(&MetaDataHeader::vParse));
static_assert(is_exactly<MetaData_Header_Type (MetaDataHeader::*)()>(&MetaDataHeader::eType));
static_assert(
    is_exactly<bool (RegionMetaDataHeader::*)(String)>(&RegionMetaDataHeader::fgParseSettingItem));
static_assert(is_exactly<bool (TimeStampMetaDataHeader::*)(String)>(
    &TimeStampMetaDataHeader::fgParseLocalTime));
static_assert(is_exactly<bool (TimeStampMetaDataHeader::*)(String)>(
    &TimeStampMetaDataHeader::fgParseMpegPts));
static_assert(is_exactly<bool (TimeStampMetaDataHeader::*)()>(&TimeStampMetaDataHeader::fgIsValid));

}  // namespace
}  // namespace webvtt
