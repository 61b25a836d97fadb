// What the guard records of a host, read back: it is what the module does, and when texts are
// hidden, what it does for what is recorded.
//
// QUILLCAPTION_TRACKS: how many random tracks are played.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "host/support/tracks.h"
#include "support/module.h"
#include "support/notation.h"
#include "support/parser.h"
#include "support/random_source.h"
#include "support/session_log.h"
#include "support/stdout_capture.h"

namespace {

using nlohmann::json;
using support::Parser;
using support::host::chunks_of;
namespace field = support::session_log::field;

using Lines = std::vector<std::string>;

/// What comes of a chunk, with or without the texts.
struct Step {
    std::string ending;
    std::string printed;
    Lines cues;
    Lines cues_without_text;
};

const char* name_of(support::Ending ending) {
    constexpr const char* kNames[] = {"0", "1", "2", "std::bad_alloc", "std::out_of_range", "?"};
    return kNames[static_cast<int>(ending)];
}

/// Feeds a chunk and takes what it completes.
Step play(Parser& parser, std::string_view chunk, support::StdoutCapture& output) {
    Step step;
    step.ending = name_of(parser.feed(chunk));
    step.printed = support::quote(output.more());
    for (support::CueRecord& cue : parser.take()) {
        step.cues.push_back(describe(cue));
        cue.text.clear();
        step.cues_without_text.push_back(describe(cue));
    }
    return step;
}

std::string bytes_of(const json& value) {
    return support::session_log::bytes_of(value.get<std::string>()).value();
}

/// A record's line out of what the log says of it.
std::string describe(const json& cue) {
    const std::string text = bytes_of(cue.at("pcText"));
    support::CueRecord record(std::vector<char>(48).data());
    record.has_text = true;
    record.text = text;
    record.start = cue.at("dStartTime");
    record.end = cue.at("dEndTime");
    record.line = cue.at("i4Line");
    record.reserved = cue.at("fgReserved");
    record.snap_to_lines = cue.at("fgSnapToLines");
    record.position = cue.at("u1Position");
    record.size = cue.at("u1Size");
    record.text_align = cue.at("eTextAlign");
    record.vertical = cue.at("eVertical");
    return support::describe(record);
}

/// The guard, loaded with a log and unloaded again.
class Session {
  public:
    explicit Session(const char* kind) {
        setenv("QUILLCAPTION_GUARD_LOG", m_path.c_str(), 1);
        setenv("QUILLCAPTION_GUARD_LOG_TEXT", kind, 1);
        m_library = dlopen(QUILLCAPTION_BUILT_GUARD, RTLD_NOW | RTLD_LOCAL);
        EXPECT_NE(nullptr, m_library) << dlerror();
        methods = support::methods_at(
            support::value_at<const void*>(dlsym(m_library, "WEBVTT_MODULE_INFO"), 8));
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() { std::remove(m_path.c_str()); }

    /// Ends it, and reads what was recorded.
    std::vector<json> end() {
        dlclose(m_library);
        std::vector<json> entries;
        std::ifstream file(m_path);
        for (std::string line; std::getline(file, line);) {
            text += line + "\n";
            entries.push_back(json::parse(line));
        }
        return entries;
    }

    support::Methods methods;
    std::string text;  ///< the log

  private:
    std::string m_path = testing::TempDir() + "session." + std::to_string(getpid()) + ".log";
    void* m_library;
};

/// What should be equal and is not.
class Differences {
  public:
    template <typename Value>
    void compare(const Value& wanted, const Value& found, const json& where) {
        if (!(wanted == found)) {
            m_lines.push_back(testing::PrintToString(wanted) + " and not " +
                              testing::PrintToString(found) + " at " + where.dump());
        }
    }
    const Lines& lines() const { return m_lines; }

  private:
    Lines m_lines;
};

std::string ending_of(const json& entry) {
    return entry.contains(field::kException)
               ? entry.at(field::kException).at(field::kType).get<std::string>()
               : std::to_string(entry.at(field::kResult).get<int>());
}

/// Plays a log into the module, as far as a host does what play() does, and finds what differs.
class Player {
  public:
    Player(const support::Methods& methods, Differences& differences)
        : m_methods(methods), m_differences(differences) {}

    void play(const json& entry) {
        if (entry.contains(field::kDo)) {
            m_call = entry;
        } else if (entry.contains(field::kDelivery)) {
            Lines cues;
            for (const json& cue : entry.at(field::kCues)) {
                cues.push_back(describe(cue));
            }
            m_differences.compare(m_step.cues, cues, m_call);
        } else if (entry.contains(field::kReturn)) {
            m_differences.compare(m_call.at(field::kCall), entry.at(field::kReturn), m_call);
            play_return(entry);
        }
    }

