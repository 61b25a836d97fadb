// The words that cues are made of. Built when the module is loaded, destroyed when it is unloaded;
// the longest fits a string's own buffer, so none of them lies on the heap.
#pragma once

#include "base/webvtt_string.h"

namespace webvtt {

// Character references as the tokenizer collects them: with the "&", without the ";".
extern const WebvttString ESCAPE_AMP;
extern const WebvttString ESCAPE_LT;
extern const WebvttString ESCAPE_GT;
extern const WebvttString ESCAPE_LRM;
extern const WebvttString ESCAPE_RLM;
extern const WebvttString ESCAPE_NBSP;

// Names of cue settings.
extern const WebvttString CUE_SETTING_REGION;
extern const WebvttString CUE_SETTING_VERTICAL;
extern const WebvttString CUE_SETTING_LINE;
extern const WebvttString CUE_SETTING_SIZE;
extern const WebvttString CUE_SETTING_POSITION;
extern const WebvttString CUE_SETTING_ALIGN;

}  // namespace webvtt
