#include "payload/references.h"

#include "base/text.h"
#include "cue/cue_constants.h"

namespace webvtt {
namespace {

const Reference kReferences[] = {
    {ESCAPE_AMP, "&"},
    {ESCAPE_LT, "<"},
    {ESCAPE_GT, ">"},
    {ESCAPE_LRM, "\xE2\x80\x8E"},  // U+200E left-to-right mark
    {ESCAPE_RLM, "\xE2\x80\x8F"},  // U+200F right-to-left mark
    {ESCAPE_NBSP, "\xC2\xA0"},     // U+00A0 no-break space
};

}  // namespace

const Reference* find_reference(std::string_view name) {
    for (const Reference& reference : kReferences) {
        if (same_word(reference.name.text, name)) {
            return &reference;
        }
    }
    return nullptr;
}

}  // namespace webvtt
