// All that `quill inspect` finds out about a module.
#ifndef TOOLS_INSPECT_INSPECTION_H_
#define TOOLS_INSPECT_INSPECTION_H_

#include <string>

#include "tools/console/json.h"

namespace quill::inspect {

// The report on the module at `path`:
//     "module"      the path
//     "file"        {"bits", "byte_order", "machine", "type"}
//     "processor"   what it says of the processor that it is for, a list of words
//     "loading"     {"memory", "executable_stack", "relocates_code", "hash_tables", "thread_local",
//                   "interpreter", "run_path"}: what a loader does with it; bytes, and names
//     "needed"      the libraries that it needs, in the file's order
//     "versions"    the highest version asked for of each family
//     "exports"     a list of {"symbol", "kind", "size"}
//     "sysroot"     what the board at `sysroot` has of that, as CheckBoard says
//     "loaded"      false when it cannot be loaded, here or on the board; true when it was loaded
//                   into this program; null when that was not tried. "descriptor" and "table"
//                   follow
//     "notes"       what was not asked, and what is good to know
//     "problems"    what is not as hosts rely on it, each line beginning with the thing
// With a `sysroot`, which may be empty, nothing is loaded. Throws Failure when the file cannot be
// read or is no ELF file, or the sysroot is no folder. What cannot be found out is null.
console::Json InspectModule(const std::string& path, const std::string& sysroot);

}  // namespace quill::inspect

#endif  // TOOLS_INSPECT_INSPECTION_H_
