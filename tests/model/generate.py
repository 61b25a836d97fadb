"""Scripts from a seed: tracks out of the grammar, damaged, cut into chunks, fed by a busy host."""

import random
import re

from grammar import Grammar
from script import Duties, call

LINE_END = re.compile(rb"\r\n|\n|\r")
SHARP_BYTES = (b"\0", b"\n", b"\r", b"\r\n", b" ", b"<", b">", b"&", b";", b".", b":", b",", b"-",
               b"/", b"%", b"\t", b"\f", b"0", b"9", b"\x80", b"\xff", b"\n\n", b"\r\r", b"-->")
FED_IN_CALLBACKS = (b"\n\n00:01.000 --> 00:02.000\nx\n\n", b"\n\nx --> 00:02.000\ny\n\n",
                    b"\n\n00:01.000 --> 00:02.000\nhalf", b"WEBVTT\n", b"\r")
STRAY_HANDLES = ("0x0", "0x1", "0xdeadbeef", "0xffffffff", "0x7")


def generate(seed, index, tracks=()):
    """Script `index` of a seed, the same on every machine. `tracks` stand in for the grammar's."""
    calls = Generator(random.Random(f"{seed}/{index}"), tracks).script()
    return with_feeding(calls, random.Random(f"{seed}/{index}/feeding"))


def with_feeding(calls, rng):
    """Now and then a callback feeds its own parser, mostly in a delivery of nothing."""
    results = [at for at, one in enumerate(calls) if one.verb == "result"]
    if rng.random() > 0.05 or not results:
        return calls
    at = rng.choice(results)
    feeding = calls[at]._replace(verb="result_feeding", data=rng.choice(FED_IN_CALLBACKS))
    return calls[:at] + [calls[at]] * rng.randint(0, 1) + [feeding] + calls[at:]


