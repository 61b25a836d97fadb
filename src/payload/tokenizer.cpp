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

/// Where the ordinary text at the front ends: at the first "<" or "&", or with the text.
std::size_t find_text_end(std::string_view text) {
    std::size_t end = 0;
    while (end < text.size() && text[end] != '<' && text[end] != '&') {
        ++end;
    }
    return end;
}

bool is_ascii_alphanumeric(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
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
    const std::string_view rest(data.pcInput + data.iPosition,
                                static_cast<std::size_t>(data.iLength - data.iPosition));
    const std::size_t run = find_text_end(rest);
    data.strResult.text.append(rest.data(), run);
    data.iPosition += static_cast<int>(run);

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
