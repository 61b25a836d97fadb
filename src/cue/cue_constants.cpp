#include "cue/cue_constants.h"

namespace webvtt {

const WebvttString ESCAPE_AMP("&amp");
const WebvttString ESCAPE_LT("&lt");
const WebvttString ESCAPE_GT("&gt");
const WebvttString ESCAPE_LRM("&lrm");
const WebvttString ESCAPE_RLM("&rlm");
const WebvttString ESCAPE_NBSP("&nbsp");

const WebvttString CUE_SETTING_REGION("region");
const WebvttString CUE_SETTING_VERTICAL("vertical");
const WebvttString CUE_SETTING_LINE("line");
const WebvttString CUE_SETTING_SIZE("size");
const WebvttString CUE_SETTING_POSITION("position");
const WebvttString CUE_SETTING_ALIGN("align");

}  // namespace webvtt
