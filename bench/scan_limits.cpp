#include "bench/scan_limits.h"

#include <cstring>

namespace bench {
namespace {

/// Calls visit(begin, size) for every line; a line is counted without its line feed.
template <typename Visit>
std::size_t for_each_line(std::string_view text, Visit visit) {
    std::size_t count = 0;
    const char* begin = text.data();
    const char* const end = begin + text.size();
    while (const void* const found =
               std::memchr(begin, '\n', static_cast<std::size_t>(end - begin))) {
        const char* const line_end = static_cast<const char*>(found);
        visit(begin, static_cast<std::size_t>(line_end - begin));
        begin = line_end + 1;
        ++count;
    }
    return count;
}

}  // namespace

std::size_t scan_lines(std::string_view text) {
    return for_each_line(text, [](const char*, std::size_t) {});
}

std::size_t copy_lines(std::string_view text) {
    return for_each_line(text, [](const char* begin, std::size_t size) {
        char* const copy = new char[size + 1];
        std::memcpy(copy, begin, size);
        copy[size] = '\0';
        // Says that somebody might read the copy, so that the compiler must make it.
        asm volatile("" : : "r"(copy) : "memory");
        delete[] copy;
    });
}

}  // namespace bench
