// Bytes that grow, in memory that is not the host's operator new.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

namespace guard {

/// Takes no memory before the first byte. When memory runs out it holds nothing from then on.
class Bytes {
  public:
    Bytes() = default;
    Bytes(Bytes&& other) noexcept
        : m_data(std::exchange(other.m_data, nullptr)),
          m_size(std::exchange(other.m_size, 0)),
          m_capacity(std::exchange(other.m_capacity, 0)),
          m_is_lost(other.m_is_lost) {}
    Bytes& operator=(Bytes&&) = delete;
    ~Bytes() { std::free(m_data); }

    Bytes& operator<<(char byte) {
        if (has_room(1)) {
            m_data[m_size++] = byte;
        }
        return *this;
    }
    Bytes& operator<<(std::string_view bytes) {
        if (!bytes.empty() && has_room(bytes.size())) {
            std::memcpy(m_data + m_size, bytes.data(), bytes.size());
            m_size += bytes.size();
        }
        return *this;
    }

    std::string_view view() const { return {m_data, m_size}; }
    char* data() { return m_data; }
    std::size_t size() const { return m_size; }
    /// Memory ran out.
    bool is_lost() const { return m_is_lost; }

  private:
    bool has_room(std::size_t more) {
        if (m_is_lost) {
            return false;
        }
        if (m_data != nullptr && m_size + more <= m_capacity) {
            return true;
        }
        void* const grown =
            more <= kMost - m_size ? std::realloc(m_data, capacity_for(m_size + more)) : nullptr;
        if (grown == nullptr) {
            m_is_lost = true;
            m_size = 0;
            return false;
        }
        m_data = static_cast<char*>(grown);
        m_capacity = capacity_for(m_size + more);
        return true;
    }

    /// Few different sizes, none so small that the allocator keeps it for later: the heap is seen
    /// to be as it was.
    static std::size_t capacity_for(std::size_t size) {
        std::size_t capacity = 2048;
        while (capacity < size) {
            capacity *= 2;
        }
        return capacity;
    }

    static constexpr std::size_t kMost = std::size_t{1} << 30;

    char* m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
    bool m_is_lost = false;
};

}  // namespace guard
