"""Tracks before and after quill fix. `fixed` and `left` name lines and codes in the order in which
they are said; what is left is lost or changed still."""

import collections
import gzip

Row = collections.namedtuple("Row", "before after fixed left")
ROWS = []


def row(before, after, fixed, left=""):
    ROWS.append(Row(before, after, fixed, left))


def cue(before, after, fixed, left=""):
    """Of one block, the third line of its track."""
    row(*(b"WEBVTT\n\n" + text + b"\n\n" for text in (before, after)), fixed, left)


def timing(before, after, fixed, left=""):
    cue(before + b"\nHi", after + b"\nHi", fixed, left)


def start(before, after, fixed, left=""):
    timing(before + b" --> 99:00:00.000", after + b" --> 99:00:00.000", fixed, left)


def settings(before, after, fixed, left=""):
    timing(b"00:01.000 --> 00:02.000 " + before, b"00:01.000 --> 00:02.000 " + after, fixed, left)


GOOD = b"WEBVTT\n\n1\n00:01.000 --> 00:02.000\nHi\n\n"
SUBRIP = b"1\n00:00:01,000 --> 00:00:02,000\nHi\n\n"

# What is in order, or what nobody can know, stays as it is.
for track in (GOOD, GOOD.replace(b"\n", b"\r\n"), GOOD.replace(b"\n", b"\r"),
              b"WEBVTT - title\nKind: captions\n\n" + GOOD[8:], b"WEBVTT\n", b"WEBVTT\n\n\n\n"):
    row(track, track, "")
start(b"soon", b"soon", "", "3:Q101")
start(b"", b"", "", "3:Q101")
start(b"00:00:01:12", b"00:00:01:12", "", "3:Q101")
start(b"00:61:00.000", b"00:61:00.000", "", "3:Q101")
start(b"00:00:61.000", b"00:00:61.000", "", "3:Q101")
start(b"1 00:01.000", b"1 00:01.000", "", "3:Q101")
for kept in (b"1: 00:01.000", b"1) 00:01.000", b"2026-01-01T00:00:01.000"):
    start(kept, kept, "", "3:Q101")
start(b"\x1b[1m00:01.000", b"\x1b[1m00:01.000", "", "3:Q101")
start(b"00:01:000", b"00:01:000", "", "3:Q101")
start(b"00.00.01", b"00.00.01", "", "3:Q101")
start(b"-00:01.000", b"-00:01.000", "", "3:Q101")
cue(b"Hello", b"Hello", "", "3:Q106")
cue(b"00:01.000 --> 00:02.000\n\n7", b"00:01.000 --> 00:02.000\n\n7", "", "3:Q108")
cue(b"00:01.000 --> 00:02.000 Hello", b"00:01.000 --> 00:02.000 Hello", "", "3:Q108")

# The first line.
row(b"\xef\xbb\xbf" + GOOD, GOOD, "1:Q131")
row(b"\xef\xbb\xbf\xef\xbb\xbf" + GOOD, GOOD, "1:Q132")
for encoding, mark in (("utf-16-le", b"\xff\xfe"), ("utf-16-be", b"\xfe\xff"), ("utf-16-le", b""),
                       ("utf-16-be", b""), ("utf-32-le", b"\xff\xfe\0\0"),
                       ("utf-32-be", b"\0\0\xfe\xff"), ("utf-32-le", b""), ("utf-32-be", b"")):
    text = GOOD.decode() + "00:03.000 --> 00:04.000\n\u00e9\u20ac\U0001f600\n\n"
    row(mark + text.encode(encoding), text.encode(), "1:Q133")
row(gzip.compress(GOOD), GOOD, "1:Q136")
row(gzip.compress(b"\xef\xbb\xbf" + GOOD), GOOD, "1:Q136 1:Q131")
row(b"webvtt" + GOOD[6:], GOOD, "1:Q141")
row(b"WebVTT\ttitle" + GOOD[6:], b"WEBVTT\ttitle" + GOOD[6:], "1:Q141")
for word in (b"WEBVT", b"WEBVVT", b"Web VTT", b"#WEBVTT", b"WEB-VTT", b"[WEBVTT]"):
    row(word + GOOD[6:], GOOD, "1:Q141")
