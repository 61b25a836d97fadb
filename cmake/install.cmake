# cmake --install, by components: module (what a board needs), guard (for its
# developers, beside the module), header (with the CMake package and
# the pkg-config file), tools (quill, its manual pages and completion), docs (with the
# example and the samples).
include(CMakePackageConfigHelpers)

install(TARGETS quillcaption LIBRARY DESTINATION ${QUILLCAPTION_MODULE_DIR} COMPONENT module)
install(TARGETS quillcaption_guard
        LIBRARY DESTINATION ${QUILLCAPTION_MODULE_DIR} COMPONENT guard)

# The header, as the build's own examples and an installation's users get at it.
add_library(quillcaption_header INTERFACE)
add_library(quillcaption::header ALIAS quillcaption_header)
set_target_properties(quillcaption_header PROPERTIES EXPORT_NAME header)
target_include_directories(quillcaption_header INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
install(FILES include/quillcaption/quillcaption.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/quillcaption COMPONENT header)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/quillcaption)
install(TARGETS quillcaption_header EXPORT quillcaption-targets)
install(EXPORT quillcaption-targets NAMESPACE quillcaption::
        DESTINATION ${package_dir} COMPONENT header)
configure_package_config_file(cmake/quillcaption-config.cmake.in quillcaption-config.cmake
  INSTALL_DESTINATION ${package_dir} PATH_VARS QUILLCAPTION_MODULE_DIR
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
# Remembers the size of a pointer too: a 64-bit project is told that this is not for it.
write_basic_package_version_file(quillcaption-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/quillcaption-config.cmake
              ${PROJECT_BINARY_DIR}/quillcaption-config-version.cmake
        DESTINATION ${package_dir} COMPONENT header)

# The pkg-config file finds its prefix from where it lies, so that an installation can be moved.
file(RELATIVE_PATH pc_to_prefix
     ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pc_to_prefix "${pc_to_prefix}")
foreach(folder QUILLCAPTION_MODULE_DIR CMAKE_INSTALL_INCLUDEDIR)
  set(pc_${folder} "\${prefix}")
  cmake_path(APPEND pc_${folder} "${${folder}}")  # an absolute folder takes the prefix's place
endforeach()
configure_file(cmake/quillcaption.pc.in quillcaption.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/quillcaption.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT header)

if(QUILLCAPTION_TOOLS)
  install(TARGETS quill RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  install(DIRECTORY man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools
          FILES_MATCHING PATTERN "*.1")
  install(FILES completions/quill.bash RENAME quill
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools)
  install(FILES completions/_quill
          DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT tools)
  install(FILES completions/quill.fish
          DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT tools)
endif()

install(FILES README.md CHANGELOG.md SECURITY.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT docs)
install(DIRECTORY docs examples samples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT docs)
