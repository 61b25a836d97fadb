#include "guard/report.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "guard/kept_errno.h"
#include "guard/log_file.h"
#include "guard/without_signals.h"
#include "support/session_log.h"

namespace guard {
namespace {

std::atomic<LogFile*> kept_log{nullptr};

/// Twice as long as a line, for it may be all quotation marks.
using LoggedMistake = Text<1600>;

/// What stands in a line is printable.
void add_quoted(LoggedMistake& json, const char* text) {
    json << "\"";
    for (; *text != '\0'; ++text) {
        const char byte[] = {*text, '\0'};
        json << (*text == '"' || *text == '\\' ? "\\" : "") << byte;
    }
    json << "\"";
}

}  // namespace

void write_line(const Line& line) {
    const KeptErrno kept;
    Text<760> whole;
    whole << "quillcaption-guard: " << line.c_str() << "\n";
    const WithoutSignals without;
    while (write(STDERR_FILENO, whole.c_str(), whole.size()) < 0 && errno == EINTR) {
    }
}

void report_to(LogFile* log) {
    kept_log = log;
}

void report_mistake(const MistakeText& mistake, unsigned long call, const Line& line) {
    write_line(line);
    namespace field = support::session_log::field;
    if (LogFile* const log = kept_log) {
        const KeptErrno kept;
        LoggedMistake json;
        json << "{\"" << field::kMistake << "\":\"" << mistake.code << "\",\"" << field::kCall
             << "\":" << call << ",\"" << field::kText << "\":";
        add_quoted(json, line.c_str());
        json << "}\n";
        log->write({json.c_str(), json.size()});
    }
}

}  // namespace guard
