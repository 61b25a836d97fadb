#include "guard/log_file.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "guard/report.h"
#include "guard/without_signals.h"
#include "support/session_log.h"

namespace guard {
namespace {

namespace session_log = support::session_log;

constexpr std::string_view kStoppedLine = "{\"stopped\":\"limit\"}\n";
static_assert(std::string_view(session_log::field::kStopped) == "stopped" &&
              std::string_view(session_log::kLimit) == "limit");

std::string with_process(std::string path) {
    const std::string number = std::to_string(getpid());
    for (std::size_t at = 0; (at = path.find("%p", at)) != std::string::npos;) {
        path.replace(at, 2, number);
        at += number.size();
    }
    return path;
}

/// 0, or why not all of it was written.
int write_all(int file, std::string_view bytes) {
    const WithoutSignals without;
    ssize_t size = 0;
    do {
        size = ::write(file, bytes.data(), bytes.size());
    } while (size < 0 && errno == EINTR);
    if (size < 0) {
        return errno;
    }
    return static_cast<std::size_t>(size) == bytes.size() ? 0 : ENOSPC;
}

}  // namespace

void LogFile::open(const std::string& path, unsigned most) {
    const std::string name = with_process(path);
    m_path = Text<300>();
    m_path.foreign(name.c_str());
    m_left = most != 0 ? most : ~0ULL;
    // A pipe that nobody reads must not keep the host waiting; files don't mind.
    m_file = ::open(name.c_str(),
                    O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_LARGEFILE,
                    0666);
    if (!is_open()) {
        fail(errno);
        return;
    }
    struct stat64 file = {};
    fstat64(m_file, &file);
    m_device = file.st_dev;
    m_inode = file.st_ino;
}

void LogFile::write(std::string_view line) {
    while (m_is_busy.test_and_set(std::memory_order_acquire)) {
        sched_yield();
    }
    const bool was_open = is_open();
    const bool fits = line.size() + kStoppedLine.size() <= m_left;
    const std::string_view written = fits ? line : kStoppedLine;
    m_left -= written.size();
    const int error = !was_open      ? 0
                      : line.empty() ? ENOMEM
                      : is_ours()    ? write_all(m_file, written)
                                     : EBADF;
    if (error != 0 || !fits) {
        close();
    }
    m_is_busy.clear(std::memory_order_release);
    if (error != 0) {
        fail(error);
    } else if (was_open && !fits) {
        Line said;
        said << "the log " << m_path.c_str()
             << " has reached QUILLCAPTION_GUARD_LOG_MAX; nothing is recorded from here on";
        write_line(said);
    }
}

bool LogFile::is_ours() const {
    struct stat64 now = {};
    return fstat64(m_file, &now) == 0 && now.st_dev == m_device && now.st_ino == m_inode;
}

void LogFile::close() {
    if (is_open() && is_ours()) {
        ::close(m_file);
    }
    m_file = -1;
}

void LogFile::leave() {
    close();
    m_is_busy.clear();
}

void LogFile::fail(int error) {
    Line line;
    line << "cannot record to " << m_path.c_str() << ": ";
    line.foreign(std::strerror(error))
        << "; going on without. Set QUILLCAPTION_GUARD_LOG to a file that can be written, on a "
           "system with room for it";
    write_line(line);
}

}  // namespace guard
