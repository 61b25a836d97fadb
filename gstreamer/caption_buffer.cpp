#include "gstreamer/caption_buffer.h"

#include <cstring>

namespace gstquillcaption {
namespace {

// By the numbers of the record.
constexpr const gchar* kAlignments[] = {"start", "middle", "end", "left", "right"};
constexpr const gchar* kDirections[] = {"horizontal", "lr", "rl"};

template <std::size_t count>
const gchar* Name(const gchar* const (&names)[count], std::int32_t number) {
    return number >= 0 && static_cast<std::size_t>(number) < count ? names[number] : names[0];
}

void AddSettings(GstBuffer* buffer, const WebvttCueNode& record) {
    GstCustomMeta* const meta = gst_buffer_add_custom_meta(buffer, QUILLCAPTION_SETTINGS_META);
    if (meta == nullptr) {
        return;
    }
    gst_structure_set(gst_custom_meta_get_structure(meta),                             //
                      "line", G_TYPE_INT, record.i4Line,                               //
                      "snap-to-lines", G_TYPE_BOOLEAN, record.fgSnapToLines != 0,      //
                      "position", G_TYPE_INT, record.u1Position,                       //
                      "size", G_TYPE_INT, record.u1Size,                               //
                      "align", G_TYPE_STRING, Name(kAlignments, record.eTextAlign),    //
                      "vertical", G_TYPE_STRING, Name(kDirections, record.eVertical),  //
                      nullptr);
}

}  // namespace

void RegisterSettings() {
    static const gchar* tags[] = {nullptr};  // of no use to whoever changes sizes or colours
    if (gst_meta_get_info(QUILLCAPTION_SETTINGS_META) == nullptr) {
        gst_meta_register_custom(QUILLCAPTION_SETTINGS_META, tags, nullptr, nullptr, nullptr);
    }
}

GstBuffer* MakeBuffer(const Caption& caption) {
    // Bytes that are not UTF-8 become U+FFFD: renderers may rely on it, and the module checks
    // nothing.
    gchar* const text =
        g_utf8_make_valid(caption.text.data(), static_cast<gssize>(caption.text.size()));
    GstBuffer* const buffer = gst_buffer_new_wrapped(text, std::strlen(text));
    AddSettings(buffer, caption.record);
    return buffer;
}

}  // namespace gstquillcaption
