# Where things go at installation: the standard variables (CMAKE_INSTALL_LIBDIR and so on), and two
# of our own that follow them unless they are given (-D...), so that a change of one moves all.
#   QUILLCAPTION_MODULE_DIR  folder of the module, relative to the prefix or absolute. A private
#                            one, because nobody links with a plug-in.
#   QUILL_MODULE_DIR         where quill looks for it: relative to the folder of quill, so that an
#                            installation can be moved, or absolute
include(GNUInstallDirs)
if(NOT DEFINED QUILLCAPTION_MODULE_DIR)
  set(QUILLCAPTION_MODULE_DIR "${CMAKE_INSTALL_LIBDIR}/quillcaption")
endif()
if(NOT DEFINED QUILL_MODULE_DIR)
  cmake_path(ABSOLUTE_PATH QUILLCAPTION_MODULE_DIR BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}
             OUTPUT_VARIABLE full_module_dir)
  file(RELATIVE_PATH QUILL_MODULE_DIR ${CMAKE_INSTALL_FULL_BINDIR} ${full_module_dir})
endif()
