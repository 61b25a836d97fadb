"""A loose grammar of tracks: mostly what authors write, with every oddity that matters mixed in.

Lines end in a line feed here; generate.py changes the endings, damages bytes and cuts chunks.
"""

BOM = b"\xef\xbb\xbf"
WORDS = (b"Hello", b"world", b"the", b"a", b"I", b"caf\xc3\xa9", b"\xe6\x97\xa5\xe6\x9c\xac",
         b"-", b"...", b"it's", b"1", b"\x80", b"\xff\xfe", b"tab\there")
ODD_DECIMALS = (b".", b"5.", b".5", b"1.2.3", b"-1", b"+1", b"1e2", b"abc", b"4294967296", b"0",
                b"4294967295", b"3000000000", b"2147483648", b"0.0000000001", b"0.999999999999",
                b"0.000000000001", b"99.99999999999999999999", b"0.1234567890123456789012345678901",
                b"0.12345678901234567890123456789012", b"0.00000000000000000000000000000000",
                b"0.00000000000000000000000000000007", b"5.000000000000000000000000000000010")
TAGS = (b"c", b"i", b"b", b"u", b"ruby", b"rt", b"v", b"lang")
REFERENCES = (b"&amp;", b"&lt;", b"&gt;", b"&lrm;", b"&rlm;", b"&nbsp;", b"&AMP;", b"&foo;", b"&",
              b"& ", b"&amp", b"&&lt;", b"&#65;", b"&a1Z;", b"&;", b"&amp<", b"&\xe9;")
BROKEN_MARKUP = (b"<", b"<>", b"</>", b"</", b"<.", b"<1", b"<b", b"< ", b"</foo>", b"</b >",
                 b"<b ", b"<c.", b"<c.x", b"<c.\n", b"<c\n", b"<v.loud\nBob>",
                 b"<foo>", b"<B>", b"<b/>", b"<b.>", b"<c.a.b", b"<1x>", b"<00:61.000>",
                 b"<00:00:01.0>", b">", b"<\t>", b"</b", b"<00:01.00", b"<b\f>", b"<v\nBob>",
                 b"<c..>", b"<.x>")


