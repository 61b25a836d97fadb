// Remembers where a byte occurs next.
#pragma once

#include <cstring>

namespace webvtt {

/// Finds the next occurrence of one byte, looking at no byte of a chunk twice: a found place that
/// still lies ahead answers the next question too. Without this a chunk of lone carriage returns
/// would be searched to its end for a line feed once per line.
class ByteFinder {
  public:
    explicit ByteFinder(char wanted) : m_wanted(wanted) {}

    /// Forgets the last chunk.
    void reset() { m_found = nullptr; }

    /// The first occurrence in [from, end), or end. Between resets, end stays the same and from
    /// never goes back.
    const char* find(const char* from, const char* end) {
        if (m_found == nullptr || m_found < from) {
            const void* const found =
                std::memchr(from, m_wanted, static_cast<std::size_t>(end - from));
            m_found = found != nullptr ? static_cast<const char*>(found) : end;
        }
        return m_found;
    }

  private:
    char m_wanted;
    const char* m_found = nullptr;
};

}  // namespace webvtt