row(b"WEBVT title" + GOOD[6:], b"WEBVTT title" + GOOD[6:], "1:Q141")
for line_end in (b"\\n", b"\\r\\n", b"\\r", "\u2028".encode(), "\u2029".encode(), "\u0085".encode(),
                 b"\x0b"):
    row(GOOD.replace(b"\n", line_end), GOOD, "1:Q141")
row(GOOD[:-2].replace(b"\n", b"\\n") + b"\n", GOOD, "1:Q141 5:Q418")
row(b"WEBVTT-title" + GOOD[6:], b"WEBVTT -title" + GOOD[6:], "1:Q141")
row(b"\n \n" + GOOD, GOOD, "3:Q142")
row(b" " + GOOD, GOOD, "1:Q142")
row(b"\xe2\x80\x8b" + GOOD, GOOD, "1:Q142")
row(SUBRIP, b"WEBVTT\n\n" + SUBRIP.replace(b",", b"."), "1:Q134 2:Q102 2:Q104")
row(b"\r\n" + SUBRIP.replace(b"\n", b"\r\n"),
    b"WEBVTT\r\n\r\n" + SUBRIP.replace(b",", b".").replace(b"\n", b"\r\n"), "1:Q134 3:Q102 3:Q104")
row(GOOD[8:], GOOD, "1:Q134")
row(GOOD[10:], GOOD[:8] + GOOD[10:], "1:Q149")
row(b"0:00:01.000,0:00:02.000\nHi\n\n", b"WEBVTT\n\n0:00:01.000 --> 0:00:02.000\nHi\n\n",
    "1:Q134 1:Q115")
row(b"WEBVTT 00:01,000 --> 00:02.000 align:center\nHi\n\n",
    b"WEBVTT\n\n00:01.000 --> 00:02.000 align:middle\nHi\n\n", "1:Q122 2:Q408")
row(b"WEBVTT 00:01.000 --> 00:02.000 Hi\n\n", b"WEBVTT 00:01.000 --> 00:02.000 Hi\n\n", "",
    "1:Q122")

# The header.
row(b"WEBVTT\n" + GOOD[8:], GOOD, "2:Q113")
row(b"WEBVTT\nKind: captions\n" + GOOD[10:], b"WEBVTT\nKind: captions\n\n" + GOOD[10:], "3:Q113")
row(b"WEBVTT\n \t\xc2\xa0\n" + GOOD[8:], GOOD, "2:Q117")
for blank in ("\u3164", "\u2800", "\u180e", "\u061c"):
    row(b"WEBVTT\n" + blank.encode() + b"\n" + GOOD[8:], GOOD, "2:Q117")

# Times.
for before, after, code in (
        (b"00:00:01,000", b"00:00:01.000", "Q102"), (b"0:01,5", b"00:01.500", "Q102"),
        (b"00:01", b"00:01.000", "Q101"), (b"1:2:3", b"1:02:03.000", "Q101"),
        (b"00:01.", b"00:01.000", "Q101"), (b"00:01.5", b"00:01.500", "Q101"),
        (b"00:01.1234567", b"00:01.123", "Q101"), (b"0:01.000", b"00:01.000", "Q101"),
        (b"1.000", b"00:01.000", "Q101"), (b"00.01.000", b"00:01.000", "Q101"),
        (b"00:00:01:000", b"00:00:01.000", "Q101"), (b"00:60.000", b"01:00.000", "Q101"),
        (b"90:00.000", b"01:30:00.000", "Q101"), (b"00:01.000\t", b"00:01.000", "Q101"),
        (b"\t00:01.000", b"00:01.000", "Q101"), (b"00:01.000\xc2\xa0", b"00:01.000", "Q101"),
        (b"00:\xe2\x80\x8b01.000", b"00:01.000", "Q101"),
        (b"\xef\xbb\xbf00:01.000", b"00:01.000", "Q101"),
        (b"\x0100:01.000", b"00:01.000", "Q101"), (b"[00:01.000]", b"00:01.000", "Q101"),
        (b"Begin: 00:01.000", b"00:01.000", "Q101"), (b"start=00:01.000", b"00:01.000", "Q101"),
        (b"1h02m03.5s", b"1:02:03.500", "Q101"), (b"1m2s", b"01:02.000", "Q101"),
        (b"00:01.000s", b"00:01.000", "Q101"), (b"00 : 01.000", b"00:01.000", "Q101"),
        (b"00:00:00:01.000", b"00:00:01.000", "Q101"), (b"00:001.000", b"00:01.000", "Q101"),
        ("００：０１．０００".encode(), b"00:01.000", "Q101")):
    start(before, after, "3:" + code)
