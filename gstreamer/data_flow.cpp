// A track begins with the first bytes after a flush or a segment, and, in a live stream, with each
// buffer that is marked as a beginning and begins with "WEBVTT": a parser of the module reads one
// track only. Caps, segment and gaps go downstream from here, in time, whatever upstream speaks.
#include "gstreamer/data_flow.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <string_view>

#include "gstreamer/caption_buffer.h"

namespace gstquillcaption {
namespace {

constexpr guint64 kTicksPerSecond = 90000;
constexpr guint64 kWrap = G_GUINT64_CONSTANT(1) << 32;  // the module's clock has 32 bits
constexpr double kWrapSeconds = 4294967296.0 / 90000;

GstQuillcaption* Self(GstObject* object) {
    return reinterpret_cast<GstQuillcaption*>(object);
}

// Takes a buffer over, and gives it back at the end.
class MappedBuffer {
  public:
    explicit MappedBuffer(GstBuffer* buffer) : buffer_(buffer) {
        if (gst_buffer_map(buffer_, &map_, GST_MAP_READ) == FALSE) {
            map_.data = nullptr;
        }
    }
    MappedBuffer(const MappedBuffer&) = delete;
    MappedBuffer& operator=(const MappedBuffer&) = delete;
    ~MappedBuffer() {
        if (map_.data != nullptr) {
            gst_buffer_unmap(buffer_, &map_);
        }
        gst_buffer_unref(buffer_);
    }

    // None when the memory cannot be read.
    std::string_view bytes() const {
        return map_.data == nullptr
                   ? std::string_view()
                   : std::string_view(reinterpret_cast<const char*>(map_.data), map_.size);
    }

