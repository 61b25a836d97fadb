// All that `quill inspect` finds out about a module.
#ifndef TOOLS_INSPECT_INSPECTION_H_
#define TOOLS_INSPECT_INSPECTION_H_

#include <string>

#include "tools/console/json.h"

namespace quill::inspect {

// The report on the module at `path`:
//     "module"      the path
//     "file"        {"bits", "byte_order", "machine", "type"}
//     "needed"      the libraries that it needs, in the file's order
//     "versions"    the highest version asked for of each family
//     "exports"     a list of {"symbol", "kind", "size"}
//     "loaded"      whether it could be loaded into this program; "descriptor" and "table" follow
//     "problems"    what is not as hosts rely on it, each line beginning with the thing
// Throws Failure when the file cannot be read or is no ELF file. What cannot be found out is null.
console::Json InspectModule(const std::string& path);

}  // namespace quill::inspect

#endif  // TOOLS_INSPECT_INSPECTION_H_
