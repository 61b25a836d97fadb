#include "tools/host/exception_text.h"

#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <typeinfo>

namespace quill::host {

std::string Demangle(const char* name) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return status == 0 ? text.get() : name;
}

std::string DescribeCurrentException() {
    // Only those of C++ can be held. Of any other one the runtime would look for a type in the
    // memory in front of it.
    const std::exception_ptr caught = std::current_exception();
    if (caught == nullptr) {
        return "an exception that is not of C++";
    }
    std::string name = Demangle(caught.__cxa_exception_type()->name());
    try {
        throw;
    } catch (const std::exception& error) {
        return name + ": " + error.what();
    } catch (...) {
        return name;
    }
}

}  // namespace quill::host
