// The module as a player has it: loaded by its file name, reached through its descriptor.
#pragma once

#include <string>

#include "quillcaption/quillcaption.h"

namespace bench {

/// $QUILLCAPTION_MODULE if that is set, else the module of this build.
std::string module_path();

/// Loads the module, or ends the program. It is never unloaded: a profiler that writes its names
/// when the program ends must still find them.
const WebvttModuleMethods& load_module();

}  // namespace bench