class Grammar:
    def __init__(self, random):
        self.random = random

    def chance(self, probability):
        return self.random.random() < probability

    def pick(self, *choices):
        """One of the choices; a function or method is called for its text."""
        choice = self.random.choice(choices)
        return choice() if callable(choice) else choice

    def number(self, low, high):
        return self.random.randint(low, high)

    def repeat(self, low, high, make):
        return [make() for _ in range(self.number(low, high))]

    # -- the track and its first line ---------------------------------------------------------

    def track(self):
        lines = [self.signature()] + self.headers() + [b""]
        # Now and then enough cues for one delivery to fill several pages of memory.
        blocks = self.number(0, 6) or 1 if self.chance(0.98) else self.number(50, 400)
        for _ in range(blocks):
            lines += self.block() + [b""] * (1 if self.chance(0.85) else self.number(0, 3))
        return b"".join(line + b"\n" for line in lines)

    def signature(self):
        if self.chance(0.94):
            return self.pick(b"WEBVTT", b"WEBVTT", b"WEBVTT ", b"WEBVTT - a title", b"WEBVTT\tx",
                             BOM + b"WEBVTT\tWEBVTT", BOM + b"WEBVTT " + BOM + b"WEBVTT\tWEBVTT")
        return self.pick(b"WEBVTTX", b"webvtt", b"WEBV", b"WEBVT", b"", b"WEBVTT\0", b"WEB\0VTT",
                         b" WEBVTT", b"WEBVTT \0x", BOM + b"WEBVTT", BOM + b"WEBVTT ",
                         BOM + b"WEBVTT\tWEBVTT x", BOM + b"WEBVTT\t" + BOM + b"WEBVTT",
                         BOM + b"WEBVTT " + BOM + b"WEBVTT\tWEBVTT ")

    # -- headers ------------------------------------------------------------------------------

    def headers(self):
        if self.chance(0.4):
            return []
        return self.repeat(1, 4, lambda: self.pick(self.region, self.timestamp_map, self.remark))

    def remark(self):
        return self.pick(b"Kind: captions", b"Language: en", b"NOTE x", b"x", b"region: id=a",
                         b"X-TIMESTAMP", b"Region", b"-->", b" ", b"\t")

    def region(self):
        joint = self.pick(b" ", b" ", b"  ", b"\t")
        return b"Region:" + self.pick(b" ", b"", b"  ") + joint.join(
            self.repeat(0, 4, self.region_item)) + self.pick(b"", b"", b" ")

    def region_item(self):
        return self.pick(
            lambda: b"id=" + self.pick(b"fred", b"", b"abcdefghijklmnopqrst"),
            lambda: b"width=" + self.percentage(),
            lambda: b"lines=" + self.decimal(),
            lambda: self.pick(b"region", b"viewport") + b"anchor=" + self.anchor(),
            lambda: b"scroll=" + self.pick(b"up", b"UP", b"none", b""),
            lambda: self.pick(b"ID=x", b"id", b"a=", b"=x", b"width", b"lines=", b"width=1=2%"))

    def anchor(self):
        if self.chance(0.7):
            return self.percentage() + b"," + self.percentage()
        return self.pick(b"10%", b",5%", b"5%,", b"1%,2%,3%", b"a,b", b",", b"")

    def timestamp_map(self):
        if self.chance(0.25):
            return b"X-TIMESTAMP-MAP" + self.pick(
                b"", b"=", b"==MPEGTS:1,LOCAL:00:00.000", b"=MPEGTS:900000", b"=LOCAL:00:01.000",
                b"=FOO:1,BAR:2", b":MPEGTS:1,LOCAL:00:00.000", b"=MPEGTS:1,LOCAL:1",
                b"=MPEGTS:abc,LOCAL:00:00.000", b"=MPEGTS:1,", b"=,MPEGTS:1", b"=MPEGTS:,LOCAL:",
                b"=MPEGTS:1, LOCAL:00:00.000", b"=LOCAL:00:01.000,MPEGTS:4294967295",
                b" = LOCAL:00:01.000,MPEGTS:1", b"=MPEGTS:1,MPEGTS:2",
                b"=XLOCAL:00:01.000,MPEGTS:1", b"=LOCAL:MPEGTS:90000,MPEGTS:90000",
                b"=LOCAL:,", b"=MPEGTS:1,LOCAL:00:00.000,x")
        items = [b"MPEGTS:" + self.ticks(), b"LOCAL:" + self.timestamp()]
        self.random.shuffle(items)
        return b"X-TIMESTAMP-MAP" + self.pick(b"=", b"=", b"= ", b" ", b"") + b",".join(items)

    def ticks(self):
        return self.pick(b"0", b"90000", b"900000", b"135000", b"4294967295", b"4294967296",
                         b"8589934592", lambda: b"%d" % self.number(0, 2 ** 33))

    # -- cue blocks -----------------------------------------------------------------------------

    def block(self):
        if self.chance(0.06):
            return self.pick(lambda: [b"NOTE a remark"], lambda: [b"STYLE", b"::cue {}"],
                             lambda: [b"NOTE", b"two", b"lines"], lambda: [b"-->"],
                             lambda: [b"id only"])
        lines = []
        if self.chance(0.3):
            lines.append(self.pick(b"1", b"cue 7", b"id", b" ", b"0x", b"- ->"))
        lines.append(self.timing_line())
        if self.chance(0.04):
            return lines + self.repeat(0, 14, self.text)
        return lines + self.repeat(1, 3, self.payload_line)

    def timing_line(self):
        arrow = self.pick(b" --> ", b" --> ", b" --> ", b"-->", b"  -->  ")
        line = self.timestamp() + arrow + self.timestamp()
        if self.chance(0.03):
            line = self.pick(b"00:01.000 -> 00:02.000", b"-->", b"abc --> 00:02.000", b" " + line,
                             b"\t" + line, b"00:01.000 --> zz", line + b" -->", line + b"\t",
                             b"00:01.000\t-->\t00:02.000", line + b"x", b"00:01.000 -->")
        if self.chance(0.5):
            joint = self.pick(b" ", b" ", b"   ")
            line += joint + joint.join(self.repeat(0, 4, self.setting)) + self.pick(b"", b"", b" ")
        return line

    def timestamp(self):
        if self.chance(0.93):
            clock = b"%02d:%02d.%03d" % (self.number(0, 59), self.number(0, 59),
                                         self.number(0, 999))
            return self.pick(b"", b"%02d:" % self.number(0, 99), b"", b"00:", b"1:") + clock
        return self.pick(b"12::34.567", b"00:01.0000", b"0:00.000", b"00:60.000", b"60:00.000",
                         b"00:00:60.000", b"00:00:00:00.000", b"1193046:29:16.000", b"59:000005",
                         b"000000000:01.000", b"4294967296:01.000", b"01:.12345", b"00:5.1234",
                         b"00:12345.", b"00:1.2.34", b"aa:01.000", b"00:0a.000", b"1:2:03.000",
                         b"00:123:01.000", b"00:aa:01.000", b"00:01,000", b":00:01.000", b"",
                         b"99999999999:59:59.999", b"\xc3\xa90:01.000")

    def decimal(self):
        if self.chance(0.75):
            return self.pick(lambda: b"%d" % self.number(0, 120),
                             lambda: b"%.*f" % (self.number(1, 12), self.random.uniform(0, 100)))
        return self.pick(*ODD_DECIMALS)

    def percentage(self):
        return self.pick(b"%", b"50") if self.chance(0.05) else self.decimal() + b"%"

    def setting(self):
        joint = b":" if self.chance(0.97) else self.pick(b"", b"::", b"=")
        name = self.pick(b"vertical", b"line", b"line", b"size", b"position", b"align", b"region")
        if self.chance(0.05):
            return self.pick(b"a:", b"ab:", b":abc", b"abc", b":", name + b":",
                             name.upper() + b":x", b"x:y", b"ab::", b"\xff:\xff",
                             b"line :1", b"lines:1", b"\t")
        return name + joint + self.setting_value(name)

    def setting_value(self, name):
        if name == b"vertical":
            return self.pick(b"lr", b"rl", b"LR", b"l")
        if name == b"align":
            return self.pick(b"start", b"middle", b"end", b"left", b"right", b"center", b"END")
        if name == b"region":
            return self.pick(b"fred", b"abcdefghijklmnopqrst")
        if name == b"size":
            return self.percentage()
        alignment = self.pick(b"", b"", b",start", b",middle", b",end", b",center", b",", b",,")
        if name == b"position":
            return self.percentage() + alignment
        if self.chance(0.04):
            return self.pick(b",end", b"-", b"-,", b"-%", b"%", b"--1")
        sign = b"-" if self.chance(0.3) else b""
        return sign + self.pick(self.decimal, self.percentage) + alignment

    # -- payload --------------------------------------------------------------------------------

    def payload_line(self):
        return self.payload(self.number(0, 3)) or b"x"

    def payload(self, depth):
        return b"".join(self.repeat(1, 3, lambda: self.piece(depth)))

    def piece(self, depth):
        if depth == 0 or self.chance(0.5):
            return self.text()
        if self.chance(0.12):
            return self.pick(*BROKEN_MARKUP)
        if self.chance(0.15):
            return self.pick(b"</%s>" % self.pick(*TAGS), b"<%s>" % self.timestamp(), b"\0", b"\f")
        name = self.pick(*TAGS)
        close = self.pick(*TAGS) if self.chance(0.1) else name
        end = b"</%s>" % close if self.chance(0.9) else b""
        return b"<%s%s>" % (name, self.pick(b"", b"", self.classes, self.annotation)
                            ) + self.payload(depth - 1) + end

    def classes(self):
        return b"".join(self.repeat(1, 3, lambda: b"." + self.pick(b"red", b"big", b"", b"loud"))
                        ) + self.pick(b"", b"", b" Bob", b"\tx")

    def annotation(self):
        return self.pick(b" Bob", b"   Bob  ", b" en", b"\tx", b" ", b"  .x", b" <b", b" &amp;")

    def text(self):
        if self.chance(0.25):
            return self.pick(*REFERENCES)
        return b" ".join(self.repeat(1, 4, lambda: self.pick(*WORDS)))
