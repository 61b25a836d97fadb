#include "guarded_parse.h"

#include <new>
#include <stdexcept>

int guarded_parse(const WebvttModuleMethods* methods, unsigned int handle, const void* data,
                  unsigned int size) {
    // Nothing of an exception may be kept: its code goes when the module is unloaded.
    try {
        return methods->pfnParse(handle, data, size);
    } catch (const std::out_of_range&) {
        return GUARDED_PARSE_BAD_INPUT;
    } catch (const std::bad_alloc&) {
        return GUARDED_PARSE_NO_MEMORY;
    } catch (...) {
        return GUARDED_PARSE_UNKNOWN;
    }
}
