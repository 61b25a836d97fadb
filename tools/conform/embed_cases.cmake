# Writes a source file that holds the texts of the case files.
#   cmake "-DCASES=file;file" -DOUTPUT=embedded_cases.cpp -P embed_cases.cmake
set(source "// Made by embed_cases.cmake from the case files.\n#include \"tools/conform/suite.h\"\n\n")
string(APPEND source "namespace quill::conform {\n\nconst std::vector<CaseFile>& EmbeddedCases() {\n")
string(APPEND source "    static const std::vector<CaseFile> kFiles = {\n")
foreach(path ${CASES})
  get_filename_component(name ${path} NAME)
  file(READ ${path} text)
  # A compiler need not take longer literals than 64 KiB.
  string(LENGTH "${text}" length)
  if(length GREATER 65000 OR text MATCHES "\\)cases\"")
    message(FATAL_ERROR "${path} cannot be compiled in: it is too long, or holds )cases\"")
  endif()
  string(APPEND source "        {\"${name}\", R\"cases(${text})cases\"},\n")
endforeach()
string(APPEND source "    };\n    return kFiles;\n}\n\n}  // namespace quill::conform\n")
file(WRITE ${OUTPUT} "${source}")
