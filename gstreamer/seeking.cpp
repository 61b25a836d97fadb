// Where a cue lies in a file nobody knows before it is read. So a seek in time has upstream begin
// anew at the first byte, and what is wanted of it becomes the segment, to which cues are clipped.
// Upstream that knows times itself is asked first.
#include "gstreamer/seeking.h"

#include "gstreamer/caption_element.h"

namespace gstquillcaption {
namespace {

gboolean Seek(GstQuillcaption* self, GstEvent* event) {
    gdouble rate = 1;
    GstFormat format = GST_FORMAT_UNDEFINED;
    GstSeekFlags flags = GST_SEEK_FLAG_NONE;
    GstSeekType start_type = GST_SEEK_TYPE_NONE;
    GstSeekType stop_type = GST_SEEK_TYPE_NONE;
    gint64 start = 0;
    gint64 stop = 0;
    gst_event_parse_seek(event, &rate, &format, &flags, &start_type, &start, &stop_type, &stop);
    // Cues don't come backwards, and the end of a segment in bytes is none in time.
    if (format != GST_FORMAT_TIME || rate <= 0 || (flags & GST_SEEK_FLAG_SEGMENT) != 0) {
        GST_DEBUG_OBJECT(self, "this seek is refused: %" GST_PTR_FORMAT, event);
        return FALSE;
    }
    GST_OBJECT_LOCK(self);
    GstSegment wanted = self->stream->segment;
    const bool is_possible =
        gst_segment_do_seek(&wanted, rate, format, flags, start_type, static_cast<guint64>(start),
                            stop_type, static_cast<guint64>(stop), nullptr) != FALSE;
    if (is_possible) {
        self->stream->sought = wanted;
    }
    GST_OBJECT_UNLOCK(self);
    if (!is_possible) {
        return FALSE;
    }
    GstEvent* const in_bytes = gst_event_new_seek(1.0, GST_FORMAT_BYTES, flags, GST_SEEK_TYPE_SET,
                                                  0, GST_SEEK_TYPE_NONE, -1);
    gst_event_set_seqnum(in_bytes, gst_event_get_seqnum(event));
    const gboolean result = gst_pad_push_event(self->sinkpad, in_bytes);
    if (result == FALSE) {
        GST_OBJECT_LOCK(self);
        self->stream->sought.reset();
        GST_OBJECT_UNLOCK(self);
    }
    return result;
}

// Asks upstream, in the format of the query.
bool IsSeekable(GstQuillcaption* self, GstQuery* query) {
    gboolean is_seekable = FALSE;
    if (gst_pad_peer_query(self->sinkpad, query) != FALSE) {
        gst_query_parse_seeking(query, nullptr, &is_seekable, nullptr, nullptr);
    }
    return is_seekable != FALSE;
}

}  // namespace

gboolean TakeUpstreamEvent(GstPad* pad, GstObject* parent, GstEvent* event) {
    if (GST_EVENT_TYPE(event) != GST_EVENT_SEEK) {
        return gst_pad_event_default(pad, parent, event);
    }
    auto* const self = reinterpret_cast<GstQuillcaption*>(parent);
    gboolean result = gst_pad_push_event(self->sinkpad, gst_event_ref(event));
    if (result == FALSE) {
        result = Seek(self, event);
    }
    gst_event_unref(event);
    return result;
}

gboolean AnswerQuery(GstPad* pad, GstObject* parent, GstQuery* query) {
    auto* const self = reinterpret_cast<GstQuillcaption*>(parent);
    GstFormat format = GST_FORMAT_UNDEFINED;
    if (GST_QUERY_TYPE(query) == GST_QUERY_SEEKING) {
        gst_query_parse_seeking(query, &format, nullptr, nullptr, nullptr);
    }
    if (format != GST_FORMAT_TIME) {
        return gst_pad_query_default(pad, parent, query);
    }
    if (!IsSeekable(self, query)) {
        GstQuery* const in_bytes = gst_query_new_seeking(GST_FORMAT_BYTES);
        const bool is_seekable = IsSeekable(self, in_bytes);
        gst_query_unref(in_bytes);
        gst_query_set_seeking(query, GST_FORMAT_TIME, static_cast<gboolean>(is_seekable), 0, -1);
    }
    return TRUE;
}

}  // namespace gstquillcaption
