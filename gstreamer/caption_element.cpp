#include "gstreamer/caption_element.h"

#include <exception>

#include "gstreamer/caption_buffer.h"
#include "gstreamer/data_flow.h"
#include "gstreamer/seeking.h"

GST_DEBUG_CATEGORY(quillcaption_debug);

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"  // the framework's macro is meant for C as well
G_DEFINE_TYPE(GstQuillcaption, gst_quillcaption, GST_TYPE_ELEMENT)
#pragma GCC diagnostic pop

namespace {

using gstquillcaption::Stream;

enum Property : guint { kModule = 1, kGuard, kQuiet };

GstStaticPadTemplate sink_template = GST_STATIC_PAD_TEMPLATE(
    "sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS("application/x-subtitle-vtt; text/vtt"));
GstStaticPadTemplate src_template = GST_STATIC_PAD_TEMPLATE(
    "src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS(QUILLCAPTION_TEXT_CAPS));

GstQuillcaption* Self(gpointer object) {
    return static_cast<GstQuillcaption*>(object);
}

void SetProperty(GObject* object, guint id, const GValue* value, GParamSpec* spec) {
    Stream& stream = *Self(object)->stream;
    GST_OBJECT_LOCK(object);
    switch (id) {
        case kModule: {
            const gchar* const name = g_value_get_string(value);
            stream.module = name != nullptr ? name : "";
            break;
        }
        case kGuard:
            stream.guard = g_value_get_boolean(value) != FALSE;
            break;
        case kQuiet:
            stream.quiet = g_value_get_boolean(value) != FALSE;
            break;
        default:
            G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    }
    GST_OBJECT_UNLOCK(object);
}

std::string ModuleOf(const Stream& stream) {
    return stream.module.empty() ? gstquillcaption::DefaultModule() : stream.module;
}

void GetProperty(GObject* object, guint id, GValue* value, GParamSpec* spec) {
    const Stream& stream = *Self(object)->stream;
    GST_OBJECT_LOCK(object);
    switch (id) {
        case kModule:
            g_value_set_string(value, ModuleOf(stream).c_str());
            break;
        case kGuard:
            g_value_set_boolean(value, static_cast<gboolean>(stream.guard));
            break;
        case kQuiet:
            g_value_set_boolean(value, static_cast<gboolean>(stream.quiet));
            break;
        default:
            G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    }
    GST_OBJECT_UNLOCK(object);
}

bool LoadModule(GstQuillcaption* self) {
    GST_OBJECT_LOCK(self);
    std::string path = ModuleOf(*self->stream);
    if (self->stream->guard) {
        path = gstquillcaption::GuardBeside(path);
    }
    GST_OBJECT_UNLOCK(self);
    try {
        self->stream->loaded = std::make_unique<gstquillcaption::LoadedModule>(path);
        GST_INFO_OBJECT(self, "loaded %s", path.c_str());
        return true;
    } catch (const std::exception& error) {
        GST_ELEMENT_ERROR(
            self, LIBRARY, INIT,
            ("No caption module: %s. Name one with the property module; quill inspect "
             "says why a file cannot be one.",
             error.what()),
            ("%s", path.c_str()));
        return false;
    }
}

GstStateChangeReturn ChangeState(GstElement* element, GstStateChange change) {
    GstQuillcaption* const self = Self(element);
    if (change == GST_STATE_CHANGE_NULL_TO_READY && !LoadModule(self)) {
        return GST_STATE_CHANGE_FAILURE;
    }
    const GstStateChangeReturn result =
        GST_ELEMENT_CLASS(gst_quillcaption_parent_class)->change_state(element, change);
    if (change == GST_STATE_CHANGE_PAUSED_TO_READY) {
        gstquillcaption::ForgetStream(self);
    } else if (change == GST_STATE_CHANGE_READY_TO_NULL) {
        self->stream->loaded.reset();
    }
    return result;
}

void Finalize(GObject* object) {
    delete Self(object)->stream;
    G_OBJECT_CLASS(gst_quillcaption_parent_class)->finalize(object);
}

void InstallProperties(GObjectClass* object_class) {
    constexpr auto kFlags = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS |
                                                     GST_PARAM_MUTABLE_READY);
    g_object_class_install_property(
        object_class, kModule,
        g_param_spec_string("module", "Module",
                            "File of the caption module; by default the one that was built or "
                            "installed with this plug-in",
                            nullptr, kFlags));
    g_object_class_install_property(
        object_class, kGuard,
        g_param_spec_boolean(
            "guard", "Guard",
            "Load quillcaption-guard.so from the module's folder in its place, which "
            "checks every call and can record them",
            FALSE, kFlags));
    g_object_class_install_property(
        object_class, kQuiet,
        g_param_spec_boolean("quiet", "Quiet",
                             "Drop what the module prints on standard output, but nothing of "
                             "what other threads print there",
                             FALSE, kFlags));
}

gboolean InitPlugin(GstPlugin* plugin) {
    GST_DEBUG_CATEGORY_INIT(quillcaption_debug, "quillcaption", 0, "WebVTT captions");
    gstquillcaption::RegisterSettings();
    return gst_element_register(plugin, "quillcaption", GST_RANK_SECONDARY,
                                gst_quillcaption_get_type());
}

}  // namespace

static void gst_quillcaption_class_init(GstQuillcaptionClass* klass) {
    GObjectClass* const object_class = G_OBJECT_CLASS(klass);
    object_class->set_property = SetProperty;
    object_class->get_property = GetProperty;
    object_class->finalize = Finalize;
    InstallProperties(object_class);

    GstElementClass* const element_class = GST_ELEMENT_CLASS(klass);
    element_class->change_state = ChangeState;
    gst_element_class_add_static_pad_template(element_class, &sink_template);
    gst_element_class_add_static_pad_template(element_class, &src_template);
    gst_element_class_set_static_metadata(element_class, "WebVTT captions",
                                          "Codec/Decoder/Subtitle",
                                          "Turns WebVTT tracks, whole or as they arrive, into "
                                          "timed text with the module quillcaption.so",
                                          "The maintainers of quillcaption");
}

static void gst_quillcaption_init(GstQuillcaption* self) {
    self->stream = new Stream;
    gst_segment_init(&self->stream->segment, GST_FORMAT_TIME);
    self->sinkpad = gst_pad_new_from_static_template(&sink_template, "sink");
    gst_pad_set_chain_function(self->sinkpad, gstquillcaption::TakeBuffer);
    gst_pad_set_event_function(self->sinkpad, gstquillcaption::TakeEvent);
    gst_element_add_pad(GST_ELEMENT(self), self->sinkpad);
    self->srcpad = gst_pad_new_from_static_template(&src_template, "src");
    gst_pad_set_event_function(self->srcpad, gstquillcaption::TakeUpstreamEvent);
    gst_pad_set_query_function(self->srcpad, gstquillcaption::AnswerQuery);
    gst_pad_use_fixed_caps(self->srcpad);
    gst_element_add_pad(GST_ELEMENT(self), self->srcpad);
}

#define PACKAGE "quillcaption"
// The licence is not chosen yet.
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, quillcaption,
                  "WebVTT captions for 32-bit players", InitPlugin, QUILLCAPTION_VERSION,
                  GST_LICENSE_UNKNOWN, PACKAGE, "quillcaption")
