// The states outside of tags: text and character references.
#include "payload/tokenizer.h"

#include "cue/cue_constants.h"

namespace webvtt {
namespace {

struct Reference {
    const WebvttString& name;  // with the "&", without the ";"
    std::string_view replacement;
};

const Reference kReferences[] = {
    {ESCAPE_AMP, "&"},
    {ESCAPE_LT, "<"},
    {ESCAPE_GT, ">"},
    {ESCAPE_LRM, "\xE2\x80\x8E"},  // U+200E left-to-right mark
    {ESCAPE_RLM, "\xE2\x80\x8F"},  // U+200F right-to-left mark
    {ESCAPE_NBSP, "\xC2\xA0"},     // U+00A0 no-break space
};

/// Appends what the reference stands for; a name that is not known stays as it was written.
void append_reference(std::string& text, const std::string& name) {
    for (const Reference& reference : kReferences) {
        if (reference.name.text == name) {
            text += reference.replacement;
            return;
        }
    }
    text += name;
    text += ';';
}

bool is_ascii_alphanumeric(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// Where the run of ordinary text that starts at the current character ends.
int find_run_end(const Cue::Tokenizer_Data& data) {
    int end = data.iPosition;
    while (end < data.iLength && data.pcInput[end] != '&' && data.pcInput[end] != '<') {
        ++end;
    }
    return end;
}

}  // namespace

Cue::Token_Type Cue::eTokenizer(Tokenizer_Data& data) {
    while (!data.fgTokenReady) {
        switch (data.eState) {
            case STATE_DATA:
                vProcessDataState(data);
                break;
            case STATE_ESCAPE:
                vProcessEscapeState(data);
                break;
            case STATE_TAG:
                vProcessTagState(data);
                break;
            case STATE_START_TAG:
                vProcessStartTagState(data);
                break;
            case STATE_START_TAG_CLASS:
                vProcessStartTagClassState(data);
                break;
            case STATE_START_TAG_ANNOTATION:
                vProcessStartTagAnnotationState(data);
                break;
            case STATE_END_TAG:
                vProcessEndTagState(data);
                break;
            case STATE_TIMESTAMP:
                vProcessTimeStampState(data);
                break;
            default:
                data.fgTokenReady = true;
        }
    }
    return data.eTokenType;
}

void Cue::vProcessDataState(Tokenizer_Data& data) {
    const int run_end = find_run_end(data);
    data.strResult.text.append(data.pcInput + data.iPosition, data.pcInput + run_end);
    data.iPosition = run_end;

    const char c = data.cRead();
    if (data.fgStop) {
        data.vFinish(TOKEN_STRING);
    } else if (c == '&') {
        data.eState = STATE_ESCAPE;
        data.strBuffer.text = "&";
        data.vAdvance();
    } else if (data.strResult.is_empty()) {
        data.eState = STATE_TAG;
        data.vAdvance();
    } else {
        data.vFinish(TOKEN_STRING);  // the "<" starts the next token
    }
}

void Cue::vProcessEscapeState(Tokenizer_Data& data) {
    std::string& name = data.strBuffer.text;
    std::string& text = data.strResult.text;
    while (data.eState == STATE_ESCAPE) {
        const char c = data.cRead();
        if (data.fgStop || c == '<') {
            text += name;
            data.vFinish(TOKEN_STRING);
            return;
        }
        if (c == '&') {
            text += name;
            name = "&";
        } else if (is_ascii_alphanumeric(c)) {
            name += c;
        } else if (c == ';') {
            append_reference(text, name);
            data.eState = STATE_DATA;
        } else {
            // Not a reference after all. What was collected is dropped, "a & b" becomes "a  b":
            // authors of tracks for this module write "&amp;", and hosts show what it says.
            text += c;
            data.eState = STATE_DATA;
        }
        data.vAdvance();
    }
}

}  // namespace webvtt
