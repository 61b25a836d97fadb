# Writes a source file that holds the page about the codes.
#   cmake -DPAGE=diagnostics.md -DOUTPUT=embedded_page.cpp -P embed_page.cmake
file(READ ${PAGE} text)
if(text MATCHES "\\)page\"")
  message(FATAL_ERROR "${PAGE} cannot be compiled in: it holds )page\"")
endif()
file(WRITE ${OUTPUT} "// Made by embed_page.cmake from ${PAGE}.
#include \"tools/check/code_page.h\"

namespace quill::check {

const char kCodePage[] = R\"page(${text})page\";

}  // namespace quill::check
")
