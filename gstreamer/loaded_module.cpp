#include "gstreamer/loaded_module.h"

#include <dlfcn.h>
#include <unistd.h>

#include <stdexcept>

namespace gstquillcaption {
namespace {

constexpr char kModuleName[] = "quillcaption.so";
constexpr char kGuardName[] = "quillcaption-guard.so";

// Of an installation, seen from the plug-in's folder, or absolute. The build sets it.
constexpr char kInstalledFolder[] = QUILLCAPTION_MODULE_FROM_PLUGIN;

// The folder of a file, with a slash at its end.
std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

std::string OwnFolder() {
    Dl_info info = {};
    return dladdr(&kModuleName, &info) != 0 && info.dli_fname != nullptr ? FolderOf(info.dli_fname)
                                                                         : "./";
}

const WebvttModuleMethods* FindMethods(void* library) {
    const auto* const module =
        static_cast<const WebvttModuleInfo*>(dlsym(library, QUILLCAPTION_DESCRIPTOR_SYMBOL));
    const WebvttModuleMethods* const methods = module != nullptr ? module->prMethods : nullptr;
    const bool is_whole =
        methods != nullptr && methods->pfnCreate != nullptr && methods->pfnRelease != nullptr &&
        methods->pfnParse != nullptr && methods->pfnSetEventNty != nullptr &&
        methods->pfnGetParseResult != nullptr && methods->pfnSetVideoPTS != nullptr;
    return is_whole ? methods : nullptr;
}

}  // namespace

std::mutex& ModuleLock() {
    static std::mutex lock;
    return lock;
}

std::string DefaultModule() {
    const std::string own = OwnFolder();
    std::string built = own + "../" + kModuleName;
    if (access(built.c_str(), F_OK) == 0) {
        return built;
    }
    return (kInstalledFolder[0] == '/' ? "" : own) + kInstalledFolder + "/" + kModuleName;
}

std::string GuardBeside(const std::string& module) {
    return FolderOf(module) + kGuardName;
}

LoadedModule::LoadedModule(const std::string& path) {
    const std::lock_guard<std::mutex> lock(ModuleLock());
    // A name without a slash would send the loader to the system's library folders.
    const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
    library_ = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library_ == nullptr) {
        throw std::runtime_error(dlerror());
    }
    methods_ = FindMethods(library_);
    if (methods_ == nullptr) {
        dlclose(library_);
        throw std::runtime_error(path + " is not a caption module: it lacks " +
                                 QUILLCAPTION_DESCRIPTOR_SYMBOL + " or one of its functions");
    }
}

LoadedModule::~LoadedModule() {
    const std::lock_guard<std::mutex> lock(ModuleLock());
    dlclose(library_);
}

}  // namespace gstquillcaption
