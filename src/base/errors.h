// The errors that the parser finds of its own accord, as values and as exceptions.
//
// What a track can bring about, and what never leaves the module, is told by value on its way to
// the parse driver, which turns it into a printed line and a result code: throwing costs tens of
// thousands of instructions, and a track may hold a bad block for every twenty bytes. The
// operations of the classes throw, which is what their callers are promised.
#pragma once

#include <exception>
#include <new>
#include <stdexcept>
#include <string>

namespace webvtt {

/// A failure that costs one block. what() always says "webvtt::Exception", never the message:
/// handlers that print what() rely on that one text.
class RuntimeException : public std::runtime_error {
  public:
    /// @param reason the exception that led here, or null; stored, never followed, not owned.
    RuntimeException(const std::string& text, const std::exception* reason);
    ~RuntimeException() override;

    /// What went wrong, for tests and debuggers. Valid as long as the exception.
    const std::string& strGetMessage() const { return message; }
    const std::exception* prGetCause() const { return cause; }

  private:
    const std::exception* cause;
    std::string message;
};

/// Required input was null, empty, or already set.
class InvalidArgumentException : public RuntimeException {
  public:
    InvalidArgumentException(const std::string& text, const std::exception* reason);
    ~InvalidArgumentException() override;
};

/// Memory ran out at a place that says so, or a payload held a start tag that is not known.
/// what() is the standard library's.
class BadAllocException : public std::bad_alloc {
  public:
    /// @param reason as in RuntimeException.
    BadAllocException(const std::string& text, const std::exception* reason);
    ~BadAllocException() override;

    const std::string& strGetMessage() const { return message; }
    const std::exception* prGetCause() const { return cause; }

  private:
    const std::exception* cause;
    std::string message;
};

/// What became of a block, or of a part of one.
enum class Outcome {
    kDone,
    kRejected,    ///< not valid, or nothing to do
    kEmptyInput,  ///< a cue without a payload, or a bad start time
    kNoNode,      ///< a start tag that is not known
    kNoRecord,    ///< memory ran out
    kNoBlock,     ///< likewise
    kNoCarried    ///< likewise
};

/// For neither of the first two.
/// @throws InvalidArgumentException kEmptyInput
/// @throws BadAllocException        the others
[[noreturn]] void throw_failure(Outcome outcome);

/// True when it was done and false when it was rejected. Throws the others.
bool throw_unless_read(Outcome outcome);

}  // namespace webvtt
