# cpack -G TGZ: everything that is installed, as one archive. cpack -G DEB: a package for each of its
# components. Both come out the same to the byte wherever and whenever a commit is packed.
set(CPACK_PACKAGE_NAME quillcaption)
set(CPACK_PACKAGE_VENDOR quillcaption)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGE_CONTACT "The maintainers of quillcaption <maintainers@quillcaption.example>")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_SOURCE_GENERATOR "")
set(CPACK_STRIP_FILES ON)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/debian/date.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/package_files.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/root_owned.cmake)
set(CPACK_QUILLCAPTION_SOURCE ${PROJECT_SOURCE_DIR})

# Debian's names of the architectures; another target's is given with -DQUILLCAPTION_ARCHITECTURE.
if(NOT DEFINED QUILLCAPTION_ARCHITECTURE)
  set(QUILLCAPTION_ARCHITECTURE ${CMAKE_SYSTEM_PROCESSOR})
  if(CMAKE_SYSTEM_PROCESSOR STREQUAL "arm")
    set(QUILLCAPTION_ARCHITECTURE armhf)
    if(CMAKE_CXX_LIBRARY_ARCHITECTURE MATCHES "gnueabi$")
      set(QUILLCAPTION_ARCHITECTURE armel)
    endif()
  elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(i.86|x86_64)$")
    set(QUILLCAPTION_ARCHITECTURE i386)
  endif()
endif()
set(CPACK_PACKAGE_FILE_NAME quillcaption-${PROJECT_VERSION}-${QUILLCAPTION_ARCHITECTURE})

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
set(libraries "${libc}, libgcc-s1 (>= 3.5), libstdc++6 (>= ${compiler_major})")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_COMPONENTS_ALL "")

# quillcaption_package(COMPONENT NAME ARCHITECTURE SECTION DEPENDS SUMMARY DESCRIPTION): what Debian is
# told of the package of a component.
function(quillcaption_package component name architecture section depends summary description)
  list(APPEND CPACK_COMPONENTS_ALL ${component})
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${description}")
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${key}_PACKAGE_ARCHITECTURE ${architecture})
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section})
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}")
  foreach(field DEBIAN_${key}_DESCRIPTION DEBIAN_${key}_PACKAGE_NAME DEBIAN_${key}_PACKAGE_DEPENDS
          DEBIAN_${key}_PACKAGE_ARCHITECTURE DEBIAN_${key}_PACKAGE_SECTION)
    set(CPACK_${field} "${CPACK_${field}}" PARENT_SCOPE)
  endforeach()
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} PARENT_SCOPE)
endfunction()

quillcaption_package(module quillcaption ${QUILLCAPTION_ARCHITECTURE} video "${libraries}"
  "WebVTT subtitle-track parser module for media players"
  "A player loads this module, feeds it a track in chunks as they arrive,
and gets flat cue records from it. It is all that a board needs.")
# Of any version: what it has of the module is the binary contract alone.
quillcaption_package(guard quillcaption-guard ${QUILLCAPTION_ARCHITECTURE} devel
  "${libraries}, quillcaption"
  "module that finds the mistakes of a player's calls"
  "A player loads it in the place of the subtitle module, to which it passes
every call on. It tells which of the rules a call breaks, and records what
a player does.")
quillcaption_package(header quillcaption-dev ${QUILLCAPTION_ARCHITECTURE} libdevel ""
  "header of the WebVTT subtitle-track parser module"
  "What a player is compiled with: the header, a package for CMake, and a
file for pkg-config. The module itself is loaded, not linked with.")
if(QUILLCAPTION_TOOLS)
  quillcaption_package(tools quillcaption-tools ${QUILLCAPTION_ARCHITECTURE} video
    "${libraries}, quillcaption"
    "command-line host of the WebVTT subtitle-track parser module"
    "It plays tracks through the module, says what is lost of them and why,
corrects what is certain, and tries whether a build of the module behaves
as players rely on.")
endif()
if(QUILLCAPTION_GSTREAMER)
  set(framework "libglib2.0-0 (>= ${GSTREAMER_glib-2.0_VERSION})")
  string(APPEND framework ", libgstreamer1.0-0 (>= ${GSTREAMER_gstreamer-1.0_VERSION})")
  quillcaption_package(gstreamer gstreamer1.0-quillcaption ${QUILLCAPTION_ARCHITECTURE} video
    "${libraries}, ${framework}, quillcaption"
    "GStreamer element for WebVTT captions"
    "It takes a WebVTT track, whole or as it arrives, drives the subtitle
module with it, and gives timed text.")
endif()
quillcaption_package(docs quillcaption-doc all doc ""
  "pages and samples of the WebVTT subtitle-track parser module"
  "The host guide, the format of the tracks, an example of a host, and tracks
to try, damaged ones too.")
include(CPack)
