// The module as a host reaches it: by file name, by symbol name, and from there on by number.
//
// Nothing here includes the module's headers, the public one neither: a mistake that the module
// and its header share would go unseen otherwise.
#pragma once

#include <string>

namespace support {

using Handle = unsigned int;
using Notify = void (*)(int event, void* tag, void* info);

/// The six functions, in the order of the module's method table.
struct Methods {
    int (*create)(Handle* handle);
    void (*release)(Handle handle);
    int (*parse)(Handle handle, const void* data, unsigned int size);
    void (*set_callback)(Handle handle, void* tag, Notify notify);
    void (*get_result)(Handle handle);
    void (*set_video_time)(Handle handle, unsigned long ticks);
};

/// Reads the functions from their table.
Methods methods_at(const void* table);

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
