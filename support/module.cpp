#include "support/module.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace support {

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
    m_methods = methods_at(value_at<const void*>(m_descriptor, 8));
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

}  // namespace support
