// One cue block: its times, its settings and the tree of its payload.
//
// The class is shared by two folders: cue/ reads the timing line and the settings, payload/ cuts
// the payload into tokens and builds the tree. They share it because the tokenizer records class
// names and the builder language scopes in the cue itself.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/errors.h"
#include "base/text.h"
#include "base/webvtt_string.h"
#include "cue/cue_types.h"
#include "payload/node.h"

namespace webvtt {

/// Created for one block, parsed once with fgParse, read once, destroyed. It owns its tree.
/// The identifier of a cue is not kept.
class Cue {
  public:
    // ---- The block (cue/cue.cpp) ----

    Cue() = default;
    Cue(const Cue&) = delete;
    Cue& operator=(const Cue&) = delete;
    ~Cue() {
        if (pRootNode != nullptr) {  // no cue that was parsed for its text has a tree
            vReleaseNode(pRootNode);
        }
    }

    /// Parses a block: an optional identifier line, the timing line, the payload.
    ///
    /// @param pcLine zero-terminated, lines separated by line feeds; read during the call only.
    /// @param size   must not be 0; the text's end is its terminating zero all the same.
    /// @return false, after a diagnostic, when the block has no valid timing line.
    /// @throws InvalidArgumentException no text, an empty payload, or an invalid start time
    /// @throws BadAllocException        from fgParseCuePayload
    /// @throws std::out_of_range        "basic_string::at" from a "line" setting without a number
    /// After an exception the cue must only be destroyed.
    bool fgParse(const char* pcLine, unsigned size);

    /// The same for a host, which gets no more of the payload than its text: no tree is built and
    /// no class name kept, so tags cost no memory however many there are and however deep they
    /// nest. The text is strPlainText(). The results are those of fgParse, and so are the errors,
    /// but its own exceptions are told by value. The cue must be new: settings that are not given
    /// are not looked at.
    /// @param block need not be zero-terminated; must outlive the cue
    /// @param pcOwn null when there is no "<" and no "&" in the block; otherwise the block itself,
    ///              in which the text of a payload with markup is joined
    Outcome eParseForText(std::string_view block, char* pcOwn);

    /// After eParseForText: the text that strGetCueContent gives after fgParse. It lies in the
    /// block.
    std::string_view strPlainText() const { return m_plain_text; }

    /// Parses a timing line. Results and errors as in fgParse. What is left of the line says how
    /// far it was read: all of it when it has no arrow, what is behind the arrow after a bad start
    /// time, the settings after a bad end time, the last setting after success, and what begins
    /// with the setting that threw.
    bool fgParseCueTimeAndSettings(WebvttString& line);

    // ---- The settings (cue/cue_settings.cpp) ----

    /// Parses one setting, such as "align:end", into the fields below. What is not known or not
    /// valid is dropped.
    /// @throws std::out_of_range "basic_string::at" when a "line" has no number
    void vParseCueSettingItem(const WebvttString& item);

    // Keyword to value; START for every text that is not a keyword.
    Text_Align_Type eMapTextAlign(const WebvttString& keyword) const;
    Line_Align_Type eMapTextPositionAlign(const WebvttString& keyword) const;
    Line_Align_Type eMapLineAlign(const WebvttString& keyword) const;

    // ---- A silent look at the cue, for debugging (cue/cue_dump.cpp) ----

    void vPrintCueSettings() const;
    void vPrintCueNodeList() const;
    void vPrintCueNode(WebvttNode* node) const;

    // ---- The tokenizer (payload/tokenizer.h) ----

    struct Tokenizer_Data;

    enum Tokenizer_State : std::int32_t {
        STATE_DATA = 0,
        STATE_ESCAPE = 1,
        STATE_TAG = 2,
        STATE_START_TAG = 3,
        STATE_START_TAG_CLASS = 4,
        STATE_START_TAG_ANNOTATION = 5,
        STATE_END_TAG = 6,
        STATE_TIMESTAMP = 7
    };

    enum Token_Type : std::int32_t {
        TOKEN_NONE = 0,
        TOKEN_STRING = 1,
        TOKEN_START_TAG = 2,
        TOKEN_END_TAG = 3,
        TOKEN_TIMESTAMP = 4
    };

