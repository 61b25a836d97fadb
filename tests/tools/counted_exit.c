// Part of quill in the build that counts the lines which are run: an _exit that keeps the counts
// when QUILL_COUNT_CHILDREN is set. Each time takes as long as some dozens of files take to be
// rewritten.
#include <stdlib.h>
#include <unistd.h>

void __gcov_dump(void);
_Noreturn void __real__exit(int status);

_Noreturn void __wrap__exit(int status) {
    if (getenv("QUILL_COUNT_CHILDREN") != NULL) {
        __gcov_dump();
    }
    __real__exit(status);
}
