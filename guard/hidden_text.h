// Text that nobody is to read, and that means the same to the module.
//
// Letters become "x" and "X", digits "0", a character beyond ASCII another one of as many bytes,
// where they are text. What the module looks at stays: names of tags and of references, times,
// settings. All is decided byte by byte and never looked at again, for a chunk may end anywhere.
#pragma once

#include <cstdint>
#include <string_view>

namespace guard {

/// What stands in a text in place of the byte.
///
/// The bytes of the characters that references stand for (a no-break space, direction marks) stay,
/// wherever they are: in a record they can't be told from others.
char hidden_byte(char byte);

bool is_letter_or_digit(char byte);

/// Words of which a text may be one.
struct Words {
    const std::string_view* begin;
    std::uint8_t count;  // at most 16
};

/// Follows a text as long as it may become one of some words.
class WordPrefix {
  public:
    explicit WordPrefix(Words words)
        : m_words(words), m_possible(static_cast<std::uint16_t>((1U << words.count) - 1)) {}

    /// Whether the text with this byte behind it still may be one.
    bool add(char byte);
    /// Whether it is one.
    bool is_word() const { return !word().empty(); }
    /// The word that it is; empty when it is none.
    std::string_view word() const;
    std::size_t size() const { return m_size; }

  private:
    Words m_words;
    std::uint16_t m_possible;
    std::uint8_t m_size = 0;
};

/// A cue's text, as a record has it. What looks like the beginning of a reference stays.
class TextHider {
  public:
    char hide(char byte);

    /// Whether what has been hidden ends in a reference but for its ";".
    bool ends_in_reference() const { return m_is_in_name && m_name.is_word(); }
    /// And in that for "&", behind which the next may seem to begin.
    bool ends_in_ampersand() const { return m_is_in_name && m_name.word() == "amp"; }

  private:
    static WordPrefix references();

    bool m_is_in_name = false;
    WordPrefix m_name = references();
};

/// A tag's name, which stays as far as it may become that of a tag that there is.
class TagNameHider {
  public:
    char hide(char byte);

  private:
    static WordPrefix tags();

    WordPrefix m_name = tags();
};

/// What may be a time: stays up to its first letter, which no time has.
class TimeHider {
  public:
    char hide(char byte);

    bool is_hiding() const { return m_is_hiding; }

  private:
    bool m_is_hiding = false;
};

/// A cue's settings, of which those stay that there are.
class SettingsHider {
  public:
    char hide(char byte);

  private:
    static WordPrefix names();

    WordPrefix m_name = names();
    bool m_keeps_value = false;
};

/// A line that may be a header, a block's identifier or its timing line. Of one that is none of
/// them keywords stay.
class LineHider {
  public:
    char hide(char byte);

    /// Whether there was an arrow.
    bool has_arrow() const { return m_has_arrow; }
    /// Whether what was before the arrow may be a time.
    bool may_begin_with_time() const { return !m_start.is_hiding() && !m_is_behind_keyword; }

  private:
    static WordPrefix keywords();
    char hide_start(char byte);
    char hide_behind_arrow(char byte);
    void find_arrow(char byte);

    WordPrefix m_keyword = keywords();
    bool m_is_in_keyword = true;
    bool m_is_behind_keyword = false;
    bool m_is_header = false;  ///< whose values stay
    unsigned m_dashes = 0;
    bool m_has_arrow = false;
    TimeHider m_start;
    TimeHider m_end;
    bool m_has_end = false;  ///< the second time has begun
    bool m_is_in_settings = false;
    SettingsHider m_settings;
};

/// A track's first line, of which only the signature stays.
class FirstLineHider {
  public:
    char hide(char byte);

  private:
    static WordPrefix signatures();

    WordPrefix m_signature = signatures();
};

}  // namespace guard
