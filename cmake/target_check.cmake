# Stops the configure step with one sentence when the compiler is not for a 32-bit target.
include(CheckCXXSourceCompiles)

set(hint "${QUILLCAPTION_COMPILER_HINT}")
if(NOT hint)
  set(hint "use the preset i386 or armhf (cmake --preset i386), or a toolchain file for a 32-bit board")
endif()

set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
check_cxx_source_compiles("
  static_assert(sizeof(int) == 4 && sizeof(long) == 4 && sizeof(void*) == 4, \"ILP32\");
  int main() {}" QUILLCAPTION_TARGET_IS_ILP32)
check_cxx_source_compiles("#include <cerrno>\n#include <string>\nint main() {}"
                          QUILLCAPTION_HAS_STANDARD_LIBRARY)
unset(CMAKE_TRY_COMPILE_TARGET_TYPE)

if(NOT QUILLCAPTION_TARGET_IS_ILP32)
  message(FATAL_ERROR "${CMAKE_CXX_COMPILER} does not compile for a 32-bit (ILP32) target: ${hint}.")
endif()
if(NOT QUILLCAPTION_HAS_STANDARD_LIBRARY)
  message(FATAL_ERROR "${CMAKE_CXX_COMPILER} lacks its 32-bit standard library: ${hint}.")
endif()
