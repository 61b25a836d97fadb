// The module as the element reaches it: by file, descriptor and table.
#ifndef GSTREAMER_LOADED_MODULE_H_
#define GSTREAMER_LOADED_MODULE_H_

#include <mutex>
#include <string>

#include "quillcaption/quillcaption.h"

namespace gstquillcaption {

// The module has no locks: creating and releasing a parser must not overlap with any other call.
// All elements of a process share one loaded module, so all their calls are made under this lock.
std::mutex& ModuleLock();

// The module that belongs to the plug-in: in an installation in its own folder, in a build one
// folder up from the plug-in's file. A file that need not be there.
std::string DefaultModule();

// The guard in the folder of that module.
std::string GuardBeside(const std::string& module);

class LoadedModule {
  public:
    // Throws std::runtime_error with the reason in words when the file is no module.
    explicit LoadedModule(const std::string& path);
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;
    // Every parser must have been released.
    ~LoadedModule();

    const WebvttModuleMethods& methods() const { return *methods_; }

  private:
    void* library_;
    const WebvttModuleMethods* methods_ = nullptr;
};

}  // namespace gstquillcaption

#endif  // GSTREAMER_LOADED_MODULE_H_
