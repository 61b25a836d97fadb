// What stays of a track that nobody is to read.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "guard/hidden_output.h"
#include "guard/hidden_track.h"

namespace guard {
namespace {

struct Hidden {
    std::string text;
    std::string hidden;
};

class Tracks : public testing::TestWithParam<Hidden> {};

/// Hides chunks with "|" between them.
std::string hide_chunks(const std::string& chunks) {
    TrackHider hider;
    std::string hidden;
    for (std::size_t at = 0; at <= chunks.size();) {
        const std::size_t end = std::min(chunks.find('|', at), chunks.size());
        std::string chunk = chunks.substr(at, end - at);
        hider.hide(chunk.data(), chunk.size());
        hider.end_chunk(false, "");
        hidden += chunk + (end < chunks.size() ? "|" : "");
        at = end + 1;
    }
    return hidden;
}

TEST_P(Tracks, KeepWhatTheModuleLooksAt) {
    EXPECT_EQ(GetParam().hidden, hide_chunks(GetParam().text));
}

const char* const kBlock = "WEBVTT\n\n00:01.000 --> 00:02.000\n";

Hidden text(const std::string& shown, const std::string& hidden) {
    return {kBlock + shown, kBlock + hidden};
}

INSTANTIATE_TEST_SUITE_P(
    Hidden, Tracks,
    testing::ValuesIn(std::vector<Hidden>{
        {"WEBVTT My title\nby me\n\n", "WEBVTT Xx xxxxx\nxx xx\n\n"},
        {"WEBVTT\nRegion: id=r\nX-TIMESTAMP-MAP=LOCAL:00:00.000,MPEGTS:1\n",
         "WEBVTT\nRegion: id=r\nX-TIMESTAMP-MAP=LOCAL:00:00.000,MPEGTS:1\n"},
        {"WEBVTT\n\nNOTE by 2 of us\nor 3\n\n", "WEBVTT\n\nNOTE xx 0 xx xx\nxx 0\n\n"},
        {"WEBVTT\n\n7\n1:2 --> 3:4 line:5 foo:b6\n8 men\n",
         "WEBVTT\n\n7\n1:2 --> 3:4 line:5 xxx:x0\n0 xxx\n"},
        {"WEBVTT\n\na1 --> 00:02.000 line:5\n", "WEBVTT\n\nx0 --> 00:00.000 xxxx:0\n"},
        {"WEBVTT\n\n1:2 --> 3:4a5 line:5\n", "WEBVTT\n\n1:2 --> 3:4x0 line:5\n"},
        text("Hello, World 42!\n", "Xxxxx, Xxxxx 00!\n"),
        text("<v.loud Bob><b>Hi</b> <lang en>x</lang>\n",
             "<v.xxxx Xxx><b>Xx</b> <lang xx>x</lang>\n"),
        text("<ruby>a<rt>b<bold>c</bold>\n", "<ruby>x<rt>x<bxxx>x</bxxx>\n"),
        text("<00:01.500>a <3 you\n", "<00:01.500>x <3 xxx\n"),
        text("a&amp;b &ampers; &nbsp;&foo; R&B\n", "x&amp;x &ampxxx; &nbsp;&xxx; X&X\n"),
        text("&amp;lt;a &amp;b\n", "&amp;lt;x &amp;x\n"),
        text("\xC3\xA9 \xC2\xA0 \xE2\x82\xAC \xF0\x9F\x98\x80\n",
             "\xCB\xA0 \xC2\xA0 \xE2\xA0\xA0 \xF1\xA0\xA0\x80\n"),
        text("<|v B|ob>H|i &am|p; &a|b;\n", "<|v X|xx>X|x &am|p; &a|x;\n"),
        text("a\n\n|00:0|1.000 -|-> 00:02.000\nb\n", "x\n\n|00:0|1.000 -|-> 00:02.000\nx\n"),
        text("a\r|\n\r|\n00:03.000 --> 00:04.000\r", "x\r|\n\r|\n00:03.000 --> 00:04.000\r"),
    }));

class Messages : public testing::TestWithParam<Hidden> {};

TEST_P(Messages, SayNothingOfTheText) {
    std::string hidden = GetParam().text;
    hide_printed(hidden.data(), hidden.size());
    EXPECT_EQ(GetParam().hidden, hidden);
}

const std::string kError = "[WEBVTT] ERR:: ";

INSTANTIATE_TEST_SUITE_P(
    Hidden, Messages,
    testing::ValuesIn(std::vector<Hidden>{
        {"", ""},
        {kError + "FINISHED\n", kError + "FINISHED\n"},
        {"data is 900000\ninput is 12a\nNot a valid data string\n",
         "data is 900000\ninput is 12a\nNot a valid data string\n"},
        {kError + "unexcepted start tag <bold> detected. Ignored\n",
         kError + "unexcepted start tag <bxxx> detected. Ignored\n"},
        {kError + "unexcepted end tag <Bob\nsaid> detected. Ignored\n",
         kError + "unexcepted end tag <Xxx\nxxxx> detected. Ignored\n"},
        {"input is :a23.5\nNot a valid data string\n" + kError +
             "Invalid time stamp tag <1 b:a23.5> detected. Ignored\n",
         "input is :x00.0\nNot a valid data string\n" + kError +
             "Invalid time stamp tag <1 x:x00.0> detected. Ignored\n"},
        {kError + "Invalid Start Time Stamp <1>me 2>\n" + kError + "FINISHED\n",
         kError + "Invalid Start Time Stamp <1>xx 0>\n" + kError + "FINISHED\n"},
        {kError + "Invalid End Time Stamp <12me3>\n", kError + "Invalid End Time Stamp <12xx0>\n"},
        {kError + "Item mine value is empty!\n", kError + "Item xxxx value is empty!\n"},
        {kError + "Item line value is empty!\n", kError + "Item line value is empty!\n"},
    }));

}  // namespace
}  // namespace guard
