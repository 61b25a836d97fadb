// Loads the module the way a player does: by its file, its descriptor and its table.
#ifndef TOOLS_HOST_MODULE_HANDLE_H_
#define TOOLS_HOST_MODULE_HANDLE_H_

#include <string>

#include "quillcaption/quillcaption.h"

namespace quill::host {

// The module that belongs to this program: quillcaption.so in the program's own folder, as in a
// build tree, else in the folder where an installation puts it. Throws Failure when it is in
// neither.
std::string FindDefaultModule();

// The guard that belongs to this program, from the same two places.
std::string FindGuard();

// A file that is loaded into this program; unloads it at the end.
class Library {
  public:
    // Throws Failure, with the reason in words, when the file cannot be loaded.
    explicit Library(const std::string& path);
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library();

    // Null when the file exports no such name.
    void* Symbol(const char* name) const;

  private:
    void* library_;
};

// A loaded module; unloads it at the end. Every Parser of it must be gone by then.
class ModuleHandle {
  public:
    // Throws Failure, with the reason in words, when the file cannot be loaded or does not
    // export what a player needs.
    explicit ModuleHandle(const std::string& path);

    const Library& library() const { return library_; }
    const WebvttModuleMethods& methods() const { return *methods_; }

  private:
    Library library_;
    const WebvttModuleMethods* methods_;
};

}  // namespace quill::host

#endif  // TOOLS_HOST_MODULE_HANDLE_H_