    Token_Type eTokenizer(Tokenizer_Data& data);
    void vProcessDataState(Tokenizer_Data& data);
    void vProcessEscapeState(Tokenizer_Data& data);
    void vProcessTagState(Tokenizer_Data& data);
    void vProcessStartTagState(Tokenizer_Data& data);
    void vProcessStartTagClassState(Tokenizer_Data& data);
    void vProcessStartTagAnnotationState(Tokenizer_Data& data);
    void vProcessEndTagState(Tokenizer_Data& data);
    void vProcessTimeStampState(Tokenizer_Data& data);

    // ---- The tree (payload/tree_builder.cpp, plain_text.cpp, node_release.cpp) ----

    enum Travel_Action_Type : std::int32_t {
        TRAVEL_ACTION_GET_CONTENT = 0  ///< append each text node's text to a WebvttString
    };

    /// Builds the tree of a payload under pRootNode; a second call appends to the same root.
    ///
    /// @param pcPayload may hold zero bytes: the token that takes in the first one is the last
    /// @param uLength   its length, which must not be 0; nothing is read beyond it
    /// @return true
    /// @throws InvalidArgumentException the payload is empty or null; nothing is built
    /// @throws BadAllocException        memory ran out, or a start tag is not known; what was
    ///                                  built so far stays
    bool fgParseCuePayload(const char* pcPayload, unsigned int uLength);

    void vAddApplicableClass(WebvttString strClass);
    /// False while a cue is parsed for its text: class names are then dropped.
    bool fgKeepsClasses() const { return !m_for_text; }
    void vPushApplicableLanguage(WebvttString strLanguage);
    /// The stack must not be empty.
    void vPopApplicableLanguage();

    /// Walks a tree, parents first.
    /// @param pvData what the action works on: a WebvttString for TRAVEL_ACTION_GET_CONTENT
    void vTravelNodeTreeWithAction(WebvttNode* pNode, Travel_Action_Type eAction,
                                   void* pvData) const;

    /// The text of all text nodes in document order, with nothing between them.
    WebvttString strGetCueContent() const;

    /// Frees a node and all below it, children before parents, first child first.
    void vReleaseNode(WebvttNode* pNode);

    // ---- What was read. Times and settings mean something once fgParse has returned true. ----

    /// Every class name of every start tag, in order, repeated and empty ones included. They
    /// belong to the cue as a whole.
    std::vector<WebvttString> vecApplicableClasses;
    /// The open "lang" tags, innermost last. A stack; a vector, for an empty one costs nothing.
    std::vector<WebvttString> dqApplicableLanguages;
    double dStartTime = 0.0;          ///< seconds, as written
    double dEndTime = 0.0;            ///< seconds, as written; not checked against the start
    WebvttNode* pRootNode = nullptr;  ///< owned; null until a payload was parsed
    bool fgSnapToLines = true;        ///< dLine is a line number, not a percentage
    char acRegionId[17] = {};         ///< at most 16 bytes and a zero
    Vertical_Type eVertical = Vertical_Type::HORIZONTAL;
    Line_Align_Type eLineAlign = Line_Align_Type::START;
    Line_Align_Type ePositionAlign = Line_Align_Type::MIDDLE;
    Text_Align_Type eTextAlign = Text_Align_Type::MIDDLE;
    double dLine = 100.0;
    double dSize = 100.0;             ///< percent; not checked
    double dPosition = 50.0;          ///< percent
    bool fgPositionSet = false;       ///< a valid "position" was given
    bool fgPositionAlignSet = false;  ///< and it named its alignment

  private:
    Outcome eParseHead(std::string_view block, std::string_view* pstrPayload);
    bool fgParseUsualHead(std::string_view block, std::string_view* pstrPayload);
    Outcome eParseTimes(const Split& times, std::string_view& left);
    Outcome eReadPayloadText(std::string_view payload, char* pcText);
    void vParseSettings(std::string_view& settings);
    void vParseSetting(std::string_view item);
    void vDeriveSettings();

    void vSetRegion(std::string_view value);
    void vSetVertical(std::string_view value);
    void vSetLine(std::string_view value);
    void vSetSize(std::string_view value);
    void vSetPosition(std::string_view value);
    void vSetAlign(std::string_view value);

    struct Setting;
    static const Setting kSettings[6];

    std::string_view m_plain_text;
    bool m_for_text = false;  // the cue is new, and class names are not kept
};

}  // namespace webvtt
