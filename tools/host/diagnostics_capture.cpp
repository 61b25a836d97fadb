#include "tools/host/diagnostics_capture.h"

#include <stdio_ext.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <string>
#include <string_view>

#include "tools/console/escape.h"
#include "tools/console/failure.h"

namespace quill::host {
namespace {

void ShowOnStandardError(int file, off_t size) {
    std::array<char, 16384> buffer;
    std::string line;  // what is read of the last line
    for (off_t position = 0; position < size;) {
        const ssize_t count = pread(file, buffer.data(), buffer.size(), position);
        if (count <= 0) {
            break;
        }
        position += count;
        std::string_view read(buffer.data(), static_cast<std::size_t>(count));
        // Whole lines at a time, so that no UTF-8 character is taken apart by the buffer's end.
        const std::size_t whole = position < size ? read.rfind('\n') + 1 : read.size();
        if (whole > 0) {
            line += read.substr(0, whole);
            console::WriteFully(STDERR_FILENO, console::Escape(line, console::LineFeeds::kKeep));
            line.clear();
            read.remove_prefix(whole);
        }
        line += read;
    }
}

}  // namespace

DiagnosticsCapture::DiagnosticsCapture(Mode mode)
    : mode_(mode),
      original_(console::DuplicatePrivately(STDOUT_FILENO)),
      file_(console::UnnamedFile()) {
    if (!original_.valid() || !file_.valid() || dup2(file_.get(), STDOUT_FILENO) < 0) {
        throw console::Failure(console::kExitUsage, "no file for the module's diagnostics: " +
                                                        console::ErrorText(errno));
    }
}

DiagnosticsCapture::~DiagnosticsCapture() {
    if (mode_ == Mode::kCollect) {
        mode_ = Mode::kDrop;
    }
    Drain();
    dup2(original_.get(), STDOUT_FILENO);
}

void DiagnosticsCapture::Drain() noexcept {
    if (mode_ == Mode::kCollect) {
        return;
    }
    std::fflush(stdout);
    const off_t size = lseek(file_.get(), 0, SEEK_CUR);
    if (size <= 0) {
        return;
    }
    if (mode_ == Mode::kShow) {
        try {
            ShowOnStandardError(file_.get(), size);
        } catch (const std::exception&) {
            // Out of memory: the cues matter more than what the module says about them.
        }
    }
    Truncate();
}

void DiagnosticsCapture::Truncate() noexcept {
    // Descriptor 1 shares the file's position.
    if (ftruncate(file_.get(), 0) == 0) {
        lseek(file_.get(), 0, SEEK_SET);
    }
}

std::uint64_t DiagnosticsCapture::in_file() const {
    return static_cast<std::uint64_t>(std::max<off_t>(lseek(file_.get(), 0, SEEK_CUR), 0));
}

std::uint64_t DiagnosticsCapture::kept() const {
    return in_file() + __fpending(stdout);
}

// What was printed last is still with the C library, which a track that makes the module print
// millions of times is not to make write each of them.
std::string DiagnosticsCapture::Read(std::uint64_t skipped, std::size_t most) const {
    std::uint64_t file_size = in_file();
    const std::string_view pending(stdout->_IO_write_base, __fpending(stdout));
    if (skipped >= file_size) {
        const std::uint64_t begin = std::min<std::uint64_t>(skipped - file_size, pending.size());
        return std::string(pending.substr(static_cast<std::size_t>(begin), most));
    }
    std::fflush(stdout);
    file_size += pending.size();
    std::string read(static_cast<std::size_t>(std::min<std::uint64_t>(file_size - skipped, most)),
                     '\0');
    const ssize_t count = pread(file_.get(), read.data(), read.size(), static_cast<off_t>(skipped));
    read.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return read;
}

void DiagnosticsCapture::Forget() noexcept {
    std::fflush(stdout);
    Truncate();
}

}  // namespace quill::host
