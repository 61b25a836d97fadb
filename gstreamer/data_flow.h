// What comes from upstream: bytes of tracks, and events.
#ifndef GSTREAMER_DATA_FLOW_H_
#define GSTREAMER_DATA_FLOW_H_

#include <gst/gst.h>

#include "gstreamer/caption_element.h"

namespace gstquillcaption {

GstFlowReturn TakeBuffer(GstPad* pad, GstObject* parent, GstBuffer* buffer);
gboolean TakeEvent(GstPad* pad, GstObject* parent, GstEvent* event);

// Streaming has ended: nothing is kept for the next time.
void ForgetStream(GstQuillcaption* self);

}  // namespace gstquillcaption

#endif  // GSTREAMER_DATA_FLOW_H_
