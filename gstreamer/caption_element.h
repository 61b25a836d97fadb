// The element "quillcaption", as GStreamer sees it.
#ifndef GSTREAMER_CAPTION_ELEMENT_H_
#define GSTREAMER_CAPTION_ELEMENT_H_

#include <gst/gst.h>

#include <memory>
#include <optional>
#include <string>

#include "gstreamer/loaded_module.h"
#include "gstreamer/track.h"

GST_DEBUG_CATEGORY_EXTERN(quillcaption_debug);
#define GST_CAT_DEFAULT quillcaption_debug

namespace gstquillcaption {

// What a GObject, which is zeroed memory, cannot hold itself. Properties are read and written under
// the object lock; all else belongs to the streaming thread, `sought` excepted.
//
// There is no thread here beside GStreamer's: the module does not care which thread calls it, a
// call takes time in proportion to a line, and what has to be kept apart is kept apart by
// ModuleLock().
struct Stream {
    std::string module;  // a file; empty: the one that belongs to the plug-in
    bool guard = false;
    bool quiet = false;

    std::unique_ptr<LoadedModule> loaded;  // from READY on
    std::unique_ptr<Track> track;          // from the first bytes on
    GstSegment segment;                    // in time, as it goes downstream
    bool has_sent_caps = false;
    bool has_sent_segment = false;
    bool is_timed = false;   // upstream's segment is in time, and not in bytes
    GstClockTime shift = 0;  // from the module's times to those of the segment
    std::optional<GstSegment>
        sought;  // by a seek, under the object lock; the next segment is this one
};

}  // namespace gstquillcaption

struct GstQuillcaption {
    GstElement element;
    GstPad* sinkpad;
    GstPad* srcpad;
    gstquillcaption::Stream* stream;
};

struct GstQuillcaptionClass {
    GstElementClass parent_class;
};

GType gst_quillcaption_get_type();

#endif  // GSTREAMER_CAPTION_ELEMENT_H_
