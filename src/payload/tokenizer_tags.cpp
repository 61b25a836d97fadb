// The states inside tags.
//
// Two of them stop before the last character of the payload, which is then read again as text:
// the tag state leaves it alone, and the start-tag state never looks at it. A tag that is closed
// by the payload's very last ">" therefore leaves that ">" in the text. Hosts that compare texts
// rely on it.
#include "payload/tokenizer.h"

namespace webvtt {
namespace {

/// Collects everything up to ">" or the end of the input: an annotation, an end tag or a
/// timestamp.
void take_until_bracket(Cue::Tokenizer_Data& data, std::string& taken, Cue::Token_Type eType) {
    do {
        const char c = data.cRead();
        if (!data.fgStop) {
            if (c == '>') {
                data.fgStop = true;
            } else {
                taken += c;
            }
            data.vAdvance();
        }
    } while (!data.fgStop && !data.fgTokenReady);
    if (data.fgStop) {
        data.vFinish(eType);
    }
}

}  // namespace

void Cue::vProcessTagState(Tokenizer_Data& data) {
    const char c = data.cRead();
    if (data.fgStop) {
        // "<>", or a "<" at the very end: a start tag without a name.
        data.vFinish(TOKEN_START_TAG);
        return;
    }
    if (is_tag_space(c) || c == '\n') {
        data.eState = STATE_START_TAG_ANNOTATION;
    } else if (c == '.') {
        data.eState = STATE_START_TAG_CLASS;
    } else if (c == '/') {
        data.eState = STATE_END_TAG;
    } else if (c >= '0' && c <= '9') {
        data.eState = STATE_TIMESTAMP;
        data.strResult.text += c;
    } else if (c == '>') {
        data.fgStop = true;
    } else {
        data.eState = STATE_START_TAG;  // which reads c again as the first letter of the name
        return;
    }
    if (data.iPosition == data.iLength - 1) {
        data.fgStop = true;
    } else {
        ++data.iPosition;
    }
}

void Cue::vProcessStartTagState(Tokenizer_Data& data) {
    do {
        const char c = data.cRead();
        if (data.fgStop) {
            data.vFinish(TOKEN_START_TAG);
            return;
        }
        if (is_tag_space(c)) {
            data.eState = STATE_START_TAG_ANNOTATION;
        } else if (c == '\n') {
            data.eState = STATE_START_TAG_ANNOTATION;
            data.strBuffer.text += c;
        } else if (c == '.') {
            data.eState = STATE_START_TAG_CLASS;
        } else if (c == '>') {
            data.fgStop = true;
        } else {
            data.strResult.text += c;
        }
        ++data.iPosition;
        if (data.iPosition >= data.iLength - 1) {
            data.fgStop = true;
        }
    } while (data.fgGoesOn(STATE_START_TAG));
}

void Cue::vProcessStartTagClassState(Tokenizer_Data& data) {
    char c = data.cRead();
    while (!data.fgStop) {
        if (is_tag_space(c)) {
            // The name is not cleared, so it becomes the front of the annotation.
            vAddApplicableClass(data.strBuffer);
            data.eState = STATE_START_TAG_ANNOTATION;
        } else if (c == '\n') {
            // The token ends here without a kind: the builder makes no node for this tag.
            vAddApplicableClass(data.strBuffer);
            data.strBuffer.text = "\n";
            data.fgTokenReady = true;
        } else if (c == '.') {
            vAddApplicableClass(data.strBuffer);
            data.strBuffer.text.clear();
        } else if (c == '>') {
            data.fgStop = true;
        } else {
            data.strBuffer.text += c;
        }
        data.vAdvance();
        if (!data.fgGoesOn(STATE_START_TAG_CLASS)) {
            return;
        }
        c = data.cRead();
    }
    vAddApplicableClass(data.strBuffer);
    data.vFinish(TOKEN_START_TAG);
}

void Cue::vProcessStartTagAnnotationState(Tokenizer_Data& data) {
    take_until_bracket(data, data.strBuffer.text, TOKEN_START_TAG);
    if (data.fgStop) {
        data.strBuffer.trim();
    }
}

void Cue::vProcessEndTagState(Tokenizer_Data& data) {
    take_until_bracket(data, data.strResult.text, TOKEN_END_TAG);
}

void Cue::vProcessTimeStampState(Tokenizer_Data& data) {
    take_until_bracket(data, data.strResult.text, TOKEN_TIMESTAMP);
}

}  // namespace webvtt