timing(b"00:01.000 --> 00:02,000", b"00:01.000 --> 00:02.000", "3:Q104")
timing(b"00:01.000 --> 00:02", b"00:01.000 --> 00:02.000", "3:Q103")
timing(b"00:01.000 --> 00:02.000\t", b"00:01.000 --> 00:02.000", "3:Q103")
timing(b"00:01.000 --> 00:02.000align:end", b"00:01.000 --> 00:02.000 align:end", "3:Q103")
timing(b"00:01.000 --> 00:02.000\talign:end", b"00:01.000 --> 00:02.000 align:end", "3:Q103")
timing(b"00:01.000 --> 00:02.000;", b"00:01.000 --> 00:02.000", "3:Q103")
timing(b"[00:01.000 --> 00:02.000]", b"00:01.000 --> 00:02.000", "3:Q101 3:Q103")
timing(b"Begin: 00:01.000 --> End: 00:02.000 align:end", b"00:01.000 --> 00:02.000 align:end",
       "3:Q101 3:Q103")
timing(b"begin: 00:01.000, end: 00:02.000", b"00:01.000 --> 00:02.000", "3:Q101 3:Q115")
timing(b"00:01.000-->00:02.000", b"00:01.000-->00:02.000", "")
timing(b"  00:01.000  -->   00:02.000  ", b"  00:01.000  -->   00:02.000  ", "")
timing(b"00:01.000 00:02.000", b"00:01.000 --> 00:02.000", "3:Q115")
for arrow in (b"-", b"to", b",", b"->", b"--->", b"-- >", b"=>", b">", b"--&gt;", "—>".encode(), "–>".encode(),
              "→".encode(), "−−>".encode(), b"==>", "--›".encode()):
    timing(b"00:01.000 " + arrow + b" 00:02.000", b"00:01.000 --> 00:02.000", "3:Q115")

# Settings.
for before, after, code in (
        (b"align:center", b"align:middle", "Q408"), (b"align:LEFT", b"align:left", "Q408"),
        (b"align: end", b"align:end", "Q404"), (b"align :end", b"align:end", "Q404"),
        (b"align = end", b"align:end", "Q405"), (b"align=end", b"align:end", "Q405"),
        (b"Align:end", b"align:end", "Q403"), (b"size:50", b"size:50%", "Q406"),
        (b"position:50,center", b"position:50%,middle", "Q409"),
        (b"position:10%,line-left", b"position:10%,start", "Q409"),
        (b"line:50%,center", b"line:50%,middle", "Q409"), (b"line:-1,END", b"line:-1,end", "Q409"),
        (b"A:end", b"align:end", "Q403"), (b"L:-1", b"line:-1", "Q403"),
        (b"T:10%", b"position:10%", "Q403"), (b"S:50%", b"size:50%", "Q403"),
        (b"D:vertical", b"vertical:rl", "Q403"), (b"D:vertical-lr", b"vertical:lr", "Q403"),
        (b"align:end \xe2\x80\x8e", b"align:end", "Q405"),
        (b"align:end \xe2\x80\x8e size:50%", b"align:end size:50%", "Q405"),
        (b"vertical:RL", b"vertical:rl", "Q410"), (b"size:300%", b"size:100%", "Q305"),
        (b"size:150%", b"size:100%", "Q425")):
    settings(before, after, "3:" + code)
