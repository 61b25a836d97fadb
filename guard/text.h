// A short text that is put together without the heap and without the C library's formatting, so
// that a signal handler may do it too.
#pragma once

#include <cstddef>

namespace guard {

/// What does not fit is cut off.
template <std::size_t kCapacity>
class Text {
  public:
    Text() { m_bytes[0] = '\0'; }

    Text& operator<<(const char* text) {
        while (*text != '\0') {
            add(*text++);
        }
        return *this;
    }
    Text& operator<<(unsigned long number) {
        char digits[24];
        char* digit = digits + sizeof digits - 1;
        *digit = '\0';
        do {
            *--digit = static_cast<char>('0' + number % 10);
            number /= 10;
        } while (number != 0);
        return *this << digit;
    }
    Text& operator<<(unsigned number) { return *this << static_cast<unsigned long>(number); }
    Text& operator<<(long number) {
        return number < 0 ? *this << "-" << -static_cast<unsigned long>(number)
                          : *this << static_cast<unsigned long>(number);
    }

    /// A handle as programs print it.
    Text& hexadecimal(unsigned long number) {
        *this << "0x";
        for (int shift = 28; shift >= 0; shift -= 4) {
            add("0123456789ABCDEF"[(number >> shift) & 0xF]);
        }
        return *this;
    }
    /// A text that is not the guard's own: a terminal must not obey what is in it.
    Text& foreign(const char* text) {
        for (; *text != '\0'; ++text) {
            add(*text >= ' ' && *text <= '~' ? *text : '?');
        }
        return *this;
    }

    bool empty() const { return m_size == 0; }
    std::size_t size() const { return m_size; }
    const char* c_str() const { return m_bytes; }

  private:
    void add(char byte) {
        if (m_size < kCapacity) {
            m_bytes[m_size++] = byte;
            m_bytes[m_size] = '\0';
        }
    }

    std::size_t m_size = 0;
    char m_bytes[kCapacity + 1];
};

/// What a finding adds to its mistake's sentence.
using Detail = Text<160>;

/// A line for standard error.
using Line = Text<700>;

}  // namespace guard
