// Texts in other encodings than UTF-8, and packed ones.
#ifndef TOOLS_FIX_ENCODING_H_
#define TOOLS_FIX_ENCODING_H_

#include <optional>
#include <string>
#include <string_view>

namespace quill::fix {

// Of a text in UTF-16 or UTF-32, as its byte order mark or the letters of its signature show:
// "UTF-16LE", "UTF-32BE" and so on; nullptr for another text.
const char* FindUnicode(std::string_view bytes);

// The text in UTF-8, without the byte order mark of UTF-16 and UTF-32. Throws Failure, in which
// `name` is the file, when the text is not in that encoding, or the encoding is not known to the C
// library. What has been converted gives the same bytes when it is converted back.
std::string ToUtf8(std::string_view bytes, const std::string& encoding, const std::string& name);

bool IsGzip(std::string_view bytes);
// Has the program gzip unpack it. Throws Failure when it cannot, or there is more than `most`.
std::string Unpack(std::string_view bytes, std::size_t most, const std::string& name);

}  // namespace quill::fix

#endif  // TOOLS_FIX_ENCODING_H_
