// What quill fix is held to: edits that state too little, too much or something else are refused.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tools/fix/track_fixer.h"
#include "tools/fix/verifier.h"
#include "tools/host/diagnostics_capture.h"
#include "tools/host/module_handle.h"

namespace quill::fix {
namespace {

constexpr char kTrack[] =
    "WEBVTT\n"
    "\n"
    "00:01.000 --> 00:02.000\n"
    "Salt & vinegar\n"
    "\n"
    "00:03,000 --> 00:04.000 align:center\n"
    "and pepper\n"
    "\n";

// Lines of the track, counted from 0.
constexpr std::size_t kText = 3;
constexpr std::size_t kTiming = 5;

class VerifierTest : public testing::Test {
  protected:
    // What Verify says of the track after the edits; "lines" when a block would give no cue.
    std::string Judge(const std::function<void(Document&)>& edit) {
        host::DiagnosticsCapture capture(host::DiagnosticsCapture::Mode::kCollect);
        const host::ModuleHandle module(QUILLCAPTION_BUILT_MODULE);
        const check::CodeFilter all;
        Oracle oracle(module, capture);
        SettingsFixer settings(all);
        Document document(kTrack, {});
        FindTimings({document, oracle, settings, all});
        edit(document);
        document.Commit();
        Verifier verifier(module, capture, oracle, kTrack);
        if (!verifier.Survey(document).empty()) {
            return "lines";
        }
        return verifier.Verify(document, document.offset()).value_or("");
    }

    static Note Stating(std::int64_t start, const Effect& effect) {
        Note note;
        note.start = start;
        note.kept_settings = "";
        note.effects = {effect};
        return note;
    }

    static Note Showing(const std::string& replacement, const std::string& shown) {
        Note note;
        note.spans = {{5, 1, replacement, shown}};
        return note;
    }

    const Effect middle_{Effect::Field::kAlign, 1};
};

TEST_F(VerifierTest, NothingIsFine) {
    EXPECT_EQ(Judge([](Document&) {}), "");
}

TEST_F(VerifierTest, TimesAndSettingsComeAsStated) {
    const std::string good = "00:03.000 --> 00:04.000 align:middle";
    const auto judge = [this](const std::string& text, const Note& note) {
        return Judge([&](Document& document) { document.Replace(kTiming, text, note); });
    };
    EXPECT_EQ(judge(good, Stating(3000, middle_)), "");
    EXPECT_EQ(judge(good, Stating(3001, middle_)), "line 6: the times would come otherwise");
    EXPECT_EQ(judge("00:03.000 --> 00:04.000 align:end", Stating(3000, middle_)),
              "line 6: the settings would come otherwise");
    EXPECT_EQ(judge(good + " size:40%", Stating(3000, middle_)),
              "line 6: the settings would come otherwise");
    EXPECT_EQ(judge("00:03.000 --> 00:05.000 align:middle", Stating(3000, middle_)),
              "line 6: the times would come otherwise");
    EXPECT_EQ(judge("soon --> 00:04.000 align:middle", Stating(3000, middle_)), "lines");
}

TEST_F(VerifierTest, TextComesAsStated) {
    const auto judge = [this](const std::string& text, const Note& note) {
        return Judge([&](Document& document) { document.Replace(kText, text, note); });
    };
    EXPECT_EQ(judge("Salt &amp; vinegar", Showing("&amp;", "&")), "");
    const std::string otherwise = "line 3: the text would come otherwise";
    EXPECT_EQ(judge("Salt &amp; vinegar", Showing("&amp;", "and")), otherwise);
    EXPECT_EQ(judge("Salt &amp; pepper", Showing("&amp;", "&")), otherwise);
    EXPECT_EQ(judge("Salt & vinegar", Showing("&", "&")), otherwise);
}

TEST_F(VerifierTest, NothingIsLost) {
    EXPECT_EQ(Judge([](Document& document) { document.Remove(kText); }), "lines");
    EXPECT_EQ(Judge([](Document& document) {
                  document.Remove(kText - 1);
                  document.Remove(kText);
              }),
              "line 4: text would be lost");
    // The text is shown now; behind the blank line it would be a block that gives no cue.
    EXPECT_EQ(Judge([](Document& document) { document.InsertAbove(kText); }), "lines");
}

TEST_F(VerifierTest, NoTimesAreShifted) {
    EXPECT_EQ(Judge([](Document& document) {
                  document.InsertAbove(1, "X-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00.000");
              }),
              "all times would be shifted otherwise");
    EXPECT_EQ(Judge([](Document& document) {
                  document.InsertAbove(1, "X-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00.000");
                  document.StateOffset(10);
              }),
              "");
}

TEST_F(VerifierTest, NoCueIsAdded) {
    EXPECT_EQ(Judge([](Document& document) {
                  document.InsertAbove(2);
                  document.InsertAbove(2, "00:07.000 --> 00:08.000");
                  document.InsertAbove(2, "A cue out of nowhere.");
                  document.InsertAbove(2);
              }),
              "line 3: the times would come otherwise");
}

}  // namespace
}  // namespace quill::fix
