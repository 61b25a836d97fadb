// Input as a careless host would hand it over: it ends where it says and is gone after the call.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace support {

/// Bytes in a heap block of exactly their size, so that a sanitizer sees any read beyond them. The
/// block is overwritten before it is freed: whoever kept a pointer into it reads rubbish.
class ExactBlock {
  public:
    explicit ExactBlock(std::string_view bytes)
        : m_size(bytes.size()), m_data(new char[bytes.size()]) {
        bytes.copy(m_data.get(), m_size);
    }
    ExactBlock(const ExactBlock&) = delete;
    ExactBlock& operator=(const ExactBlock&) = delete;
    ~ExactBlock() {
        std::memset(m_data.get(), kRubbish, m_size);
        // The compiler must not leave that out because the block is freed next.
        asm volatile("" : : "r"(m_data.get()) : "memory");
    }

    char* data() { return m_data.get(); }
    unsigned size() const { return static_cast<unsigned>(m_size); }

  private:
    static constexpr int kRubbish = 0xA5;

    std::size_t m_size;
    std::unique_ptr<char[]> m_data;
};

/// The same for a zero-terminated text. A text that holds a zero byte ends there for its readers.
class ExactText {
  public:
    explicit ExactText(std::string_view text)
        : m_block(std::string(text).append(1, '\0')), m_length(std::strlen(m_block.data())) {}

    const char* c_str() { return m_block.data(); }
    /// As strlen measures it.
    unsigned length() const { return static_cast<unsigned>(m_length); }

  private:
    ExactBlock m_block;
    std::size_t m_length;
};

}  // namespace support
