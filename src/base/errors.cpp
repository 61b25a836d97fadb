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

}  // namespace webvtt