timing(b"00:01.000 --> 00:02.000 line:,end", b"00:01.000 --> 00:02.000", "3:Q111")
settings(b"size:40% line:- align:left", b"size:40% align:left", "3:Q111")
settings(b"align:end\tsize:50%", b"align:end size:50%", "3:Q408 3:Q408")
settings(b"align:end,size:50%;line:0", b"align:end size:50% line:0", "3:Q408 3:Q408 3:Q408")
settings(b"size:50%,position:10%,start", b"size:50% position:10%,start", "3:Q406 3:Q406")
settings(b"align:center size:40% position:10%", b"align:middle size:40% position:10%", "3:Q408")
for before, after, code in ((b"position:50,5%", b"position:50.5%", "Q406"),
                            (b"size=33,25%", b"size:33.25%", "Q406"),
                            (b"line:12,5%,end", b"line:12.5%,end", "Q409")):
    settings(before, after, "3:" + code, "3:Q411")
for kept, left in ((b"align:center align:left", "3:Q408"), (b"align: x", "3:Q404 3:Q405"),
                   (b"position:100,5%", "3:Q406"), (b"line:1,5", ""), (b"size:half", "3:Q406"),
                   (b"size:50%,Start", "3:Q406"), (b"size=12,5%,end", "3:Q405"),
                   (b"colour:red", "3:Q403"), (b"region:a", "3:Q412"), (b"position:120%", "3:Q407"),
                   (b"align:end  size:50% ", "")):
    settings(kept, kept, "", left)

# Blank lines.
cue(b"00:01.000 --> 00:02.000\n\nHi\nyou", b"00:01.000 --> 00:02.000\nHi\nyou", "4:Q108")
cue(b"7\n\n00:01.000 --> 00:02.000\nHi", b"7\n00:01.000 --> 00:02.000\nHi", "3:Q106")
cue(b"00:01.000 --> 00:02.000\nHi\n \t\n00:03.000 --> 00:04.000\nyou",
    b"00:01.000 --> 00:02.000\nHi\n\n00:03.000 --> 00:04.000\nyou", "5:Q117")
cue(b"00:01.000 --> 00:02.000\nHi\n \nyou", b"00:01.000 --> 00:02.000\nHi\n \nyou", "")
cue(b"00:01.000 --> 00:02.000\n \n\n00:03.000 --> 00:04.000\nyou",
    b"00:01.000 --> 00:02.000\n \n\n00:03.000 --> 00:04.000\nyou", "")
row(b"WEBVTT\r\r00:01.000 --> 00:02.000\rHi\r \n00:03.000 --> 00:04.000\ryou\r\r",
    b"WEBVTT\r\r00:01.000 --> 00:02.000\rHi\r\r00:03.000 --> 00:04.000\ryou\r\r", "5:Q117")
row(GOOD[:-1], GOOD, "5:Q418")
row(GOOD[:-2], GOOD, "5:Q418")
row(GOOD.replace(b"\n", b"\r\n")[:-4], GOOD.replace(b"\n", b"\r\n"), "5:Q418")
row(GOOD.replace(b"\n", b"\r")[:-1], GOOD.replace(b"\n", b"\r"), "5:Q418")

row(GOOD.replace(b"\n", b"\r\r\n"), GOOD.replace(b"\n", b"\r\n"),
    " ".join(f"{line}:Q118" for line in (1, 3, 5, 7, 9, 11)))
row(GOOD.replace(b"\nHi", b"\r\r\nHi") + GOOD[8:], GOOD.replace(b"\nHi", b"\r\nHi") + GOOD[8:],
    "4:Q118")
