// Keeps what the module prints out of quill's own output, and shows it on standard error.
#ifndef TOOLS_HOST_DIAGNOSTICS_CAPTURE_H_
#define TOOLS_HOST_DIAGNOSTICS_CAPTURE_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "tools/console/descriptor.h"

namespace quill::host {

// The module writes diagnostics to standard output by contract, and quotes the track in them. So
// while an object of this class lives, descriptor 1 is an unnamed file; after each call into the
// module Drain() moves what was written to standard error, with control bytes escaped. A file
// and not a pipe, because nobody would empty a pipe during the call.
//
// One object at a time, made before the module is loaded and destroyed after it is unloaded.
class DiagnosticsCapture {
  public:
    // kCollect keeps what the module prints for Read(), and leaves Drain() nothing to do.
    enum class Mode { kShow, kDrop, kCollect };

    // Throws Failure when the system gives no file.
    explicit DiagnosticsCapture(Mode mode);
    DiagnosticsCapture(const DiagnosticsCapture&) = delete;
    DiagnosticsCapture& operator=(const DiagnosticsCapture&) = delete;
    // Drains once more and gives descriptor 1 back.
    ~DiagnosticsCapture();

    // Call after each call into the module. Never fails: what cannot be shown is dropped.
    void Drain() noexcept;

    // The rest is for kCollect. How many bytes are kept; cheap.
    std::uint64_t kept() const;
    // At most `most` bytes of what is kept, behind the first `skipped`.
    std::string Read(std::uint64_t skipped, std::size_t most) const;
    // Keeps nothing any more.
    void Forget() noexcept;

    // While an object of this class lives, diagnostics are dropped whatever the mode: for calls
    // that only ask the module a question.
    class Mute {
      public:
        explicit Mute(DiagnosticsCapture& capture) : capture_(capture), mode_(capture.mode_) {
            capture_.mode_ = Mode::kDrop;
        }
        Mute(const Mute&) = delete;
        Mute& operator=(const Mute&) = delete;
        ~Mute() { capture_.mode_ = mode_; }

      private:
        DiagnosticsCapture& capture_;
        Mode mode_;
    };

  private:
    void Truncate() noexcept;
    std::uint64_t in_file() const;

    Mode mode_;
    console::Descriptor original_;
    console::Descriptor file_;
};

}  // namespace quill::host

#endif  // TOOLS_HOST_DIAGNOSTICS_CAPTURE_H_
