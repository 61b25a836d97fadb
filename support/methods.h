// The module's functions, found by number.
//
// Nothing here includes the module's headers, the public one neither: a mistake that the module
// and its header share would go unseen otherwise.
#pragma once

#include "support/value_at.h"

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
inline Methods methods_at(const void* table) {
    Methods methods;
    methods.create = value_at<decltype(methods.create)>(table, 0);
    methods.release = value_at<decltype(methods.release)>(table, 4);
    methods.parse = value_at<decltype(methods.parse)>(table, 8);
    methods.set_callback = value_at<decltype(methods.set_callback)>(table, 12);
    methods.get_result = value_at<decltype(methods.get_result)>(table, 16);
    methods.set_video_time = value_at<decltype(methods.set_video_time)>(table, 20);
    return methods;
}

}  // namespace support
