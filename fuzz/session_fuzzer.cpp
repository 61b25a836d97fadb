// Session logs, as they come from anywhere: one that is damaged is refused with its place; any
// other can be shown, written as a case that can be read, and played, which comes to the same each
// time.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/check.h"
#include "support/module.h"
#include "tools/conform/cases/case_reader.h"
#include "tools/console/failure.h"
#include "tools/replay/exports.h"
#include "tools/replay/log_reader.h"
#include "tools/replay/session_player.h"
#include "tools/replay/session_printer.h"

namespace {

using namespace quill;

constexpr char kName[] = "session.log";

const support::Module& module() {
    static const support::Module kModule;
    return kModule;
}

/// Keeps what the calls came to.
class Notes : public replay::PlaySink {
  public:
    void Begin(const replay::Call& call) override { lines.push_back(replay::DescribeCall(call)); }
    bool End(const replay::Call& call, const replay::Outcome& outcome) override {
        for (const std::string& line : replay::DescribeOutcome(call.function, outcome)) {
            lines.push_back(line);
        }
        return true;
    }

    std::vector<std::string> lines;
};

std::vector<std::string> play(const replay::Session& session) {
    Notes notes;
    const auto nothing = [] { return std::string(); };
    replay::SessionPlayer player(session, module().methods(), nothing, notes);
    player.Play();
    return notes.lines;
}

bool is_printable(std::string_view text) {
    for (const char byte : text) {
        if (static_cast<unsigned char>(byte) < ' ' && byte != '\n' && byte != '\t') {
            return false;
        }
    }
    return true;
}

void check_exports(const replay::Session& session) {
    FUZZ_CHECK(is_printable(replay::ShowAsText(session)));
    FUZZ_CHECK(is_printable(replay::ShowAsJson(session)));
    try {
        const std::string text = replay::WriteCase(session);
        FUZZ_CHECK(conform::ReadCases("session.cases", text).size() == 1);
    } catch (const console::Failure& failure) {
        FUZZ_CHECK(std::string_view(failure.what()).substr(0, sizeof kName - 1) == kName);
    }
    try {
        for (const replay::FedTrack& track : replay::FedTracks(session, 0)) {
            std::size_t size = 0;
            for (const std::size_t chunk : track.sizes) {
                size += chunk;
            }
            FUZZ_CHECK(size == track.bytes.size() && size != 0);
        }
    } catch (const console::Failure&) {
        // Nothing was fed.
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    replay::Session session;
    try {
        session = replay::ReadSession(kName, {reinterpret_cast<const char*>(data), size});
    } catch (const console::Failure& failure) {
        FUZZ_CHECK(failure.code() == console::kExitUsage);
        FUZZ_CHECK(std::string_view(failure.what()).substr(0, sizeof kName) == "session.log:");
        return 0;
    }
    check_exports(session);
    FUZZ_CHECK(play(session) == play(session));
    return 0;
}
