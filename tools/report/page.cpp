#include "tools/report/page.h"

#include <string_view>

namespace quill::report {
namespace {

// In UTF-8. What could end the block of data, or begin a comment in it, has no bracket any more,
// and what is no letter for a script has its number.
std::string ForMarkup(const Json& data) {
    const std::string text = console::JsonText(data, console::Letters::kAll);
    std::string safe;
    safe.reserve(text.size() + text.size() / 16);
    for (std::size_t index = 0; index < text.size(); ++index) {
        const std::string_view rest = std::string_view(text).substr(index, 3);
        if (rest[0] == '<' || rest[0] == '>' || rest[0] == '&') {
            static constexpr char kHex[] = "0123456789abcdef";
            const auto byte = static_cast<unsigned char>(rest[0]);
            safe += std::string("\\u00") + kHex[byte >> 4u] + kHex[byte & 15u];
        } else if (rest == "\xE2\x80\xA8" || rest == "\xE2\x80\xA9") {
            safe += rest[2] == '\xA8' ? "\\u2028" : "\\u2029";
            index += 2;
        } else {
            safe += rest[0];
        }
    }
    return safe;
}

// The marks stand in the page once, and are looked for before the data is in it.
void Replace(std::string& page, std::string_view mark, std::string_view text) {
    page.replace(page.find(mark), mark.size(), text);
}

}  // namespace

std::string MakePage(const Json& data, bool has_video) {
    std::string page = kPage;
    Replace(page, kMediaMark, has_video ? "media-src 'self' file:" : "media-src 'none'");
    Replace(page, kDataMark, ForMarkup(data));
    return page;
}

}  // namespace quill::report
