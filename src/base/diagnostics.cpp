#include "base/diagnostics.h"

#include <cstdarg>
#include <cstdio>
#include <iostream>

namespace webvtt {
namespace {

// Makes std::cout, in a host written in C too. The <iostream> of newer compilers leaves that to
// libraries newer than a board may have (src/CMakeLists.txt keeps it from asking for one).
const std::ios_base::Init kStreams;

}  // namespace

void print_error(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::printf("[WEBVTT] ERR:: ");
    std::vprintf(format, arguments);
    std::putchar('\n');
    va_end(arguments);
}

void print_trace(std::string_view first, std::string_view second) {
    // write() and not <<: a width that the host left in the stream must not pad the line.
    std::cout.write(first.data(), static_cast<std::streamsize>(first.size()));
    std::cout.write(second.data(), static_cast<std::streamsize>(second.size()));
    std::cout << std::endl;
}

}  // namespace webvtt
