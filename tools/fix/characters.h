// Characters that look like those of a timing line, or like nothing at all.
#ifndef TOOLS_FIX_CHARACTERS_H_
#define TOOLS_FIX_CHARACTERS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quill::fix {

// A text in the characters that it looks like: what quill check names as a look-alike is what that
// is taken for, every dash and bracket its plain one, and what nobody sees is left out. Arrows are
// kArrow, all else is as it is, or kOther beyond ASCII.
class Looks {
  public:
    static constexpr char kArrow = '\x01';
    static constexpr char kOther = '\x02';

    explicit Looks(std::string_view text);

    const std::string& text() const { return text_; }
    // Where the character at that place of text() begins and ends in the text as it is.
    std::size_t Begin(std::size_t index) const { return begins_[index]; }
    std::size_t End(std::size_t index) const { return ends_[index]; }

  private:
    std::string text_;
    std::vector<std::uint32_t> begins_;  // one more than there are characters
    std::vector<std::uint32_t> ends_;
};

// Nothing is to be seen on it; true for nothing at all.
bool LooksBlank(std::string_view text);

}  // namespace quill::fix

#endif  // TOOLS_FIX_CHARACTERS_H_
