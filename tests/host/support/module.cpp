#include "host/support/module.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "support/cue_record.h"

namespace host {
namespace {

template <typename Function>
Function function_at(const void* table, std::size_t offset) {
    return support::value_at<Function>(table, offset);
}

}  // namespace

std::string module_path() {
    const char* const path = std::getenv("QUILLCAPTION_MODULE");
    return path != nullptr ? path : QUILLCAPTION_BUILT_MODULE;
}

Module::Module() : m_library(dlopen(module_path().c_str(), RTLD_NOW | RTLD_LOCAL)) {
    m_descriptor = m_library != nullptr ? symbol("WEBVTT_MODULE_INFO") : nullptr;
    if (m_descriptor == nullptr) {
        std::fprintf(stderr, "cannot load the module: %s\n", dlerror());
        std::abort();
    }
    const void* const table = support::value_at<const void*>(m_descriptor, 8);
    m_methods.create = function_at<decltype(m_methods.create)>(table, 0);
    m_methods.release = function_at<decltype(m_methods.release)>(table, 4);
    m_methods.parse = function_at<decltype(m_methods.parse)>(table, 8);
    m_methods.set_callback = function_at<decltype(m_methods.set_callback)>(table, 12);
    m_methods.get_result = function_at<decltype(m_methods.get_result)>(table, 16);
    m_methods.set_video_time = function_at<decltype(m_methods.set_video_time)>(table, 20);
}

Module::~Module() {
    dlclose(m_library);
}

const void* Module::symbol(const char* name) const {
    return dlsym(m_library, name);
}

unsigned number_from_environment(const char* name, unsigned otherwise) {
    const char* const value = std::getenv(name);
    return value != nullptr ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : otherwise;
}

}  // namespace host