  private:
    void play_return(const json& entry) {
        const std::string verb = m_call.at(field::kDo);
        const unsigned number = m_call.value(field::kParser, 0U);
        std::string printed = support::quote("");
        if (verb == "create") {
            m_parsers[entry.at(field::kParser)] = std::make_unique<Parser>(m_methods);
        } else if (verb == "release") {
            m_parsers.erase(number);
        } else if (verb == "parse") {
            m_step = ::play(*m_parsers.at(number), bytes_of(m_call.at(field::kBytes)), m_output);
            printed = m_step.printed;
            m_differences.compare(m_step.ending, ending_of(entry), m_call);
        }
        m_differences.compare(printed, support::quote(bytes_of(entry.at(field::kPrinted))), m_call);
    }

    support::Methods m_methods;
    Differences& m_differences;
    support::StdoutCapture m_output;
    std::map<unsigned, std::unique_ptr<Parser>> m_parsers;
    json m_call;
    Step m_step;
};

struct Cut {
    std::string track;
    std::size_t chunk;
};

constexpr std::size_t kChunks[] = {1, 2, 3, 7, 16, 50, 400, 1U << 20};

std::vector<Cut> samples() {
    std::vector<Cut> cuts;
    for (const std::string& name : support::host::sample_names()) {
        for (const std::size_t chunk : {16U, 1U << 20}) {
            cuts.push_back({support::host::sample(name) + "\n\n\n", chunk});
        }
    }
    return cuts;
}

// What a track says that nobody is to read.
constexpr const char* kSecrets[] = {"Secret",
                                    "sEcret77",
                                    "Gr\xC3\xBC\xC3\x9F"
                                    "e",
                                    "\xD0\x9F\xD1\x80\xD0\xB8",
                                    "\xE4\xBD\xA0\xE5\xA5\xBD",
                                    "\xF0\x9F\x98\x80q",
                                    "\xE9t\xE9"};
constexpr const char* kTimings[] = {"00:01.000 --> 00:02.000",
                                    "01:02:03.500 -->00:00:04.250",
                                    "00:01.000 --> 00:02.000 align:start line:50% region:r x",
                                    "00:01,000 --> 00:02,000",
                                    " 00:01.000  -->  00:02.000 ",
                                    "00:01.000 --> 00:99.000",
                                    "00:01.000 --> 00:02.000 line:- x",
                                    "00:01.000 --> 00:02.000 size:4x% position:1.2.3% x"};
constexpr const char* kMarkup[] = {
    "<b>",     "</b>",         "<i>",      "</i>",      "<v ",     "<v.loud ", ">",
    "<c.",     "<c.red.big>",  "</c>",     "<lang en>", "</lang>", "<ruby>",   "<rt>",
    "</ruby>", "<00:01.500>",  "<00:01.5", "<1",        "<",       "</",       "<>",
    "</x>",    "&amp;",        "&lt;",     "&gt;",      "&nbsp;",  "&lrm;",    "&rlm;",
    "&",       "&amp",         "&a",       ";",         "&foo;",   "amp;",     "mp;",
    "& ",      "-->",          "--> ",     " - ",       ":",       ".",        "12",
    "5",       "00:12:34.567", ":abcdef",  "\t",        "\f",      "\xC2\xA0", "\xE2\x80\x8E",
    "\xA0",    "\xC2"};
constexpr const char* kHeaders[] = {"Region: id=r width=4x%",
                                    "X-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:"
                                    "00:00:00.000",
                                    "X-TIMESTAMP-MAP", "X-TIMESTAMP-MAP=FOO:1",
                                    "X-TIMESTAMP-MAP=MPEGTS:1x,LOCAL:00:00.000"};

/// A track that breaks every rule sooner or later.
class RandomTrack {
  public:
    explicit RandomTrack(unsigned seed) : m_random(seed) {}

    std::string track() {
        std::string text = "WEBVTT";
        text += m_random.one_in(3) ? std::string(" ") + secret() + end() : end();
        for (unsigned lines = m_random.between(0, 3); lines > 0 && !m_random.one_in(3); --lines) {
            text += (m_random.one_in(3) ? secret() : m_random.pick(kHeaders)) + end();
        }
        text += end();
        for (unsigned blocks = m_random.between(1, 8); blocks > 0; --blocks) {
            add_block(text);
        }
        return text + "\n\n\n";
    }

