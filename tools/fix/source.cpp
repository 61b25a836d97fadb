#include "tools/fix/source.h"

#include <cstdint>
#include <optional>
#include <utility>

#include "tools/fix/encoding.h"
#include "tools/fix/line_ends.h"
#include "tools/host/track_reader.h"

namespace quill::fix {
namespace {

// Its lines, their copies and what is stated of them must fit into the memory of a 32-bit program.
constexpr std::size_t kLargestTrack = 64u << 20;

}  // namespace

Source ReadSource(const std::string& name, const std::string& encoding,
                  const check::CodeFilter& filter) {
    host::TrackReader reader(name, std::nullopt);
    Source source{reader.name(), reader.ReadAll(kLargestTrack, [] {}), "", {}};
    source.bytes.resize(static_cast<std::size_t>(reader.offset()));  // less a line end put to it
    source.text = source.bytes;
    const auto note = [&source](const char* code, const std::string& words) {
        source.edits.push_back({1, &check::CodeNamed(code), words, "", ""});
    };
    if (IsGzip(source.text) && filter.Lets(check::CodeNamed("compressed"))) {
        source.text = Unpack(source.text, kLargestTrack, source.name);
        note("compressed", "unpacked");
    }
    const char* const unicode = encoding.empty() ? FindUnicode(source.text) : nullptr;
    if (unicode != nullptr && filter.Lets(check::CodeNamed("utf-16"))) {
        source.text = ToUtf8(source.text, unicode, source.name);
        note("utf-16", std::string("converted from ") + unicode);
    } else if (!encoding.empty()) {
        std::string text = ToUtf8(source.text, encoding, source.name);
        if (text != source.text) {
            note("not-utf-8", "converted from " + encoding);
            source.text = std::move(text);
        }
    }
    if (filter.Lets(check::CodeNamed("signature"))) {
        if (std::optional<LineEnds> ends = FindLineEnds(source.text)) {
            source.text = std::move(ends->text);
            note("signature", "lines end in a line feed now, not in " + ends->name);
        }
    }
    return source;
}

}  // namespace quill::fix
