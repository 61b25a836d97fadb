// The module that the guard stands before.
#pragma once

#include <string>

#include "quillcaption/quillcaption.h"

namespace guard {

/// Loads the module and finds its six functions. When that fails, a line says why, and functions of
/// the guard's own stand in: they refuse every handle, and Create makes none.
class LoadedModule {
  public:
    /// @param path the module's file; empty for quillcaption.so in the folder of the guard
    /// @return its file name, without the folder
    std::string load(std::string path);

    /// Afterwards the functions refuse everything.
    void unload();

    const WebvttModuleMethods& methods() const { return m_methods; }
    /// As dlopen gave it; null when there is none.
    void* library() const { return m_library; }

  private:
    void* m_library = nullptr;
    WebvttModuleMethods m_methods = {};
};

}  // namespace guard
