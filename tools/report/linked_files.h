// The files of a player that a page shows beside the cues.
#ifndef TOOLS_REPORT_LINKED_FILES_H_
#define TOOLS_REPORT_LINKED_FILES_H_

#include <string>

namespace quill::report {

// The way from the page to a file, as a page refers to it. `page` is the page's own file, or empty
// when it is not known, which makes it the way from the working folder. Throws Failure when the
// file cannot be read.
std::string LinkTo(const std::string& file, const std::string& page);

// The picture in a file, as a page can hold it. Throws Failure when it cannot be read, is too large
// or no PNG, JPEG, GIF or WebP.
std::string EmbedPicture(const std::string& file);

}  // namespace quill::report

#endif  // TOOLS_REPORT_LINKED_FILES_H_