row(GOOD.replace(b"\n", b"\r").replace(b"\r\r1", b"\r\r\n1"),
    GOOD.replace(b"\n", b"\r").replace(b"\r\r1", b"\r\r\n1"), "")

# Blocks that make no cue.
cue(b"00:01.000 --> 00:02.000\n\nNOTE no text", b"NOTE 00:01.000 -> 00:02.000\n\nNOTE no text",
    "3:Q108")
cue(b"7\n00:01,000 --> 00:02.000\n\n8\n00:03.000 --> 00:04.000\nHi",
    b"NOTE 7\n00:01,000 -> 00:02.000\n\n8\n00:03.000 --> 00:04.000\nHi", "3:Q108 4:Q108")
cue(b"<!-- kept -->\n\n00:01.000 --> 00:02.000\nHi",
    b"NOTE kept \n\n00:01.000 --> 00:02.000\nHi", "3:Q124")
row(GOOD + GOOD, GOOD + GOOD[7:], "7:Q120")
row(GOOD + b"\xef\xbb\xbf" + GOOD, GOOD + GOOD[7:], "7:Q120")
TITLED = GOOD + b"WEBVTT\nKind: captions" + GOOD[6:]
row(TITLED, TITLED, "", "7:Q120")

for stray, after, fixed in ((b"#EXT-X-DISCONTINUITY", b"", "7:Q106"),
                            (b"#EXT-X-KEY\n#EXTINF:4", b"", "7:Q105 8:Q105"),
                            (b"Region: id=a", b"Region: id=a\n", "7:Q106"),
                            (b"Region: id=a\nRegion: id=b", b"Region: id=a\nRegion: id=b\n",
                             "7:Q105 8:Q105")):
    row(GOOD + stray + b"\n\n" + GOOD[8:], b"WEBVTT\n" + after + GOOD[7:] + GOOD[8:], fixed)

# Timing lines that are two lines, or hold the text.
cue(b"00:01.000 -->\n00:02.000\nHi", b"00:01.000 --> 00:02.000\nHi", "3:Q103")
cue(b"7\n00:01,000\n--> 00:02.000 align:center\nHi",
    b"7\n00:01.000 --> 00:02.000 align:middle\nHi", "4:Q408 5:Q101")
cue(b"00:01.000\n-->\n00:02.000\nHi", b"00:01.000 --> 00:02.000\nHi", "4:Q101 4:Q103")
cue(b"00:01.000\n-->\nsoon\nHi", b"00:01.000\n-->\nsoon\nHi", "", "4:Q101")
cue(b"7\n00:01,000 --> 00:02.000 Bob: <I>this</I> & that",
    b"7\n00:01.000 --> 00:02.000\nBob: <i>this</i> &amp; that",
    "4:Q108 4:Q102 4:Q109 4:Q414 4:Q303")
row(GOOD[:-5] + b" Hello there", GOOD[:-5] + b"\nHello there\n\n", "4:Q108 4:Q418")
cue(b"NOTE kept\n00:01.000 --> 00:02.000 Hello there",
    b"NOTE kept\n00:01.000 --> 00:02.000 Hello there", "")
for words, left in ((b"Hello there", "3:Q405"), (b"size:50% Hello there", "3:Q405 3:Q405"),
                    (b"1 2", "3:Q405 3:Q405"), (b"align : x", "3:Q405 3:Q405 3:Q405")):
    settings(words, words, "", left)

# Timing lines that are shown as text.
cue(b"1\n00:01.000 --> 00:02.000\nHi\n2\n00:03.000 --> 00:04.000\nyou\n3\n00:05,000 --> 00:06.000\nx",
    b"1\n00:01.000 --> 00:02.000\nHi\n\n2\n00:03.000 --> 00:04.000\nyou\n\n3\n00:05.000 --> 00:06.000\n"
    b"x", "6:Q116 9:Q116 10:Q102")
