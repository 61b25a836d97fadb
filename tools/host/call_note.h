// What a process does with the module, noted where its parent sees it even when it is no more.
#ifndef TOOLS_HOST_CALL_NOTE_H_
#define TOOLS_HOST_CALL_NOTE_H_

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace quill::host {

enum class ModuleCall : std::uint32_t {
    kNone,  // none was made
    kLoad,
    kUnload,
    kCreate,  // from here on as in the method table
    kRelease,
    kParse,
    kSetEventNty,
    kGetParseResult,
    kSetVideoPts,
    kEnd,  // of the process, where a module may have left something to be done
};

// A text that a process leaves behind, its end missing when it is too long.
class NotedText {
  public:
    void Set(std::string_view text);
    // A module that writes where it may not may have written here.
    std::string Get() const { return {bytes_.data(), strnlen(bytes_.data(), bytes_.size())}; }

  private:
    std::array<char, 4096> bytes_;
};

// All zero at first. The process that it belongs to writes, others read.
struct CallNote {
    // The note of this process. Nobody else sees it unless StartChild has given the process one.
    static CallNote& Own();

    void Begin(ModuleCall called, std::uint32_t fed = 0) {
        call.store(called, std::memory_order_relaxed);
        size.store(fed, std::memory_order_relaxed);
        Count();
    }
    void End() { Count(); }
    bool is_in_call() const { return sequence.load(std::memory_order_relaxed) % 2 != 0; }

    std::atomic<std::uint32_t> sequence;  // odd during a call
    std::atomic<ModuleCall> call;         // which is made, or was the last
    std::atomic<std::uint32_t> size;      // bytes that it is fed
    NotedText module;                     // the file
    NotedText track;                      // by its name, while one is read or played
    std::uint64_t begin;                  // bytes of the track that are played, when that is known
    std::uint64_t end;
    std::uint32_t line;  // at which the block begins that is played, when that is known
    bool has_ended;      // the work was done; the process ends in `code`
    int code;
    NotedText failure;  // why quill could not do the work; empty when it could

  private:
    // There is one writer, which a locked instruction would cost time.
    void Count() {
        sequence.store(sequence.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }
};

// A note in memory that the children of this process share.
class SharedNote {
  public:
    // Throws Failure when there is no memory.
    SharedNote();

    CallNote& operator*() const { return *note_; }
    CallNote* operator->() const { return note_.get(); }
    // From now on this is the note of this process, for its whole life.
    void BecomeOwn() const;

  private:
    struct Unmap {
        void operator()(CallNote* note) const;
    };
    std::unique_ptr<CallNote, Unmap> note_;
};

// Sees when a call does not return.
class CallWatch {
  public:
    // A call may take `limit`, and a second more for each mebibyte that it is fed. The note must
    // outlive the watch.
    CallWatch(const CallNote& note, std::chrono::seconds limit) : note_(note), limit_(limit) {}

    // To be asked once a second. It counts how often it was asked and does not look at a clock,
    // which goes on while a terminal's user has stopped all of quill.
    bool HasHung();

  private:
    const CallNote& note_;
    std::chrono::seconds limit_;
    std::uint32_t sequence_ = 0;
    std::chrono::seconds waited_{0};
};

}  // namespace quill::host

#endif  // TOOLS_HOST_CALL_NOTE_H_
