# Run by cpack behind packing. Writes the archive anew from the files that were packed, as root's: it is
# root who unpacks it on a board, where tar keeps the number of whoever packed it.
find_program(tar tar REQUIRED)
find_program(gzip gzip REQUIRED)
set(dates)
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  set(dates --mtime=@$ENV{SOURCE_DATE_EPOCH})
endif()
foreach(archive ${CPACK_PACKAGE_FILES})
  if(archive MATCHES "[.]tar[.]gz$")
    execute_process(
      COMMAND ${tar} --create --sort=name --owner=root:0 --group=root:0 --mode=u+w,go-w,a+rX ${dates}
              -C ${CPACK_TOPLEVEL_DIRECTORY} ${CPACK_PACKAGE_FILE_NAME}
      COMMAND ${gzip} -9n
      OUTPUT_FILE ${archive} COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
