#include "base/errors.h"

namespace webvtt {

RuntimeException::RuntimeException(const std::string& text, const std::exception* reason)
    : std::runtime_error("webvtt::Exception"), cause(reason), message(text) {}

RuntimeException::~RuntimeException() = default;

InvalidArgumentException::InvalidArgumentException(const std::string& text,
                                                   const std::exception* reason)
    : RuntimeException(text, reason) {}

InvalidArgumentException::~InvalidArgumentException() = default;

BadAllocException::BadAllocException(const std::string& text, const std::exception* reason)
    : cause(reason), message(text) {}

BadAllocException::~BadAllocException() = default;

void throw_failure(Outcome outcome) {
    switch (outcome) {
        case Outcome::kEmptyInput:
            throw InvalidArgumentException("Input pcLine is empty", nullptr);
        case Outcome::kNoNode:
            throw BadAllocException("create new Node Failed\n", nullptr);
        case Outcome::kNoRecord:
            throw BadAllocException("Create WebvttCue Node failed", nullptr);
        case Outcome::kNoBlock:
            throw BadAllocException("apply memory failed at Line", nullptr);
        default:  // kNoCarried
            break;
    }
    throw BadAllocException("Create Unused Buffer failed", nullptr);
}

bool throw_unless_read(Outcome outcome) {
    if (outcome != Outcome::kDone && outcome != Outcome::kRejected) {
        throw_failure(outcome);
    }
    return outcome == Outcome::kDone;
}

}  // namespace webvtt
