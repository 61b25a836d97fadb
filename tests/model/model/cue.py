"""One cue block: identifier, timing line, settings, payload."""

from .failures import InputFailure
from .settings import Settings
from .text import split_at, trim
from .tree import PayloadTree
from .values import get_timestamp

ARROW = b"-->"


class Cue:
    def __init__(self, out):
        self.out = out
        self.start = None
        self.end = None
        self.settings = Settings(out)
        self.payload = PayloadTree(out)

    def parse(self, block):
        """Whether the block is a cue. A bad start time or an empty payload raises instead."""
        timing, payload = split_at(block, b"\n")
        if not timing or payload is None:
            self.out.error(b"Invalid Input String of 1st Line, return FALSE")
            return False
        if ARROW not in timing:
            # The first line was the identifier, which nobody keeps.
            timing, payload = split_at(payload, b"\n")
            if not timing or payload is None:
                self.out.error(b"Invalid Input String of 2nd Line, return FALSE")
                return False
        if not self.parse_timing_line(timing):
            self.out.error(b"Parse Cue Time and Settings Failed")
            return False
        self.payload.parse(payload)
        return True

    def parse_timing_line(self, line):
        start, rest = split_at(line, ARROW)
        if rest is None:
            return False
        start, rest = trim(start), trim(rest)
        self.start = get_timestamp(start, self.out)
        if self.start is None:
            self.out.error(b"Invalid Start Time Stamp <%s>" % start)
            raise InputFailure
        end, settings = split_at(rest, b" ")
        self.end = get_timestamp(end, self.out)
        if self.end is None:
            self.out.error(b"Invalid End Time Stamp <%s>" % end)
            return False
        self.settings.parse(settings or b"")
        return True
