// The guard between the module and a host that obeys no rule but one: whatever is called, by
// whichever thread and in whichever callback, the process goes on, and what is delivered is whole.
//
// An input is a list of calls, a byte each: what, on which of four parsers, and on which thread.
// Calls that overlap do so in a callback that waits for them, so that an input plays the same each
// time.
#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <functional>
#include <mutex>
#include <set>
#include <string_view>
#include <thread>

#include "fuzz/check.h"
#include "support/cue_record.h"
#include "support/exact_block.h"
#include "support/methods.h"

namespace {

constexpr unsigned kDeepest = 3;

const support::Methods& guarded() {
    static const support::Methods kMethods = [] {
        void* const library = dlopen(QUILLCAPTION_BUILT_GUARD, RTLD_NOW | RTLD_LOCAL);
        FUZZ_CHECK(library != nullptr);
        return support::methods_at(
            support::value_at<const void*>(dlsym(library, "WEBVTT_MODULE_INFO"), 8));
    }();
    return kMethods;
}

/// A thread that does what it is told, while the one that tells it waits.
class Worker {
  public:
    Worker() : m_thread([this] { work(); }) {}
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() {
        run({});
        m_thread.join();
    }

    void run(const std::function<void()>& task) {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_task = task;
        m_is_told = true;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return !m_is_told; });
    }

  private:
    void work() {
        for (bool goes_on = true; goes_on;) {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_changed.wait(lock, [this] { return m_is_told; });
            goes_on = m_task != nullptr;
            if (goes_on) {
                m_task();
            }
            m_is_told = false;
            m_changed.notify_all();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::function<void()> m_task;
    bool m_is_told = false;
    std::thread m_thread;
};

/// One for each depth. They serve all inputs: starting threads takes longer than playing a script.
Worker& worker(unsigned depth) {
    static std::array<Worker, kDeepest + 1> workers;
    return workers[depth];
}

class Host {
  public:
    explicit Host(std::string_view calls) : m_calls(calls) {}
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    ~Host() {
        for (const support::Handle handle : m_parsers) {
            guarded().release(handle);
        }
    }

    void play() {
        while (!m_calls.empty()) {
            next_call();
        }
    }

  private:
    static void on_event(int event, void* tag, void* info) {
        FUZZ_CHECK(event == 0);
        const support::Delivery delivery(info);
        FUZZ_CHECK(delivery.has_end && delivery.count == delivery.cues.size());
        for (const support::CueRecord& cue : delivery.cues) {
            FUZZ_CHECK(cue.has_text && !cue.has_aux_text);
        }
        static_cast<Host*>(tag)->call_within();
    }

    /// A few of the calls that follow.
    void call_within() {
        if (m_depth < kDeepest) {
            ++m_depth;
            for (unsigned left = next_byte() % 4; left > 0; --left) {
                next_call();
            }
            --m_depth;
        }
    }

    unsigned next_byte() {
        if (m_calls.empty()) {
            return 0;
        }
        const auto byte = static_cast<std::uint8_t>(m_calls.front());
        m_calls.remove_prefix(1);
        return byte;
    }

    void next_call() {
        const unsigned byte = next_byte();
        const auto call = [this, byte] { make(byte % 8, m_parsers[byte / 8 % m_parsers.size()]); };
        if ((byte & 0x80) != 0) {
            worker(m_depth).run(call);
        } else {
            call();
        }
    }

    void make(unsigned what, support::Handle& parser) {
        switch (what) {
            case 0:
                guarded().release(parser);
                create(parser);
                break;
            case 1:
                guarded().release(parser);  // whose handle may be used again
                break;
            case 2:
            case 3:
                feed(parser);
                break;
            case 4:
                guarded().get_result(parser);
                break;
            case 5:
                guarded().set_video_time(parser, static_cast<unsigned long>(next_byte()) << 24);
                break;
            case 6:
                FUZZ_CHECK(guarded().parse(parser, nullptr, next_byte()) != 0);
                break;
            default:
                guarded().set_callback(parser, this, next_byte() % 2 == 0 ? on_event : nullptr);
        }
    }

    void create(support::Handle& parser) {
        FUZZ_CHECK(guarded().create(&parser) == 0);
        FUZZ_CHECK(m_given.insert(parser).second);
        if (next_byte() % 4 != 0) {
            guarded().set_callback(parser, this, on_event);
        }
    }

    void feed(support::Handle parser) {
        const std::size_t wanted = next_byte();
        const std::size_t size = std::min(wanted, m_calls.size());
        support::ExactBlock chunk(m_calls.substr(0, size));
        m_calls.remove_prefix(size);
        try {
            const int result = guarded().parse(parser, chunk.data(), chunk.size());
            FUZZ_CHECK(result >= 0 && result <= 2);
        } catch (const std::exception&) {
            // Some tracks are for that.
        }
    }

    std::string_view m_calls;
    std::array<support::Handle, 4> m_parsers = {};
    std::set<support::Handle> m_given;
    unsigned m_depth = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Host({reinterpret_cast<const char*>(data), size}).play();
    return 0;
}
