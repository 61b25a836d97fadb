#include "tools/host/module_handle.h"

#include <dlfcn.h>
#include <unistd.h>

#include <array>

#include "tools/console/failure.h"
#include "tools/host/call_note.h"
#include "tools/host/elf_check.h"

namespace quill::host {
namespace {

constexpr char kModuleName[] = "quillcaption.so";
constexpr char kGuardName[] = "quillcaption-guard.so";

// Of an installation; a relative one starts at the program's folder. The build sets it.
constexpr char kInstalledFolder[] = QUILL_MODULE_DIR;

// The folder that this program's file lies in, with a slash at its end.
std::string OwnFolder() {
    std::array<char, 4096> path;
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    const std::string program(path.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
    return program.substr(0, program.rfind('/') + 1);
}

// A file that belongs to this program, in its own folder or in the one of an installation.
std::string FindOwnFile(const char* name, const std::string& lack, const std::string& way_out) {
    const std::string own_folder = OwnFolder();
    std::string beside = own_folder + name;
    if (access(beside.c_str(), F_OK) == 0) {
        return beside;
    }
    const std::string start = kInstalledFolder[0] == '/' ? "" : own_folder;
    std::string installed = start + kInstalledFolder + "/" + name;
    if (access(installed.c_str(), F_OK) == 0) {
        return installed;
    }
    throw console::Failure(console::kExitModule, lack + ": there is neither " + beside + " nor " +
                                                     installed + "; " + way_out);
}

const WebvttModuleMethods* FindMethods(const Library& library, const std::string& path) {
    const void* symbol = library.Symbol(QUILLCAPTION_DESCRIPTOR_SYMBOL);
    if (symbol == nullptr) {
        throw console::Failure(console::kExitModule,
                               path + " is not a caption module: it does not export " +
                                   QUILLCAPTION_DESCRIPTOR_SYMBOL);
    }
    const WebvttModuleMethods* methods = static_cast<const WebvttModuleInfo*>(symbol)->prMethods;
    if (methods == nullptr) {
        throw console::Failure(console::kExitModule,
                               path + " cannot be used: its descriptor has no table");
    }
    if (methods->pfnCreate == nullptr || methods->pfnRelease == nullptr ||
        methods->pfnParse == nullptr || methods->pfnSetEventNty == nullptr ||
        methods->pfnGetParseResult == nullptr || methods->pfnSetVideoPTS == nullptr) {
        throw console::Failure(console::kExitModule,
                               path + " cannot be used: its table has an empty slot");
    }
    return methods;
}

}  // namespace

std::string FindDefaultModule() {
    return FindOwnFile(kModuleName, "no module", "name one with --module FILE");
}

std::string FindGuard() {
    return FindOwnFile(kGuardName, "no guard, which records",
                       "cmake --install --component guard installs it");
}

Library::Library(const std::string& path) {
    CheckModuleFile(path);
    // A name without a slash would send the loader to the system's library folders.
    const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
    CallNote& note = CallNote::Own();
    note.module.Set(path);
    note.Begin(ModuleCall::kLoad);
    library_ = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    note.End();
    if (library_ == nullptr) {
        throw console::Failure(console::kExitModule,
                               "cannot load the module: " + std::string(dlerror()));
    }
}

Library::~Library() {
    CallNote& note = CallNote::Own();
    note.Begin(ModuleCall::kUnload);
    dlclose(library_);
    note.End();
}

void* Library::Symbol(const char* name) const {
    return dlsym(library_, name);
}

ModuleHandle::ModuleHandle(const std::string& path)
    : library_(path), methods_(FindMethods(library_, path)) {}

}  // namespace quill::host
