// A cue as a buffer.
#ifndef GSTREAMER_CAPTION_BUFFER_H_
#define GSTREAMER_CAPTION_BUFFER_H_

#include <gst/gst.h>

#include "gstreamer/track.h"

#define QUILLCAPTION_TEXT_CAPS "text/x-raw, format=(string)utf8"
// The custom metadata of each buffer; docs/gstreamer.md says what its structure holds.
#define QUILLCAPTION_SETTINGS_META "QuillcaptionSettings"

namespace gstquillcaption {

// Once a process, before the first buffer.
void RegisterSettings();

// A text as the module delivers it, line feeds included, but UTF-8 for certain; with the settings,
// without times.
GstBuffer* MakeBuffer(const Caption& caption);

}  // namespace gstquillcaption

#endif  // GSTREAMER_CAPTION_BUFFER_H_
