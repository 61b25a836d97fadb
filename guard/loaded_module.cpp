#include "guard/loaded_module.h"

#include <dlfcn.h>

#include <utility>

#include "api/entry_points.h"
#include "guard/report.h"

namespace guard {
namespace {

// What stands in for a module that is not there.
int create_nothing(unsigned int* pHandle) {
    if (pHandle != nullptr) {
        *pHandle = 0;
    }
    return WEBVTT_RESULT_ERROR;
}
void release_nothing(unsigned int /*handle*/) {}
int parse_nothing(unsigned int /*handle*/, const void* /*data*/, unsigned int /*size*/) {
    return WEBVTT_RESULT_ERROR;
}
void register_nothing(unsigned int /*handle*/, void* /*tag*/, WebvttEventNotify /*notify*/) {}
void deliver_nothing(unsigned int /*handle*/) {}
void time_nothing(unsigned int /*handle*/, unsigned long /*ticks*/) {}

constexpr WebvttModuleMethods kNothing = {
    create_nothing, release_nothing, parse_nothing, register_nothing, deliver_nothing, time_nothing,
};

/// The guard's own file, as it was named when it was loaded.
std::string own_path() {
    Dl_info info = {};
    return dladdr(&WEBVTT_MODULE_INFO, &info) != 0 && info.dli_fname != nullptr ? info.dli_fname
                                                                                : "";
}

std::string path_beside_guard() {
    const std::string own = own_path();
    const std::size_t slash = own.rfind('/');
    return (slash == std::string::npos ? "./" : own.substr(0, slash + 1)) + "quillcaption.so";
}

/// The module's function for a slot of its table. A host that makes the guard's names visible to
/// all (RTLD_GLOBAL) makes the module's table lead to the guard; the module's own function then has
/// to be found by its name.
template <typename Function>
Function own_function(void* library, Function slot, Function guards, const char* symbol) {
    return slot != guards ? slot : reinterpret_cast<Function>(dlsym(library, symbol));
}

WebvttModuleMethods own_functions(void* library, const WebvttModuleMethods& table) {
    const WebvttModuleMethods& guards = WebVtt_Module_Methods;
    return {
        own_function(library, table.pfnCreate, guards.pfnCreate, "_Z24IZorWebVtt_Parser_CreatePj"),
        own_function(library, table.pfnRelease, guards.pfnRelease,
                     "_Z25IZorWebVtt_Parser_Releasej"),
        own_function(library, table.pfnParse, guards.pfnParse,
                     "_Z27IZorWebVtt_Parser_rsltParsejPKvj"),
        own_function(library, table.pfnSetEventNty, guards.pfnSetEventNty,
                     "_Z36IZorWebVtt_Parser_vSetWebvttEventNtyjPvPFv14WEBVTT_EVENT_TS_S_E"),
        own_function(library, table.pfnGetParseResult, guards.pfnGetParseResult,
                     "_Z33IZorWebVtt_Parser_vGetParseResultj"),
        own_function(library, table.pfnSetVideoPTS, guards.pfnSetVideoPTS,
                     "_Z30IZorWebVtt_Parser_vSetVideoPTSjm"),
    };
}

bool is_whole(const WebvttModuleMethods& methods) {
    return methods.pfnCreate != nullptr && methods.pfnRelease != nullptr &&
           methods.pfnParse != nullptr && methods.pfnSetEventNty != nullptr &&
           methods.pfnGetParseResult != nullptr && methods.pfnSetVideoPTS != nullptr;
}

/// The functions of a library; sets `reason` when it has not all of them.
WebvttModuleMethods find_methods(void* library, const char*& reason) {
    const auto* const info =
        static_cast<const WebvttModuleInfo*>(dlsym(library, QUILLCAPTION_DESCRIPTOR_SYMBOL));
    if (info == &WEBVTT_MODULE_INFO) {
        reason = "that file is the guard itself";
    } else if (info == nullptr) {
        reason = "it has no descriptor WEBVTT_MODULE_INFO";
    } else {
        const auto* const exported =
            static_cast<const WebvttModuleMethods*>(dlsym(library, QUILLCAPTION_METHODS_SYMBOL));
        // As with the functions: the descriptor may have been made to lead to the guard's table.
        const WebvttModuleMethods* const table =
            info->prMethods == &WebVtt_Module_Methods ? exported : info->prMethods;
        const WebvttModuleMethods found =
            table != nullptr ? own_functions(library, *table) : WebvttModuleMethods{};
        if (is_whole(found)) {
            return found;
        }
        reason = "its method table has empty slots";
    }
    return kNothing;
}

}  // namespace

std::string LoadedModule::load(std::string path) {
    if (path.empty()) {
        path = path_beside_guard();
    }
    m_methods = kNothing;
    m_library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    const char* reason = m_library == nullptr ? dlerror() : nullptr;
    if (m_library != nullptr) {
        m_methods = find_methods(m_library, reason);
    }
    if (reason != nullptr) {
        if (m_library != nullptr) {
            dlclose(std::exchange(m_library, nullptr));
        }
        Line line;
        line << "cannot load the module ";
        line.foreign(path.c_str()) << ": ";
        line.foreign(reason) << "; no parser can be created. Set QUILLCAPTION_GUARD_MODULE to the "
                                "file of the module "
                                "that the guard is to watch";
        write_line(line);
    }
    return path.substr(path.rfind('/') + 1);
}

void LoadedModule::unload() {
    m_methods = kNothing;
    if (void* const library = std::exchange(m_library, nullptr)) {
        dlclose(library);
    }
}

}  // namespace guard
