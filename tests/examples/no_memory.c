/* A malloc that has nothing left, for a program linked with --wrap=malloc. */
#include <stddef.h>

void* __wrap_malloc(size_t size);

void* __wrap_malloc(size_t size) {
    (void)size;
    return NULL;
}
