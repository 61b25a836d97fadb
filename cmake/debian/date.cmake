# Read by cpack before it packs. What it writes bears the date of the commit, unless SOURCE_DATE_EPOCH
# gives another: then two packages of one commit are the same to the byte.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND git -C ${CPACK_QUILLCAPTION_SOURCE} log -1 --format=%ct
                  OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE failed)
  if(NOT failed AND date)
    set(ENV{SOURCE_DATE_EPOCH} ${date})
  endif()
endif()
