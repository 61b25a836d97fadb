// Loads the module the way a player does: by its file, its descriptor and its table.
#ifndef TOOLS_MODULE_HANDLE_H_
#define TOOLS_MODULE_HANDLE_H_

#include <string>

#include "quillcaption/quillcaption.h"

namespace quill {

// The module that belongs to this program: quillcaption.so in the program's own folder, as in a
// build tree, else in the folder where an installation puts it. Throws Failure when it is in
// neither.
std::string FindDefaultModule();

// A loaded module; unloads it at the end. Every Parser of it must be gone by then.
class ModuleHandle {
  public:
    // Throws Failure, with the reason in words, when the file cannot be loaded or does not
    // export what a player needs.
    explicit ModuleHandle(const std::string& path);
    ModuleHandle(const ModuleHandle&) = delete;
    ModuleHandle& operator=(const ModuleHandle&) = delete;
    ~ModuleHandle();

    const WebvttModuleMethods& methods() const { return *methods_; }

  private:
    void* library_;
    const WebvttModuleMethods* methods_;
};

}  // namespace quill

#endif  // TOOLS_MODULE_HANDLE_H_
