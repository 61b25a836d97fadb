// What a module's descriptor and table hold once it is loaded.
#ifndef TOOLS_INSPECT_LOADED_MODULE_H_
#define TOOLS_INSPECT_LOADED_MODULE_H_

#include <string>

#include "tools/console/json.h"

namespace quill::inspect {

// Loads the module in a process of its own and returns
//     "descriptor": {"word", "name", "table", "zero_tail"}, null when there is none,
//     "table":      a list of {"slot", "offset", "symbol", "function"}, null when there is none,
//     "problems":   a list of lines, each beginning with the thing that is not as hosts rely on it.
// A module that cannot be loaded has "loaded" false and says why in its problems; so does one that
// crashes or hangs.
console::Json DescribeLoadedModule(const std::string& path);

}  // namespace quill::inspect

#endif  // TOOLS_INSPECT_LOADED_MODULE_H_
