#include "bench/quiet_printing.h"

#include <dlfcn.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

bool is_quiet = false;
std::size_t dropped = 0;

bool drops(std::FILE* stream) {
    if (!is_quiet || stream != stdout) {
        return false;
    }
    ++dropped;
    return true;
}

}  // namespace

namespace bench {

void set_quiet_printing(bool quiet) {
    is_quiet = quiet;
}

std::size_t dropped_prints() {
    return dropped;
}

}  // namespace bench

// Each ends in a function that is not replaced, or it would call itself.
extern "C" {

int vfprintf(std::FILE* stream, const char* format, va_list arguments) {
    static const auto real =
        reinterpret_cast<int (*)(std::FILE*, const char*, va_list)>(dlsym(RTLD_NEXT, "vfprintf"));
    return drops(stream) ? 0 : real(stream, format, arguments);
}

int vprintf(const char* format, va_list arguments) {
    return vfprintf(stdout, format, arguments);
}

int printf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int result = vfprintf(stdout, format, arguments);
    va_end(arguments);
    return result;
}

std::size_t fwrite(const void* data, std::size_t size, std::size_t count, std::FILE* stream) {
    return drops(stream) ? count : fwrite_unlocked(data, size, count, stream);
}

int putc(int character, std::FILE* stream) {
    const char byte = static_cast<char>(character);
    return fwrite(&byte, 1, 1, stream) == 1 ? character : EOF;
}

int putchar(int character) {
    return putc(character, stdout);
}

int fputs(const char* text, std::FILE* stream) {
    return fwrite(text, 1, std::strlen(text), stream) == std::strlen(text) ? 1 : EOF;
}

int puts(const char* text) {
    return fputs(text, stdout) == EOF ? EOF : putchar('\n');
}

}  // extern "C"
