// The exceptions that the parser throws of its own accord.
//
// They are thrown by value where required input is missing or an allocation failed, and caught by
// reference in the parse driver only, which turns them into a printed line and a result code.
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

}  // namespace webvtt
