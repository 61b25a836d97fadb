#include "guard/printed_capture.h"

#include <dlfcn.h>

#include <atomic>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <new>
#include <streambuf>

namespace guard {
namespace {

thread_local PrintedCapture::Fate threads_fate;

/// While it lives, what a capture passes on is not captured again.
class PassingOn {
  public:
    explicit PassingOn(std::string_view bytes) : m_fate(threads_fate) {
        if (threads_fate.kept_in != nullptr) {
            *threads_fate.kept_in << bytes;
        }
        threads_fate = {};
    }
    PassingOn(const PassingOn&) = delete;
    PassingOn& operator=(const PassingOn&) = delete;
    ~PassingOn() { threads_fate = m_fate; }

    bool is_dropped() const { return m_fate.is_dropped; }

  private:
    PrintedCapture::Fate m_fate;
};

/// Stands in for the buffer of std::cout.
class CoutBuffer : public std::streambuf {
  public:
    std::atomic<std::streambuf*> real{nullptr};

  protected:
    std::streamsize xsputn(const char* bytes, std::streamsize size) override {
        const PassingOn passing_on({bytes, static_cast<std::size_t>(size)});
        return passing_on.is_dropped() ? size : real.load()->sputn(bytes, size);
    }
    int_type overflow(int_type byte) override {
        if (traits_type::eq_int_type(byte, traits_type::eof())) {
            return traits_type::not_eof(byte);
        }
        const char one = traits_type::to_char_type(byte);
        const PassingOn passing_on({&one, 1});
        return passing_on.is_dropped() ? byte : real.load()->sputc(one);
    }
    int sync() override {
        const PassingOn passing_on({});
        return real.load()->pubsync();
    }
};

/// std::cout.rdbuf(buffer) would also forget that the stream has failed.
void lead_cout_to(std::streambuf* buffer) {
    struct Access : std::ios {
        using std::ios::set_rdbuf;
    };
    (std::cout.*(&Access::set_rdbuf))(buffer);
}

#ifdef __GLIBC__

/// Stands in for stdout.
class StdoutStream {
  public:
    void lead_here() {
        if (m_stream == nullptr) {
            cookie_io_functions_t functions = {};
            functions.write = write;
            m_stream = fopencookie(this, "w", functions);
            if (m_stream == nullptr) {
                return;
            }
            std::setvbuf(m_stream, nullptr, _IONBF, 0);
            m_own_lock = m_stream->_lock;
        }
        m_real = stdout;
        m_stream->_lock = stdout->_lock;
        stdout = m_stream;
    }

    void lead_back() {
        // Unless somebody has put another stream there meanwhile.
        if (m_stream != nullptr && stdout == m_stream) {
            stdout = m_real;
        }
    }

    void close() {
        if (m_stream != nullptr) {
            m_stream->_lock = m_own_lock;
            std::fclose(m_stream);
            m_stream = nullptr;
        }
    }

  private:
    static ssize_t write(void* self, const char* bytes, std::size_t size) {
        const PassingOn passing_on({bytes, size});
        if (!passing_on.is_dropped()) {
            std::fwrite(bytes, 1, size, static_cast<StdoutStream*>(self)->m_real);
        }
        // Its failures are that stream's, and nobody has asked for them here.
        return static_cast<ssize_t>(size);
    }

    std::FILE* m_stream = nullptr;
    std::atomic<std::FILE*> m_real{nullptr};
    decltype(std::FILE::_lock) m_own_lock = nullptr;
};

constexpr bool kHasStdoutVariable = true;

#else

class StdoutStream {
  public:
    void lead_here() {}
    void lead_back() {}
    void close() {}
};

constexpr bool kHasStdoutVariable = false;

#endif

/// What all captures share.
struct Ways {
    std::mutex mutex;
    unsigned captures = 0;
    StdoutStream stdout_stream;
    CoutBuffer cout_buffer;

    void enter() {
        const std::lock_guard<std::mutex> lock(mutex);
        if (captures++ == 0) {
            stdout_stream.lead_here();
            if (std::streambuf* const real = std::cout.rdbuf()) {
                cout_buffer.real = real;
                lead_cout_to(&cout_buffer);
            }
        }
    }

    void leave() {
        const std::lock_guard<std::mutex> lock(mutex);
        if (captures != 0 && --captures == 0) {
            lead_back();
        }
    }

    void lead_back() {
        stdout_stream.lead_back();
        if (std::cout.rdbuf() == &cout_buffer) {
            lead_cout_to(cout_buffer.real);
        }
    }
};

/// Never destroyed: a thread that writes at the very end of the process may still use them.
Ways& ways() {
    alignas(Ways) static unsigned char storage[sizeof(Ways)];
    static Ways* const kWays = new (storage) Ways;
    return *kWays;
}

/// Where the file that holds an object has been loaded; null when it is not known.
const void* base_of(const void* object) {
    Dl_info info = {};
    return dladdr(object, &info) != 0 ? info.dli_fbase : nullptr;
}

}  // namespace

bool PrintedCapture::is_possible(void* library) {
    // Whoever is linked with a C++ library of his own has a std::cout of his own.
    const bool guards_is_all = base_of(&std::cout) != base_of(&ways());
    return kHasStdoutVariable && guards_is_all && library != nullptr &&
           dlsym(library, "_ZSt4cout") != nullptr;
}

PrintedCapture::PrintedCapture(Fate fate)
    : m_before(threads_fate), m_is_capturing(!fate.is_usual()) {
    if (m_is_capturing) {
        ways().enter();
        threads_fate = fate;
    }
}

PrintedCapture::~PrintedCapture() {
    if (m_is_capturing) {
        threads_fate = m_before;
        ways().leave();
    }
}

PrintedCapture::Pause::Pause() : m_fate(threads_fate) {
    if (!m_fate.is_usual()) {
        threads_fate = {};
        ways().leave();
    }
}

PrintedCapture::Pause::~Pause() {
    if (!m_fate.is_usual()) {
        ways().enter();
        threads_fate = m_fate;
    }
}

void PrintedCapture::before_fork() {
    ways().mutex.lock();
}

void PrintedCapture::after_fork() {
    ways().mutex.unlock();
}

void PrintedCapture::after_fork_in_child() {
    ways().captures = 0;
    ways().lead_back();
    threads_fate = {};
    after_fork();
}

void PrintedCapture::end() {
    const std::lock_guard<std::mutex> lock(ways().mutex);
    ways().lead_back();
    ways().stdout_stream.close();
}

}  // namespace guard