cue(b"00:01.000 --> 00:02.000\nHi\n00:03.000 --> 00:04.000\nyou",
    b"00:01.000 --> 00:02.000\nHi\n\n00:03.000 --> 00:04.000\nyou", "5:Q116")
cue(b"00:01.000 --> 00:02.000\nHi\n42\n00:03.000 --> 00:04.000\nyou",
    b"00:01.000 --> 00:02.000\nHi\n42\n\n00:03.000 --> 00:04.000\nyou", "6:Q116")
cue(b"00:01.000 --> 00:02.000\n00:03.000 --> 00:04.000\nyou",
    b"00:01.000 --> 00:02.000\n00:03.000 --> 00:04.000\nyou", "", "4:Q116")

cue(b"00:01.000 --> 00:02.000 size:50%\n00:01.000 --> 00:02.000 size:50%\nHi",
    b"00:01.000 --> 00:02.000 size:50%\nHi", "4:Q116")
cue(b"title\n7\n00:01.000 -> 00:02.000\nHi", b"title\n\n7\n00:01.000 --> 00:02.000\nHi",
    "5:Q107 5:Q115", "3:Q106")
cue(b"STYLE\n::cue {}\n00:01.000 --> 00:02.000\nHi",
    b"STYLE\n::cue {}\n\n00:01.000 --> 00:02.000\nHi", "5:Q107")
cue(b"NOTE\nkept\n00:01.000 --> 00:02.000\nHi", b"NOTE\nkept\n00:01.000 --> 00:02.000\nHi", "",
    "5:Q107")
cue(b"scene 1-->2\n00:01.000 --> 00:02.000\nHi", b"scene 1->2\n00:01.000 --> 00:02.000\nHi",
    "3:Q123")
# A text may hold what looks like times.
cue(b"00:01.000 --> 00:02.000\nThe train\n10:30 > 11:45\nis late",
    b"00:01.000 --> 00:02.000\nThe train\n10:30 > 11:45\nis late", "")

# More than ten lines.
LINES = [b"line %d" % number for number in range(25)]
TIMES = b"7\n00:01.000 --> 00:02.000 align:end\n"
cue(TIMES + b"\n".join(LINES[:9]),
    TIMES + b"\n".join(LINES[:8]) + b"\n\n" + TIMES[2:] + LINES[8], "13:Q301")
cue(TIMES + b"\n".join(LINES), TIMES + b"\n".join(LINES[:8]) + b"\n\n" + TIMES[2:] +
    b"\n".join(LINES[8:17]) + b"\n\n" + TIMES[2:] + b"\n".join(LINES[17:]), "13:Q301 22:Q301")

