// The states outside of tags: text and character references.
#include "payload/tokenizer.h"

#include "payload/references.h"

namespace webvtt {
namespace {

/// Appends what the reference stands for; a name that is not known stays as it was written.
void append_reference(std::string& text, const std::string& name) {
    if (const Reference* const reference = find_reference(name)) {
        text += reference->replacement;
    } else {
        text += name;
        text += ';';
    }
}

}  // namespace

Cue::Token_Type Cue::eTokenizer(Tokenizer_Data& data) {
    do {
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
    } while (!data.fgTokenReady);
    return data.eTokenType;
}

void Cue::vProcessDataState(Tokenizer_Data& data) {
    do {
        const char c = data.cRead();
        if (data.fgStop) {
            data.vFinish(TOKEN_STRING);
            return;
        }
        if (c == '&') {
            data.eState = STATE_ESCAPE;
            data.strBuffer.text = "&";
        } else if (c != '<') {
            data.strResult.text += c;
        } else if (data.strResult.is_empty()) {
            data.eState = STATE_TAG;
        } else {
            data.vFinish(TOKEN_STRING);  // the "<" starts the next token
            return;
        }
        data.vAdvance();
    } while (data.fgGoesOn(STATE_DATA));
}

void Cue::vProcessEscapeState(Tokenizer_Data& data) {
    std::string& name = data.strBuffer.text;
    std::string& text = data.strResult.text;
    do {
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
    } while (data.fgGoesOn(STATE_ESCAPE));
}

}  // namespace webvtt