class Generator:
    def __init__(self, rng, tracks=()):
        self.random = rng
        self.tracks = tracks
        self.grammar = Grammar(rng)
        self.chance = self.grammar.chance

    def script(self):
        """One to three parsers, their calls shuffled together, and a stray call now and then."""
        names = "abc"[:self.random.choice((1, 1, 1, 1, 2, 3))]
        hosts = [self.host(name) for name in names]
        calls = []
        while any(hosts):
            host = self.random.choice([h for h in hosts if h])
            run = self.random.randint(1, 4)
            calls += host[:run]
            del host[:run]
            if self.chance(0.02):
                calls.append(self.stray())
        # A released handle may only be tried while no later parser can have its address.
        duties = Duties()
        return [one for one in calls if not duties.breach(one)]

    def stray(self):
        name = self.random.choice(STRAY_HANDLES)
        return self.random.choice((
            call("create_null"), call("parse", name, data=b"WEBVTT\n"), call("result", name),
            call("parse_null", name, number=1), call("parse_size0", name), call("release", name),
            call("callback", name, number=1), call("callback_null", name, number=1),
            call("pts", name, number=1)))

    # -- one parser and its track ------------------------------------------------------------

    def host(self, name):
        """All calls of one parser's life."""
        calls = [call("create", name), call("callback", name, number=self.random.choice((0, 7)))]
        if self.chance(0.2):
            calls.append(call("pts", name, number=self.video_time()))
        eager = self.random.choice((0.0, 0.2, 1.0))
        for chunk in self.chunks(self.track()):
            calls.append(call("parse", name, data=chunk))
            if self.chance(eager):
                calls.append(call("result", name))
            if self.chance(0.03):
                calls.append(self.aside(name))
        if self.chance(0.7):
            calls.append(call("parse", name, data=b"\n\n\n"))
        calls.append(call("result", name))
        if self.chance(0.9):
            calls.append(call("release", name))
            if self.chance(0.2):
                calls.append(self.random.choice((
                    call("release", name), call("result", name), call("pts", name, number=9),
                    call("parse", name, data=b"WEBVTT\n"), call("callback", name, number=3))))
        return calls

    def aside(self, name):
        return self.random.choice((
            call("parse_size0", name), call("result", name),
            call("parse_null", name, number=self.random.choice((0, 1, 2 ** 31, 3000000000))),
            call("callback", name, number=self.random.choice((1, 2 ** 32 - 1))),
            call("callback_null", name, number=5), call("pts", name, number=self.video_time())))

    def video_time(self):
        return self.random.choice((0, 89999, 90000, 180000, 2 ** 32 - 1,
                                   self.random.randrange(2 ** 32)))

    def track(self):
        track = self.random.choice(self.tracks) if self.tracks else self.grammar.track()
        track = self.set_line_ends(track)
        if self.chance(0.35):
            for _ in range(self.random.choice((1, 1, 2, 3, 6))):
                track = self.damage(track) or b"x"
        if self.chance(0.08):
            track = self.cut_lines(track)
        return track

    def set_line_ends(self, track):
        ends = self.random.choice(((b"\n",), (b"\n",), (b"\r\n",), (b"\r",),
                                   (b"\n", b"\r\n", b"\r")))
        return LINE_END.sub(lambda _: self.random.choice(ends), track)

    def damage(self, track):
        """One change. The first line is mostly spared: behind a bad one nothing is read."""
        first_line = LINE_END.search(track)
        low = first_line.end() if first_line and self.chance(0.9) else 0
        start = self.random.randint(min(low, len(track)), len(track))
        end = min(len(track), start + self.random.choice((1, 1, 2, 5, 20)))
        head, middle, tail = track[:start], track[start:end], track[end:]
        kind = self.random.choice(("delete", "insert", "replace", "zero", "repeat", "cut", "flip"))
        if self.chance(0.02):
            kind = "stretch"
        if kind == "insert":
            middle += self.random.choice(SHARP_BYTES)
        elif kind == "replace":
            middle = self.random.choice(SHARP_BYTES)
        elif kind == "zero":
            middle = b"\0" + middle[1:]
        elif kind == "repeat":
            middle *= 2
        elif kind == "stretch":
            middle *= self.random.choice((100, 1000, 5000))
        elif kind == "flip" and middle:
            middle = bytes([middle[0] ^ 1 << self.random.randrange(8)]) + middle[1:]
        else:
            middle = b""
        return head + middle + (tail if kind != "cut" or self.chance(0.7) else b"")

    def cut_lines(self, track):
        """Zero bytes at and near the start of lines, which leave nothing or next to nothing."""
        def zero(match):
            return match.group() + (self.random.choice((b"", b"", b"\0", b"x\0", b"\0x"))
                                    if match.end() > 12 else b"")
        return LINE_END.sub(zero, track)

    # -- chunks --------------------------------------------------------------------------------

    def chunks(self, track):
        """The track in pieces, none of them empty. The first mostly holds the whole first line."""
        first_line = LINE_END.search(track)
        low = first_line.end() if first_line and self.chance(0.95) else 1
        if first_line and first_line.group() == b"\r\n" and self.chance(0.3):
            low = max(low - 1, 1)
        borders = sorted(set(self.borders(track, low)))
        edges = [0] + [b for b in borders if low <= b < len(track)] + [len(track)]
        return [track[a:b] for a, b in zip(edges, edges[1:])]

    def borders(self, track, low):
        plan = self.random.choice(("whole", "bytes", "lines", "few", "sizes", "sizes", "sharp"))
        is_long = len(track) > 4000
        if is_long and plan in ("bytes", "sharp"):
            plan = "sizes"
        if plan == "bytes":
            return range(low, len(track))
        if plan == "lines":
            return [m.end() for m in LINE_END.finditer(track)]
        if plan == "few":
            return [self.random.randint(low, max(low, len(track))) for _ in range(2)]
        if plan == "sizes":
            largest = self.random.choice((200, 1460) if is_long else (3, 10, 40))
            borders, at = [], low
            while at < len(track):
                borders.append(at)
                at += self.random.randint(1, largest)
            return borders
        if plan == "sharp":  # beside line ends, zero bytes and markup
            return [m.start() + self.random.randint(0, 1)
                    for m in re.finditer(rb"[\r\n\0<>&:,]", track) if self.chance(0.4)]
        return []
