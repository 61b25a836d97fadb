// What is written to standard output, byte by byte and in order.
//
// Descriptor 1 leads to a file meanwhile, so lines of printf and of std::cout lie in it as a host
// that redirects its output would find them.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>

namespace support {

/// Captures from its construction until take() or its destruction. Captures may be nested: the
/// inner one gets the bytes.
class StdoutCapture {
  public:
    StdoutCapture() : m_file(std::tmpfile()) {
        flush_streams();
        m_saved = dup(STDOUT_FILENO);
        if (m_file == nullptr || m_saved < 0 || dup2(fileno(m_file), STDOUT_FILENO) < 0) {
            std::perror("cannot capture standard output");
            std::abort();
        }
    }
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;
    ~StdoutCapture() {
        restore();
        std::fclose(m_file);
    }

    /// Ends the capture and gives what was written since it began.
    std::string take() {
        restore();
        return peek();
    }

    /// What has reached the descriptor by now; what waits in a stream's buffer is not part of it.
    std::string peek() const {
        std::string bytes;
        char part[4096];
        off_t at = 0;
        for (;;) {
            const ssize_t size = pread(fileno(m_file), part, sizeof(part), at);
            if (size <= 0) {
                return bytes;
            }
            bytes.append(part, static_cast<std::size_t>(size));
            at += static_cast<off_t>(size);
        }
    }

  private:
    static void flush_streams() {
        std::cout.flush();
        std::fflush(stdout);
    }

    void restore() {
        if (m_saved >= 0) {
            flush_streams();
            dup2(m_saved, STDOUT_FILENO);
            close(m_saved);
            m_saved = -1;
        }
    }

    std::FILE* m_file;
    int m_saved = -1;
};

/// What a call writes to standard output. What it throws passes through.
template <typename Call>
std::string output_of(Call&& call) {
    StdoutCapture capture;
    std::forward<Call>(call)();
    return capture.take();
}

}  // namespace support
