#include "guard/report.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>

namespace guard {
namespace {

/// While it lives, a write to a pipe that nobody reads does not end the process.
class WithoutSigpipe {
  public:
    WithoutSigpipe() {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        m_was_pending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_before);
    }
    WithoutSigpipe(const WithoutSigpipe&) = delete;
    WithoutSigpipe& operator=(const WithoutSigpipe&) = delete;
    ~WithoutSigpipe() {
        if (!m_was_pending) {
            const timespec at_once = {0, 0};
            sigtimedwait(&m_pipe, nullptr, &at_once);
        }
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

  private:
    sigset_t m_pipe;
    sigset_t m_before;
    bool m_was_pending;
};

}  // namespace

void write_line(const Line& line) {
    const int error = errno;
    Text<760> whole;
    whole << "quillcaption-guard: " << line.c_str() << "\n";
    const WithoutSigpipe without;
    while (write(STDERR_FILENO, whole.c_str(), whole.size()) < 0 && errno == EINTR) {
    }
    errno = error;
}

}  // namespace guard
