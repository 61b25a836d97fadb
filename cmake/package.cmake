# cpack -G DEB and cpack -G TGZ: everything that is installed, as one package for the target.
set(CPACK_PACKAGE_NAME quillcaption)
set(CPACK_PACKAGE_VENDOR quillcaption)
set(CPACK_PACKAGE_CONTACT "The maintainers of quillcaption")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_SOURCE_GENERATOR "")
set(CPACK_STRIP_FILES ON)

# Debian's names of the architectures; another target's is given with -DQUILLCAPTION_ARCHITECTURE.
if(NOT DEFINED QUILLCAPTION_ARCHITECTURE)
  set(QUILLCAPTION_ARCHITECTURE ${CMAKE_SYSTEM_PROCESSOR})
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "arm")
    set(QUILLCAPTION_ARCHITECTURE armhf)
  elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(i.86|x86_64)$")
    set(QUILLCAPTION_ARCHITECTURE i386)
  endif()
endif()
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${QUILLCAPTION_ARCHITECTURE})
set(CPACK_PACKAGE_FILE_NAME quillcaption-${PROJECT_VERSION}-${QUILLCAPTION_ARCHITECTURE})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

# A cross build has no packages of the target to ask, so the libraries that the compiler brings are
# what the package asks for: the same versions or later ones.
execute_process(
  COMMAND ${CMAKE_C_COMPILER} -E -dM -x c -include features.h /dev/null
  OUTPUT_VARIABLE macros ERROR_QUIET)
set(libc libc6)
if(macros MATCHES "__GLIBC__ ([0-9]+)")
  set(glibc ${CMAKE_MATCH_1})
  string(REGEX MATCH "__GLIBC_MINOR__ ([0-9]+)" ignored "${macros}")
  set(libc "libc6 (>= ${glibc}.${CMAKE_MATCH_1})")
endif()
string(REGEX MATCH "^[0-9]+" compiler_major ${CMAKE_CXX_COMPILER_VERSION})
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "${libc}, libgcc-s1 (>= 3.5), libstdc++6 (>= ${compiler_major})")

set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
include(CPack)
