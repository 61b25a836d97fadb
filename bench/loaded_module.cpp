#include "bench/loaded_module.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace bench {

std::string module_path() {
    const char* const path = std::getenv("QUILLCAPTION_MODULE");
    return path != nullptr ? path : QUILLCAPTION_BUILT_MODULE;
}

const WebvttModuleMethods& load_module() {
    void* const library = dlopen(module_path().c_str(), RTLD_NOW | RTLD_LOCAL);
    const void* const descriptor =
        library != nullptr ? dlsym(library, QUILLCAPTION_DESCRIPTOR_SYMBOL) : nullptr;
    if (descriptor == nullptr) {
        std::fprintf(stderr, "cannot load the module: %s\n", dlerror());
        std::exit(2);
    }
    return *static_cast<const WebvttModuleInfo*>(descriptor)->prMethods;
}

}  // namespace bench
