# i386 on an x86-64 Debian machine: the machine's own compiler with -m32.
# Needs g++-<major>-multilib for the installed g++. The metapackages gcc-multilib and
# g++-multilib would do too, but they conflict with every cross compiler.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i386)
if(NOT CMAKE_C_COMPILER)
  set(CMAKE_C_COMPILER gcc)
endif()
if(NOT CMAKE_CXX_COMPILER)
  set(CMAKE_CXX_COMPILER g++)
endif()

# Without the metapackages <asm/errno.h> and its like lie in the machine's own multiarch folder only.
execute_process(COMMAND ${CMAKE_C_COMPILER} -print-multiarch
                OUTPUT_VARIABLE multiarch OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(NOT multiarch)
  set(multiarch x86_64-linux-gnu)
endif()

# Doubles are computed in SSE registers: x87 would keep excess precision that a record could show.
set(i386_flags "-m32 -msse2 -mfpmath=sse -idirafter /usr/include/${multiarch}")
set(CMAKE_C_FLAGS_INIT "${i386_flags}")
set(CMAKE_CXX_FLAGS_INIT "${i386_flags}")
set(QUILLCAPTION_COMPILER_HINT
    "install Debian's g++-<major>-multilib for your g++ (scripts/setup does), or use the preset armhf")
