// What the module makes of each header line.
#ifndef TOOLS_CHECK_HEADER_CHECK_H_
#define TOOLS_CHECK_HEADER_CHECK_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "tools/check/finding.h"
#include "tools/check/lone_parser.h"
#include "tools/check/sums.h"
#include "tools/check/track_text.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_handle.h"

namespace quill::check {

// The chunks in which a map header makes the module throw, with its line.
using ThrowingMaps = std::map<std::size_t, std::uint32_t>;

class HeaderCheck {
  public:
    // All that is given must outlive the check.
    HeaderCheck(const host::ModuleHandle& module, host::DiagnosticsCapture& capture,
                std::string_view track, const ChunkPlan& plan);

    // Goes through the header, from the line behind the signature, which is looked at too.
    void Run(std::size_t begin, Findings& findings, Sums& sums);

    // Where the header ends, and the number of the line there.
    std::size_t end() const { return end_; }
    std::uint32_t end_line() const { return line_; }
    const ThrowingMaps& throwing_maps() const { return throwing_maps_; }

  private:
    enum class Use { kUsed, kIgnored, kLost };

    Use Examine(const Line& line, const Verdict& verdict, Findings& findings);
    void ExamineSignature(Findings& findings);
    void ExamineTimes(const Line& line, Findings& findings);
    Use ExamineMap(const Line& line, const Verdict& verdict, Findings& findings);
    void ExamineShift(const Line& line, Findings& findings);
    double AskShift(const std::string& map);
    // The fix of a map; empty when the module does not take it.
    std::string WriteMap(std::string_view line);
    bool IsLostInPieces(const Line& line, const Verdict& verdict);
    bool IsSecondMap(const Line& line);
    std::size_t ChunkOf(const Line& line) const {
        return plan_.IndexOf(line.begin + line.all.size());
    }

    const host::ModuleHandle& module_;
    host::DiagnosticsCapture& capture_;
    std::string_view track_;
    const ChunkPlan& plan_;
    std::size_t end_ = 0;
    std::uint32_t line_ = 1;
    bool behind_times_ = false;
    LoneParser asked_;               // about lines that are nearly timing lines
    std::string above_;              // the line above
    std::uint32_t looks_blank_ = 0;  // the last line that does; none is 0
    std::string blank_characters_;   // that it holds
    std::optional<Line> map_;        // the first one of its chunk
    ThrowingMaps throwing_maps_;
};

}  // namespace quill::check

#endif  // TOOLS_CHECK_HEADER_CHECK_H_