# Texts.
for before, after, code in (
        (b"Salt & vinegar", b"Salt &amp; vinegar", "Q303"), (b"R&D", b"R&amp;D", "Q303"),
        (b"a &amp b", b"a &amp; b", "Q303"), (b"a &nbsp", b"a &nbsp;", "Q303"),
        (b"it&#39;s", b"it's", "Q303"), (b"&#x26;&#60;", b"&amp;&lt;", "Q303 3"),
        (b"&#xe9;", "é".encode(), "Q303"), (b"&#; x", b"&amp;#; x", "Q303"),
        (b"&copy; 2020", "© 2020".encode(), "Q413"), (b"&quot;x&quot;", b'"x"', "Q413 Q413"),
        (b"1 < 2", b"1 &lt; 2", "Q110"), (b"<>", b"&lt;>", "Q110"), (b"a <.5", b"a &lt;.5", "Q110"),
        (b"I <3 you", b"I &lt;3 you", "Q304"), (b"I <3 you > me", b"I &lt;3 you > me", "Q304"),
        (b"<font color='red'>Hi</font>", b"Hi", "Q109 Q414"), (b"a<br>b", b"a\nb", "Q109"),
        (b"<I>Hi</I>", b"<i>Hi</i>", "Q109 Q414"), (b"Hi</b >", b"Hi</b>", "Q414"),
        (b"<i>Hi</i> <x.y z>you", b"<i>Hi</i> &lt;x.y z>you", "Q109"),
        (b"<Anna> Hi", b"&lt;Anna> Hi", "Q109"), (b"<<Hi>>", b"&lt;&lt;Hi>>", "Q304 Q109"),
        (b"<strong>Hi</strong>", b"<b>Hi</b>", "Q109 Q414"), (b"<i/>Hi", b"Hi", "Q109"),
        (b"<x y=1>Hi", b"Hi", "Q109"), (b"a &copy b", "a © b".encode(), "Q303"),
        (b"&#160;x&#xA0;", b"&nbsp;x&nbsp;", "Q303 Q303"),
        (b"it&amp;#39;s", b"it's", "Q431"), (b"R&amp;amp;amp;D", b"R&amp;D", "Q431"),
        (b"a&amp;amp;nbsp;b", b"a&nbsp;b", "Q431"),
        (b"<x>\nHi\n</x>", b"Hi", "Q109 Q414"), (b"a <y <i>b</i>", b"a &lt;y <i>b</i>", "Q304"),
        (b"&amp&#39;", b"&amp;amp'", "Q303 Q303")):
    TEXT = b"00:01.000 --> 00:02.000\n"
    lines = iter("4 6".split() if b"\n" in before else "4 4 4".split())
    cue(TEXT + before, TEXT + after,
        " ".join(f"{next(lines)}:{one}" for one in code.replace(" 3", " Q303").split()))
for kept in (b"a &amp; &lt; b", b"&foo;", b"&foo<i>x</i>", b"<v Bob>Hi", b"a <00:01.500>b", b"3 > 2"):
    cue(b"00:01.000 --> 00:02.000\n" + kept, b"00:01.000 --> 00:02.000\n" + kept, "")
cue(b"00:01.000 --> 00:02.000\n&amp;lt;i&amp;gt;", b"00:01.000 --> 00:02.000\n&amp;lt;i&amp;gt;", "",
    "4:Q431 4:Q431")
cue(b"00:01.000 --> 00:02.000\na <b and c", b"00:01.000 --> 00:02.000\na <b and c", "", "4:Q304")
cue(b"00:01.000 --> 00:02.000\n<font a=b>", b"00:01.000 --> 00:02.000\n<font a=b>", "", "4:Q109")

# Line ends within a text, of which no blank line may come.
LONG = b"00:01.000 --> 00:02.000\n" + b"\n".join(b"line %d" % number for number in range(8))
for before, after, fixed in (
        (b"One<br/><i>two</i><br>\nthree<br><br>four",
         b"One\n<i>two</i>\nthree\nfour", "4:Q109 4:Q109 5:Q109 5:Q109"),
        (b"<br>One<br> ", b"One ", "4:Q109 4:Q109"), (b"One<br><i></i>", b"One <i></i>", "4:Q109"),
        (b"One\\Ntwo\\N\\Nthree\\hfour", b"One\ntwo\nthree&nbsp;four",
         "4:Q433 4:Q433 4:Q433 4:Q433"),
        (b"R&D\\N<font a=b>two</font>", b"R&amp;D\ntwo", "4:Q303 4:Q433 4:Q109 4:Q414"),
        (b"{\\i1}One{\\i0} {\\b0}two{\\an2\\u1}", b"<i>One</i> two<u>",
         "4:Q433 4:Q433 4:Q433 4:Q433")):
    cue(b"00:01.000 --> 00:02.000\n" + before, b"00:01.000 --> 00:02.000\n" + after, fixed)
cue(LONG + b"\nOne<br>two<br>three", LONG + b"\nOne two three", "12:Q109 12:Q109")
cue(LONG[:-7] + b"\nOne<br>two<br>three", LONG[:-7] + b"\nOne\ntwo three", "11:Q109 11:Q109")
row(GOOD[:-4] + b"a\\Nb", GOOD[:-4] + b"a\nb\n\n", "5:Q433 5:Q418")
row(GOOD.replace(b"Hi", b"a<br>b").replace(b"\n", b"\r\n"),
    GOOD.replace(b"Hi", b"a\nb").replace(b"\n", b"\r\n"), "5:Q109")
