// The module as a host reaches it: by file name, by symbol name, and from there on by number.
#pragma once

#include <string>

#include "support/methods.h"

namespace support {

/// The file under test: $QUILLCAPTION_MODULE if that is set, else the module of this build.
std::string module_path();

/// The module, loaded for as long as the object lives.
class Module {
  public:
    /// Loads the file and follows the descriptor to the table. Ends the program when it cannot.
    Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    ~Module();

    /// The descriptor, found by its name.
    const void* descriptor() const { return m_descriptor; }
    /// The address that dlsym gives for a name; null when the module does not export it.
    const void* symbol(const char* name) const;
    const Methods& methods() const { return m_methods; }

  private:
    void* m_library;
    const void* m_descriptor;
    Methods m_methods;
};

/// An environment variable that is a number, or what to take when it is not set.
unsigned number_from_environment(const char* name, unsigned otherwise);

}  // namespace support
