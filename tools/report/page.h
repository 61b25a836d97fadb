// The page: its markup, style and script, which are compiled in, and the data that it shows.
#ifndef TOOLS_REPORT_PAGE_H_
#define TOOLS_REPORT_PAGE_H_

#include <string>

#include "tools/report/columns.h"

namespace quill::report {

// Made by embed_page.cmake: the whole page, with kMediaMark and kDataMark in the places of what
// belongs to one report.
extern const char kPage[];
constexpr char kDataMark[] = "@DATA@";
constexpr char kMediaMark[] = "@MEDIA@";

// A page that holds the data, from which nothing can get out: not as markup, not as script.
// `has_video`: the page may play the files that lie around it.
std::string MakePage(const Json& data, bool has_video);

}  // namespace quill::report

#endif  // TOOLS_REPORT_PAGE_H_
