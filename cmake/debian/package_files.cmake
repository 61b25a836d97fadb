# Run by cpack when the files of a package lie ready: adds what every Debian package has, a copyright
# file and a change log, and compresses the manual pages as Debian does.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
find_program(gzip gzip REQUIRED)

# The time of SOURCE_DATE_EPOCH, if it is set. Written by our own names, in no language of the builder's.
string(TIMESTAMP day "%w" UTC)
string(TIMESTAMP month "%m" UTC)
set(days Sun Mon Tue Wed Thu Fri Sat)
set(months - Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec)
list(GET days ${day} day)
math(EXPR month "${month}")  # without a zero before it
list(GET months ${month} month)
string(TIMESTAMP date "${day}, %d ${month} %Y %H:%M:%S +0000" UTC)

foreach(component ${CPACK_COMPONENTS_ALL})
  string(TOUPPER ${component} key)
  set(name ${CPACK_DEBIAN_${key}_PACKAGE_NAME})
  set(prefix ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr)
  set(folder ${prefix}/share/doc/${name})
  file(READ ${CPACK_QUILLCAPTION_SOURCE}/cmake/debian/copyright copyright)
  if(component STREQUAL "tools")
    file(READ ${CPACK_QUILLCAPTION_SOURCE}/cmake/debian/copyright-compiled-in compiled_in)
    string(APPEND copyright "\n${compiled_in}")
  endif()
  file(WRITE ${folder}/copyright "${copyright}")
  file(WRITE ${folder}/changelog
"quillcaption (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * See CHANGELOG.md in the package quillcaption-doc.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
  set(overrides ${CPACK_QUILLCAPTION_SOURCE}/cmake/debian/${name}.lintian-overrides)
  if(EXISTS ${overrides})
    configure_file(${overrides} ${prefix}/share/lintian/overrides/${name} COPYONLY)
  endif()
  file(GLOB pages ${prefix}/share/man/man1/*.1)
  execute_process(COMMAND ${gzip} -9n ${folder}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)
  # Whatever the builder's umask says.
  file(GLOB_RECURSE folders LIST_DIRECTORIES ON ${prefix}/*)
  list(PREPEND folders ${prefix})
  foreach(path ${folders})
    if(IS_DIRECTORY ${path})
      file(CHMOD ${path} DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
           GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    endif()
  endforeach()
  file(GLOB written ${folder}/copyright ${folder}/changelog.gz ${prefix}/share/man/man1/*.gz
       ${prefix}/share/lintian/overrides/*)
  file(CHMOD ${written} FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endforeach()
