// The payload tokenizer: a state machine that cuts one token at a time off the front of a payload.
//
//     text &amp; text        TOKEN_STRING      references replaced, line feeds kept
//     <v.loud Bob>           TOKEN_START_TAG   name, classes (recorded in the cue), annotation
//     </v>                   TOKEN_END_TAG     name, spaces kept
//     <00:01.000>            TOKEN_TIMESTAMP   the text between the brackets
//
// Malformed markup is never an error here: a tag without end becomes a token of what was read, an
// unknown reference stays as text, and a bare "&" vanishes with the letters behind it.
#pragma once

#include "cue/cue.h"

namespace webvtt {

/// Whitespace inside a tag, the line feed apart; a carriage return is none.
inline bool is_tag_space(char c) {
    return c == '\t' || c == '\f' || c == ' ';
}

/// The state of one token. A fresh one is made for every token, over the rest of the payload.
struct Cue::Tokenizer_Data {
    /// @param pcText not owned, read only while the token is being cut
    Tokenizer_Data(const char* pcText, int iSize) : pcInput(pcText), iLength(iSize) {}

    Tokenizer_State eState = STATE_DATA;
    Token_Type eTokenType = TOKEN_NONE;
    const char* pcInput;
    int iPosition = 0;  ///< of the current character; at the end, how many the token consumed
    int iLength;
    bool fgStop = false;  ///< the input ended, or a ">" closed the tag
    bool fgTokenReady = false;
    WebvttString strBuffer;  ///< a pending reference, a class name, or the annotation
    WebvttString strResult;  ///< the text, the tag's name, or the timestamp

    /// The current character. At the end of the input it is 0 and fgStop is set.
    char cRead() {
        if (iPosition < iLength) {
            return pcInput[iPosition];
        }
        fgStop = true;
        return '\0';
    }

    /// Goes on by one character; fgStop is set when that was the last one.
    void vAdvance() {
        ++iPosition;
        if (iPosition >= iLength) {
            fgStop = true;
        }
    }

    /// Whether the handler of this state has more to do.
    bool fgGoesOn(Tokenizer_State eHandled) const { return eState == eHandled && !fgTokenReady; }

    void vFinish(Token_Type eType) {
        eTokenType = eType;
        fgTokenReady = true;
    }
};

}  // namespace webvtt