# "{\\an8}" says where, and settings may say it otherwise.
cue(b"00:01,000 --> 00:02.000 \n{\\an8}Hi", b"00:01.000 --> 00:02.000 line:0\nHi",
    "3:Q102 3:Q433 4:Q433")
for kept in (b"00:01.000 --> 00:02.000 size:50%\n{\\an8}Hi", b"00:01.000 --> 00:02.000\n{\\pos(1,2)}Hi",
             b"00:01.000 --> 00:02.000\none\\ntwo", b"00:01.000 --> 00:02.000\nC:\\News",
             b"00:01.000 --> 00:02.000\nin \\Notes and \\x"):
    cue(kept, kept, "", "4:Q433")

# Comments.
cue(b"NOTE from --> to ----> x", b"NOTE from -> to -> x", "3:Q419")
cue(b"NOTE\n00:01.000 --> 00:02.000\nHi", b"NOTE\n00:01.000 --> 00:02.000\nHi", "", "3:Q306")

# The map.
MAP = b"WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000" + GOOD[6:]
for form in (b"X-TIMESTAMP-MAP=MPEGTS:900000, LOCAL:00:00:00.000",
             b"X-TIMESTAMP-MAP:MPEGTS:900000,LOCAL:00:00:00.000",
             b"X_TIMESTAMP_MAP=LOCAL:00:00:00.000;MPEGTS:900000",
             b"x-timestamp-map = mpegts:900000 , local:00:00:00.000"):
    row(b"WEBVTT\n" + form + GOOD[6:], MAP, "2:Q310" if form[:2] != b"X-" else "2:Q422")
for form, left in ((b"=MPEGTS:900000,LOCAL:00:00:00.000", ""), (b"=MPEG:9,LOCAL:0", "2:Q421"),
                   (b" MPEGTS:900000,LOCAL:00:00.000", ""),
                   (b"=MPEGTS:8589934590,LOCAL: 00:00:00.000", "2:Q422"),
                   (b"=MPEGTS:-900000,LOCAL:00:00.000", "2:Q422"),
                   (b"=MPEGTS:8589934590,LOCAL:00:00:00.000", "2:Q311")):
    form = b"WEBVTT\nX-TIMESTAMP-MAP" + form + GOOD[6:]
    row(form, form, "", left)

ONLY = MAP[7:-len(GOOD[6:])] + b"\n"
row(b"WEBVTT" + ONLY[:-1].replace(b"X", b" X", 1).replace(b"\n", b"") + GOOD[6:], MAP, "1:Q312")
row(b"WEBVTT\n\n" + ONLY + GOOD[7:], MAP, "3:Q114")
row(b"WEBVTT\nX-TIMESTAMP-MAPS\nTIMESTAMPMAP" + ONLY[15:] + GOOD[7:],
    b"WEBVTT\nX-TIMESTAMP-MAPS\nTIMESTAMPMAP" + ONLY[15:] + GOOD[7:], "", "2:Q421 3:Q310")
row(b"WEBVTT\n\n" + ONLY + b"\0\n\n" + GOOD[8:], b"WEBVTT\n" + ONLY + b"\n\0\n\n" + GOOD[8:], "3:Q114")
TWICE = b"WEBVTT\n" + ONLY + b"\n" + ONLY + GOOD[7:]
row(TWICE, TWICE, "", "4:Q114")
row(MAP.replace(b"900000", b"4294967295"), MAP.replace(b"900000", b"4294967294"), "2:Q311")
row(MAP.replace(b"MPEGTS", b"mpegts"), MAP, "2:Q421")

# A block that cannot be fixed as a whole stays as it is.
cue(b"00:01,000 --> 00:02.000\n<x\ny>", b"00:01,000 --> 00:02.000\n<x\ny>", "", "3:Q102")
