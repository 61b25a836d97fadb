#include "guard/call.h"

namespace guard {

const char* name_of(Function function) {
    static constexpr const char* kNames[] = {
        "pfnCreate",         "pfnRelease",     "pfnParse",  "pfnSetEventNty",
        "pfnGetParseResult", "pfnSetVideoPTS", "unloading",
    };
    return kNames[static_cast<std::size_t>(function)];
}

}  // namespace guard
