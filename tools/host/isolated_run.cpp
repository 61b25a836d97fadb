#include "tools/host/isolated_run.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <thread>

#include "tools/console/descriptor.h"
#include "tools/console/failure.h"

namespace quill::host {
namespace {

using Clock = std::chrono::steady_clock;

// What a module that prints without end may write before it is stopped by SIGXFSZ.
constexpr rlim_t kLargestFile = 64u << 20;

constexpr long long kLongestWait = 3'600'000;  // milliseconds

constexpr struct {
    int number;
    const char* name;
} kSignals[] = {
    {SIGSEGV, "SIGSEGV"}, {SIGABRT, "SIGABRT"}, {SIGBUS, "SIGBUS"},   {SIGFPE, "SIGFPE"},
    {SIGILL, "SIGILL"},   {SIGTRAP, "SIGTRAP"}, {SIGTERM, "SIGTERM"}, {SIGKILL, "SIGKILL"},
    {SIGXFSZ, "SIGXFSZ"}, {SIGXCPU, "SIGXCPU"}, {SIGPIPE, "SIGPIPE"},
};

[[noreturn]] void FailToStart() {
    throw console::Failure(console::kExitUsage,
                           "cannot start a process: " + console::ErrorText(errno));
}

[[noreturn]] void RunChild(const std::function<void(Channel&)>& work, int descriptor) {
    PrepareChild();
    const rlimit small_files = {kLargestFile, kLargestFile};
    setrlimit(RLIMIT_FSIZE, &small_files);
    std::signal(SIGXFSZ, SIG_DFL);
    try {
        Channel channel(descriptor);
        work(channel);
    } catch (...) {
        _exit(kThrown);
    }
    // Past exit handlers, which are the parent's.
    _exit(0);
}

int LeftMilliseconds(Clock::time_point deadline) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left, 0, kLongestWait));
}

// Reads until the other end is closed. False when the time is over before that.
bool ReadAll(int descriptor, Clock::time_point deadline, std::string& written) {
    std::array<char, 4096> buffer;
    for (;;) {
        pollfd waiting = {descriptor, POLLIN, 0};
        const int ready = poll(&waiting, 1, LeftMilliseconds(deadline));
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        if (ready <= 0) {
            return false;
        }
        const int count = console::ReadSome(descriptor, buffer.data(), buffer.size());
        if (count <= 0) {
            return true;
        }
        written.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

// Whether the child has ended by the deadline. A module may have closed the pipe long before.
bool Reap(pid_t child, Clock::time_point deadline, int& status) {
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (Clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace

void PrepareChild() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit no_core = {0, 0};
    setrlimit(RLIMIT_CORE, &no_core);
}

void Channel::Write(std::string_view text) {
    console::WriteFully(descriptor_, text);
}

IsolatedEnd RunIsolated(const std::function<void(Channel&)>& work,
                        std::chrono::milliseconds timeout) {
    std::array<int, 2> pipe_ends;
    if (pipe2(pipe_ends.data(), O_CLOEXEC) != 0) {
        FailToStart();
    }
    const console::Descriptor read_end(pipe_ends[0]);
    console::Descriptor write_end(pipe_ends[1]);
    // Or both processes would write what is still in the buffers.
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) {
        FailToStart();
    }
    if (child == 0) {
        RunChild(work, write_end.get());
    }
    write_end = console::Descriptor();
    const Clock::time_point deadline = Clock::now() + timeout;
    IsolatedEnd end = {IsolatedEnd::Kind::kTimedOut, 0, ""};
    int status = 0;
    if (!ReadAll(read_end.get(), deadline, end.written) || !Reap(child, deadline, status)) {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
        return end;
    }
    const std::string written = std::move(end.written);
    end = EndOf(status);
    end.written = written;
    return end;
}

IsolatedEnd EndOf(int status) {
    if (WIFSIGNALED(status)) {
        return {IsolatedEnd::Kind::kSignal, WTERMSIG(status), ""};
    }
    const int number = WEXITSTATUS(status);
    return {number == 0 ? IsolatedEnd::Kind::kDone : IsolatedEnd::Kind::kExit, number, ""};
}

std::string DescribeEnd(const IsolatedEnd& end) {
    switch (end.kind) {
        case IsolatedEnd::Kind::kDone:
            return "";
        case IsolatedEnd::Kind::kExit:
            return "exited with status " + std::to_string(end.number);
        case IsolatedEnd::Kind::kTimedOut:
            return "did not end in time";
        case IsolatedEnd::Kind::kSignal:
            break;
    }
    const auto* const known =
        std::find_if(std::begin(kSignals), std::end(kSignals),
                     [&end](const auto& one) { return one.number == end.number; });
    return "crashed by " + (known != std::end(kSignals) ? std::string(known->name)
                                                        : "signal " + std::to_string(end.number));
}

}  // namespace quill::host
