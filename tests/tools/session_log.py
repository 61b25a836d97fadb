"""Session logs written by hand: a session as the guard would have recorded it, line by line."""

import json

HEADER = {"log": "quillcaption", "version": 1, "guard": "0.1.0", "module": "quillcaption.so",
          "text": "shown", "started": "2026-11-22T06:20:00.123Z"}
READ_TO_ITS_END = "[WEBVTT] ERR:: Buffer Exhausted\n[WEBVTT] ERR:: FINISHED\n"
STRAY = "[WEBVTT API:%s] handle MUST not be NULL\n"
HANDLE = 0x47000000  # of parser 1, which is 16 beyond


def cue(start, end, text, **fields):
    """A record with these fields, the others as in a cue without settings."""
    return {"dStartTime": start, "dEndTime": end, "pcText": text, "i4Line": 100, "fgReserved": 0,
            "fgSnapToLines": 1, "u1Position": 50, "u1Size": 100, "eTextAlign": 1, "eVertical": 0,
            **fields}


class Log:
    """Lines of a log. Every call advances the time by a millisecond, unless `now` is set, in seconds."""

    def __init__(self):
        self.lines = [HEADER]
        self.now = None
        self.calls = 0
        self.parsers = 0

    def begin(self, verb, parser=None, thread=1, **fields):
        """A call without its return; gives its number. A parser below 0 is a stale handle."""
        self.calls += 1
        line = {"call": self.calls, "us": self.time(self.calls, 0), "thread": thread, "do": verb}
        if parser is not None:
            line["handle"] = HANDLE + 16 * abs(parser)
            if parser > 0:
                line["parser"] = parser
        self.lines.append({**line, **fields})
        return self.calls

    def time(self, call, later):
        """In microseconds, so many of them later than the call."""
        return (1000 * call if self.now is None else round(self.now * 1e6)) + later

    def end(self, call, printed="", **fields):
        self.lines.append({"return": call, "us": self.time(call, 500), "printed": printed, **fields})

    def delivery(self, call, parser, *cues):
        self.lines.append({"delivery": 1, "call": call, "us": self.time(call, 100), "parser": parser,
                           "cues": list(cues)})

    def mistake(self, code, call, text="what is wrong. What to do: the right thing."):
        self.lines.append({"mistake": code, "call": call, "text": f"{code} at call {call}: {text}"})

    def create(self, thread=1):
        call = self.begin("create", thread=thread)
        self.parsers += 1
        self.end(call, result=0, handle=HANDLE + 16 * self.parsers, parser=self.parsers)
        return self.parsers

    def open(self, thread=1):
        """A parser with a callback."""
        parser = self.create(thread)
        self.do("set_event_nty", parser, thread=thread)
        return parser

    def do(self, verb, parser, thread=1, returns=None, **fields):
        """A call that returns at once; `returns` are the fields of that."""
        self.end(self.begin(verb, parser, thread, **fields), **(returns or {}))

    def parse(self, parser, text, result=0, printed=READ_TO_ITS_END, **how):
        self.do("parse", parser, bytes=text, returns={"printed": printed, "result": result}, **how)

    def take(self, parser, *cues, within=lambda: None, thread=1, **returns):
        """`within` adds the calls that are made in the callback."""
        call = self.begin("get_parse_result", parser, thread)
        self.delivery(call, parser, *cues)
        within()
        self.end(call, **returns)

    def release(self, parser, **how):
        self.do("release", parser, **how)

    def text(self):
        return "".join(json.dumps(line) + "\n" for line in self.lines)

    def bytes(self):
        return self.text().encode()


def ordinary(log=None):
    """A parser from its creation to its release, with two chunks and three cues."""
    log = log or Log()
    parser = log.open()
    log.parse(parser, "WEBVTT\n\n00:01.000 --> 00:02.000\nOne\n\n00:02.000 --> 00:03.000 align:end\nTwo\n\n")
    log.take(parser, cue(1.0, 2.0, "One\n"),
             cue(2.0, 3.0, "Two\n", eTextAlign=2, u1Position=100))
    log.do("set_video_pts", parser, ticks=90000)
    log.parse(parser, "00:03.000 --> 00:04.000\nDr\u00c3\u00a9i\n\n")
    log.take(parser, cue(2.0, 3.0, "Dr\u00c3\u00a9i\n"))
    log.release(parser)
    return log