  private:
    std::string secret() { return m_random.pick(kSecrets); }
    std::string end() {
        const char* const kEnds[] = {"\r", "\r\n"};
        return m_random.one_in(6) ? m_random.pick(kEnds) : "\n";
    }

    std::string line() {
        std::string text;
        for (unsigned pieces = m_random.between(1, 6); pieces > 0; --pieces) {
            text += m_random.one_in(3) ? secret() : std::string(m_random.pick(kMarkup));
            text += m_random.one_in(4) ? " " : "";
        }
        return text;
    }

    void add_block(std::string& text) {
        if (m_random.one_in(3)) {
            text += (m_random.one_in(2) ? "NOTE " + secret() : line()) + end();
        }
        if (!m_random.one_in(12)) {
            text += m_random.one_in(12) ? line() + " --> 00:02.000" : m_random.pick(kTimings);
            text += end();
        }
        for (unsigned lines = m_random.one_in(10) ? 12 : m_random.between(0, 3); lines > 0;
             --lines) {
            text += line() + end();
        }
        text += end();
        text += m_random.one_in(6) ? end() : "";
    }

    support::RandomSource m_random;
};

std::vector<Cut> random_tracks() {
    std::vector<Cut> cuts;
    const unsigned count = support::number_from_environment("QUILLCAPTION_TRACKS", 64);
    for (unsigned seed = 0; seed < count; ++seed) {
        cuts.push_back({RandomTrack(seed).track(), kChunks[seed % std::size(kChunks)]});
    }
    return cuts;
}

/// Whatever stands in a log that hides, but for what every track has.
void expect_nothing_secret(const std::string& log) {
    for (const char* const secret : kSecrets) {
        const std::size_t at = log.find(support::session_log::byte_string(secret));
        EXPECT_EQ(std::string::npos, at) << log.substr(at - std::min<std::size_t>(at, 60), 120);
    }
}

/// Plays tracks into the module and through the guard, and gives what came of each chunk.
std::vector<Step> play(const std::vector<Cut>& cuts, const support::Methods& module,
                       const support::Methods& guard, Differences& differences) {
    std::vector<Step> seen;
    support::StdoutCapture output;
    for (const Cut& cut : cuts) {
        Parser guarded(guard);
        Parser bare(module);
        const std::size_t first = support::host::first_line_size(cut.track);
        for (const std::string_view chunk : chunks_of(cut.track, cut.chunk, first)) {
            const Step without = play(bare, chunk, output);
            seen.push_back(play(guarded, chunk, output));
            const json where = seen.size();
            differences.compare(without.ending, seen.back().ending, where);
            differences.compare(without.printed, seen.back().printed, where);
            differences.compare(without.cues, seen.back().cues, where);
        }
    }
    return seen;
}

/// Whether what is recorded ends as what was seen did, with the same cues but for their texts.
void compare_outcomes(const std::vector<Step>& seen, const std::vector<json>& entries,
                      Differences& differences) {
    std::size_t step = 0;
    for (const json& entry : entries) {
        if (entry.contains(field::kReturn) && !entry.contains(field::kParser) &&
            (entry.contains(field::kResult) || entry.contains(field::kException))) {
            differences.compare(seen.at(step).ending, ending_of(entry), entry);
        } else if (entry.contains(field::kDelivery)) {
            Lines cues;
            for (json cue : entry.at(field::kCues)) {
                cue["pcText"] = "";
                cues.push_back(describe(cue));
            }
            differences.compare(seen.at(step++).cues_without_text, cues, entry);
        }
    }
    differences.compare(seen.size(), step, "the number of deliveries");
}

class Recording : public testing::TestWithParam<const char*> {
  protected:
    /// Plays tracks through the guard, and what was recorded into the module. Gives the log.
    static std::string record(const char* text, const std::vector<Cut>& cuts) {
        const support::Module module;
        Differences differences;
        Session session(text);
        const std::vector<Step> seen = play(cuts, module.methods(), session.methods, differences);
        const std::vector<json> entries = session.end();
        compare_outcomes(seen, entries, differences);
        {
            Player player(module.methods(), differences);
            for (const json& entry : entries) {
                player.play(entry);
            }
        }
        EXPECT_EQ(Lines{}, differences.lines());
        return session.text;
    }
};

TEST_P(Recording, OfSamplesPlaysAsItWas) {
    record(GetParam(), samples());
}

TEST_P(Recording, OfRandomTracksPlaysAsItWas) {
    const std::string log = record(GetParam(), random_tracks());
    if (GetParam() == std::string("hidden")) {
        expect_nothing_secret(log);
    }
}

INSTANTIATE_TEST_SUITE_P(With, Recording, testing::Values("shown", "hidden"));

}  // namespace
