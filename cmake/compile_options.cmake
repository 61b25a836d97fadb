# What every target of ours is compiled with.
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()
# -O2 and not CMake's -O3, which only makes the module larger.
string(REPLACE "-O3" "-O2" CMAKE_C_FLAGS_RELEASE "${CMAKE_C_FLAGS_RELEASE}")
string(REPLACE "-O3" "-O2" CMAKE_CXX_FLAGS_RELEASE "${CMAKE_CXX_FLAGS_RELEASE}")
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_library(quillcaption_options INTERFACE)
# No fused multiply-add: a time must come out the same on every target.
target_compile_options(quillcaption_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -ffp-contract=off
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor>
  $<$<BOOL:${QUILLCAPTION_WERROR}>:-Werror>)
# GCC's remark that a calling convention changed in GCC 7 concerns nobody here.
target_compile_options(quillcaption_options INTERFACE
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<STREQUAL:${CMAKE_SYSTEM_PROCESSOR},arm>>:-Wno-psabi>)

if(QUILLCAPTION_SANITIZE)
  add_compile_options(-fsanitize=${QUILLCAPTION_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${QUILLCAPTION_SANITIZE})
  if(QUILLCAPTION_SANITIZE MATCHES "undefined")
    add_compile_options(-fsanitize=float-cast-overflow)
    # Our hosts find functions by number, as players do, and have types of their own for them: an int
    # for an enumeration. Clang alone would call that an error.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
      add_compile_options(-fno-sanitize=function)
    endif()
  endif()
  # A fuzzer that is told of every comparison takes a third longer; ours have a mutator instead.
  if(QUILLCAPTION_SANITIZE MATCHES "fuzzer-no-link")
    add_compile_options(-fno-sanitize-coverage=trace-cmp,stack-depth)
  endif()
endif()

# Optimisation across files, which makes the module smaller and faster, where the compiler has it
# and nobody wants to see single functions.
include(CheckIPOSupported)
check_ipo_supported(RESULT QUILLCAPTION_LTO OUTPUT ignored LANGUAGES CXX)
if(QUILLCAPTION_SANITIZE OR NOT CMAKE_BUILD_TYPE STREQUAL "Release")
  set(QUILLCAPTION_LTO OFF)
endif()
