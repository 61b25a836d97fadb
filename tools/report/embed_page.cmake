# Writes a source file that holds the page of quill report, all in one: its markup, its style, and
# the modules of its script one behind the other.
#   cmake -DPAGE=page.html -DSTYLE=page.css "-DMODULES=dom.js;..." -DOUTPUT=page.cpp -P embed_page.cmake
# A module stands behind those that it imports. What it imports and exports is left out here: in one
# piece all of them see each other, and no two of them may use one name.

# hash(VARIABLE TEXT): the text's hash as a content security policy has it, in base64.
function(hash variable text)
  set(digits "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  string(SHA256 hex "${text}")
  set(base64 "")
  string(APPEND hex "00")  # up to a multiple of three bytes
  foreach(group RANGE 0 60 6)
    string(SUBSTRING ${hex} ${group} 6 bytes)
    foreach(shift 18 12 6 0)
      math(EXPR digit "(0x${bytes} >> ${shift}) & 63")
      string(SUBSTRING ${digits} ${digit} 1 character)
      string(APPEND base64 ${character})
    endforeach()
  endforeach()
  string(SUBSTRING ${base64} 0 43 base64)
  set(${variable} "sha256-${base64}=" PARENT_SCOPE)
endfunction()

file(READ ${PAGE} page)
string(REPLACE "id=\"data\"></script>" "id=\"data\">@DATA@</script>" page "${page}")
file(READ ${STYLE} style)
set(script "")
set(names "")
foreach(file ${MODULES})
  file(READ ${file} module)
  string(REGEX REPLACE "import {[^}]*} from '[^']*';\n" "" module "${module}")
  string(REGEX REPLACE "\nexport (class|const|function)" "\n\\1" module "${module}")
  if(module MATCHES "\n(import|export) ")
    message(FATAL_ERROR "${file} has an import or export that embed_page.cmake does not understand")
  endif()
  string(REGEX MATCHALL "\n(class|const|function) [A-Za-z_]+" added "${module}")
  list(TRANSFORM added REPLACE ".* " "")
  foreach(name ${added})
    list(FIND names ${name} found)
    if(NOT found EQUAL -1)
      message(FATAL_ERROR "${file}: there is a ${name} in another module already")
    endif()
  endforeach()
  list(APPEND names ${added})
  string(APPEND script "${module}")
endforeach()
foreach(part style script)
  string(TOUPPER ${part} name)
  hash(hash_of_part "${${part}}")
  string(REPLACE "@${name}_HASH@" "${hash_of_part}" page "${page}")
  # A browser takes the hash of all that stands between the tags.
  string(REPLACE "></${part}>" ">${${part}}</${part}>" page "${page}")
endforeach()
if(page MATCHES "\\)page\"")
  message(FATAL_ERROR "the page cannot be compiled in: it holds )page\"")
endif()
file(WRITE ${OUTPUT} "// Made by embed_page.cmake from the files of tools/report/page.
#include \"tools/report/page.h\"

namespace quill::report {

const char kPage[] = R\"page(${page})page\";

}  // namespace quill::report
")
