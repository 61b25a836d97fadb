#include "support/stdout_capture.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>

namespace support {
namespace {

void flush_streams() {
    std::cout.flush();
    std::fflush(stdout);
}

/// A file without a name; descriptor 1 leads to it, so lines of printf and of std::cout lie in it
/// as a host that redirects its output would find them.
std::FILE* open_file() {
    std::FILE* const file = std::tmpfile();
    if (file == nullptr) {
        std::perror("cannot capture standard output");
        std::abort();
    }
    return file;
}

/// Open for the rest of the program.
int null_device() {
    static const int kDescriptor = open("/dev/null", O_WRONLY | O_CLOEXEC);
    return kDescriptor;
}

}  // namespace

Redirection::Redirection(int descriptor) {
    flush_streams();
    m_saved = dup(STDOUT_FILENO);
    if (m_saved < 0 || dup2(descriptor, STDOUT_FILENO) < 0) {
        std::perror("cannot redirect standard output");
        std::abort();
    }
}

void Redirection::end() {
    if (m_saved >= 0) {
        flush_streams();
        dup2(m_saved, STDOUT_FILENO);
        close(m_saved);
        m_saved = -1;
    }
}

std::FILE* Redirection::open_original() const {
    return fdopen(dup(m_saved), "w");
}

Quiet::Quiet() : Redirection(null_device()) {}

StdoutCapture::StdoutCapture() : m_file(open_file()), m_redirection(fileno(m_file)) {}

std::string StdoutCapture::take() {
    m_redirection.end();
    return peek();
}

std::string StdoutCapture::more() {
    flush_streams();
    std::string bytes = read_from(m_told);
    m_told += bytes.size();
    return bytes;
}

std::string StdoutCapture::read_from(std::size_t begin) const {
    std::string bytes;
    char part[4096];
    for (;;) {
        const off_t at = static_cast<off_t>(begin) + static_cast<off_t>(bytes.size());
        const ssize_t size = pread(fileno(m_file), part, sizeof(part), at);
        if (size <= 0) {
            return bytes;
        }
        bytes.append(part, static_cast<std::size_t>(size));
    }
}

}  // namespace support
