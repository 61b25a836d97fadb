// What comes from downstream: seeks, and questions about them.
#ifndef GSTREAMER_SEEKING_H_
#define GSTREAMER_SEEKING_H_

#include <gst/gst.h>

namespace gstquillcaption {

gboolean TakeUpstreamEvent(GstPad* pad, GstObject* parent, GstEvent* event);
gboolean AnswerQuery(GstPad* pad, GstObject* parent, GstQuery* query);

}  // namespace gstquillcaption

#endif  // GSTREAMER_SEEKING_H_