  private:
    GstBuffer* buffer_;
    GstMapInfo map_ = GST_MAP_INFO_INIT;
};

void SendCaps(GstQuillcaption* self) {
    if (!self->stream->has_sent_caps) {
        self->stream->has_sent_caps = true;
        GstCaps* const caps = gst_caps_from_string(QUILLCAPTION_TEXT_CAPS);
        gst_pad_push_event(self->srcpad, gst_event_new_caps(caps));
        gst_caps_unref(caps);
    }
}

// Seeks look at the segment too.
void SetPosition(GstQuillcaption* self, GstClockTime position) {
    GST_OBJECT_LOCK(self);
    self->stream->segment.position = position;
    GST_OBJECT_UNLOCK(self);
}

gboolean SendSegment(GstQuillcaption* self, guint32 seqnum) {
    SendCaps(self);
    self->stream->has_sent_segment = true;
    SetPosition(self, self->stream->segment.start);
    GstEvent* const event = gst_event_new_segment(&self->stream->segment);
    gst_event_set_seqnum(event, seqnum);
    return gst_pad_push_event(self->srcpad, event);
}

// Nothing comes before this time any more.
void FillGap(GstQuillcaption* self, GstClockTime until) {
    GstSegment& segment = self->stream->segment;
    if (GST_CLOCK_TIME_IS_VALID(segment.stop)) {
        until = std::min(until, segment.stop);
    }
    if (until > segment.position) {
        gst_pad_push_event(self->srcpad,
                           gst_event_new_gap(segment.position, until - segment.position));
        SetPosition(self, until);
    }
}

// A time of the module's in that of the segment. Upstream's times may go on for longer than the
// module's clock, so what is further off than half of its round is taken for one round off.
GstClockTimeDiff SegmentTime(const Stream& stream, double seconds) {
    if (stream.is_timed && std::fabs(seconds) > kWrapSeconds / 2 &&
        std::fabs(seconds) < 2 * kWrapSeconds) {
        seconds -= std::copysign(kWrapSeconds, seconds);
    }
    return std::llround(seconds * GST_SECOND) + static_cast<GstClockTimeDiff>(stream.shift);
}

GstFlowReturn PushCaption(GstQuillcaption* self, const Caption& caption) {
    Stream& stream = *self->stream;
    const GstClockTimeDiff begin = SegmentTime(stream, caption.record.dStartTime);
    const GstClockTimeDiff end = SegmentTime(stream, caption.record.dEndTime);
    guint64 start = 0;
    guint64 stop = 0;
    if (begin >= end || end <= 0 ||
        gst_segment_clip(&stream.segment, GST_FORMAT_TIME,
                         static_cast<guint64>(std::max<GstClockTimeDiff>(begin, 0)),
                         static_cast<guint64>(end), &start, &stop) == FALSE) {
        GST_DEBUG_OBJECT(self, "never shown: %" GST_STIME_FORMAT " to %" GST_STIME_FORMAT,
                         GST_STIME_ARGS(begin), GST_STIME_ARGS(end));
        return GST_FLOW_OK;
    }
    FillGap(self, start);
    GstBuffer* const buffer = MakeBuffer(caption);
    GST_BUFFER_PTS(buffer) = start;
    GST_BUFFER_DURATION(buffer) = stop - start;
    SetPosition(self, std::max(stream.segment.position, stop));
    return gst_pad_push(self->srcpad, buffer);
}

GstFlowReturn PushCaptions(GstQuillcaption* self) {
    for (const std::string& trouble : self->stream->track->TakeTroubles()) {
        GST_ELEMENT_WARNING(self, STREAM, DECODE, ("Captions are missing."),
                            ("%s", trouble.c_str()));
    }
    GstFlowReturn result = GST_FLOW_OK;
    for (const Caption& caption : self->stream->track->TakeCaptions()) {
        result = PushCaption(self, caption);
        if (result != GST_FLOW_OK) {
            break;
        }
    }
    return result;
}

GstFlowReturn FinishTrack(GstQuillcaption* self) {
    if (self->stream->track == nullptr) {
        return GST_FLOW_OK;
    }
    self->stream->track->Finish();
    const GstFlowReturn result = PushCaptions(self);
    self->stream->track.reset();
    return result;
}

// Where upstream's segment is in time, its start is the video time of the cues, or the time that
// the track's first bytes have. Cues come relative to its whole seconds, on a clock of 32 bits, and
// are put back there.
void BeginTrack(GstQuillcaption* self, GstClockTime pts) {
    Stream& stream = *self->stream;
    const GstClockTime video_time = GST_CLOCK_TIME_IS_VALID(pts) ? pts : stream.segment.start;
    const guint64 ticks =
        stream.is_timed ? gst_util_uint64_scale(video_time, kTicksPerSecond, GST_SECOND) : 0;
    const guint64 low = ticks % kWrap;
    stream.shift = low / kTicksPerSecond * GST_SECOND +
                   gst_util_uint64_scale(ticks - low, GST_SECOND, kTicksPerSecond);
    GST_OBJECT_LOCK(self);
    const bool quiet = stream.quiet;
    GST_OBJECT_UNLOCK(self);
    stream.track = std::make_unique<Track>(*stream.loaded, static_cast<std::uint32_t>(low), quiet);
}

// In a stream without times a mark means nothing: whoever reads a file marks its first buffer, and
// a payload may hold the word.
bool BeginsTrack(const Stream& stream, GstBuffer* buffer, std::string_view bytes) {
    constexpr std::string_view kSignature = "WEBVTT";
    const bool is_marked = GST_BUFFER_IS_DISCONT(buffer) || GST_BUFFER_PTS_IS_VALID(buffer);
    return stream.is_timed && is_marked && bytes.substr(0, kSignature.size()) == kSignature;
}

GstFlowReturn TakeBytes(GstQuillcaption* self, GstBuffer* buffer, std::string_view bytes) {
    Stream& stream = *self->stream;
    if (stream.track != nullptr && BeginsTrack(stream, buffer, bytes)) {
        const GstFlowReturn result = FinishTrack(self);
        if (result != GST_FLOW_OK) {
            return result;
        }
        if (GST_BUFFER_PTS_IS_VALID(buffer)) {
            FillGap(self, GST_BUFFER_PTS(buffer));
        }
    }
    if (stream.track == nullptr) {
        BeginTrack(self, GST_BUFFER_PTS(buffer));
    } else if (GST_BUFFER_IS_DISCONT(buffer)) {
        stream.track->Break();
    }
    stream.track->Feed(bytes);
    return PushCaptions(self);
}

gboolean TakeSegment(GstQuillcaption* self, const GstSegment& upstream, guint32 seqnum) {
    Stream& stream = *self->stream;
    FinishTrack(self);
    stream.is_timed = upstream.format == GST_FORMAT_TIME;
    GST_OBJECT_LOCK(self);
    if (stream.is_timed) {
        stream.segment = upstream;
    } else if (stream.sought.has_value()) {
        stream.segment = *stream.sought;
    }
    stream.sought.reset();
    GST_OBJECT_UNLOCK(self);
    return SendSegment(self, seqnum);
}

}  // namespace

GstFlowReturn TakeBuffer(GstPad* /*pad*/, GstObject* parent, GstBuffer* buffer) {
    GstQuillcaption* const self = Self(parent);
    const MappedBuffer mapped(buffer);
    try {
        if (!self->stream->has_sent_segment) {
            SendSegment(self, gst_util_seqnum_next());
        }
        return TakeBytes(self, buffer, mapped.bytes());
    } catch (const std::bad_alloc&) {
        GST_ELEMENT_ERROR(self, RESOURCE, FAILED, ("Out of memory."), (nullptr));
        return GST_FLOW_ERROR;
    }
}

gboolean TakeEvent(GstPad* pad, GstObject* parent, GstEvent* event) {
    GstQuillcaption* const self = Self(parent);
    switch (GST_EVENT_TYPE(event)) {
        case GST_EVENT_CAPS:  // ours are others
            gst_event_unref(event);
            SendCaps(self);
            return TRUE;
        case GST_EVENT_SEGMENT: {
            const GstSegment* segment = nullptr;
            gst_event_parse_segment(event, &segment);
            const gboolean result = TakeSegment(self, *segment, gst_event_get_seqnum(event));
            gst_event_unref(event);
            return result;
        }
        case GST_EVENT_GAP: {
            GstClockTime start = 0;
            GstClockTime duration = GST_CLOCK_TIME_NONE;
            gst_event_parse_gap(event, &start, &duration);
            gst_event_unref(event);
            FillGap(self, GST_CLOCK_TIME_IS_VALID(duration) ? start + duration : start);
            return TRUE;
        }
        case GST_EVENT_EOS:
            if (!self->stream->has_sent_segment) {
                SendSegment(self, gst_event_get_seqnum(event));
            }
            FinishTrack(self);
            break;
        case GST_EVENT_FLUSH_STOP:
            self->stream->track.reset();
            self->stream->has_sent_segment = false;
            break;
        default:
            break;
    }
    return gst_pad_event_default(pad, parent, event);
}

void ForgetStream(GstQuillcaption* self) {
    Stream& stream = *self->stream;
    stream.track.reset();
    stream.sought.reset();
    stream.has_sent_caps = false;
    stream.has_sent_segment = false;
    stream.is_timed = false;
    gst_segment_init(&stream.segment, GST_FORMAT_TIME);
}

}  // namespace gstquillcaption
