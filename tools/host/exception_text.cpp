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

namespace {

std::string CurrentTypeName() {
    const std::type_info* type = abi::__cxa_current_exception_type();
    return type == nullptr ? "an exception that is not of C++" : Demangle(type->name());
}

}  // namespace

std::string DescribeCurrentException() {
    std::string name = CurrentTypeName();
    try {
        throw;
    } catch (const std::exception& error) {
        return name + ": " + error.what();
    } catch (...) {
        return name;
    }
}

}  // namespace quill::host
