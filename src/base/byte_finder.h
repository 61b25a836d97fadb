// Remembers where a byte occurs next.
#pragma once

#include <cassert>
#include <cstring>

namespace webvtt {

/// The first occurrence of the byte in [from, end), or end.
inline const char* find_byte(const char* from, const char* end, char wanted) {
    const void* const found = std::memchr(from, wanted, static_cast<std::size_t>(end - from));
    return found != nullptr ? static_cast<const char*>(found) : end;
}

/// Finds the next occurrence of one byte, looking at no byte of a chunk twice: a found place that
/// still lies ahead answers the next question too. Without this a chunk of lone carriage returns
/// would be searched to its end for a line feed once per line.
class ByteFinder {
  public:
    explicit ByteFinder(char wanted) : m_wanted(wanted) {}

    /// Starts on a new chunk, which may be empty. Nothing is looked for before it is asked for.
    void start() { m_found = nullptr; }

    /// The first occurrence in [from, end), or end. From start on, end stays the same and from
    /// never goes back.
    const char* find(const char* from, const char* end) {
        if (m_found < from) {
            m_found = find_byte(from, end, m_wanted);
        }
        assert(m_found == end || (m_found < end && *m_found == m_wanted));
        return m_found;
    }

  private:
    char m_wanted;
    const char* m_found = nullptr;
};

}  // namespace webvtt
