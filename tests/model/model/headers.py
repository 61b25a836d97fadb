"""The two header lines that are more than skipped."""

from .failures import AT, SUBSTR, OutOfRange
from .text import pop_item, split_at, trim
from .values import get_anchorpoint, get_percentage, get_timestamp, str_to_double, str_to_ulong

REGION = b"Region:"
TIMESTAMP_MAP = b"X-TIMESTAMP-MAP"

UNSET_LOCAL = -1.0
UNSET_MPEG = 0xFFFFFFFF


def without_line_feed(line):
    return line[:-1] if line.endswith(b"\n") else line


def parse_region(line, out):
    """A region definition. A host sees none of it but the traces of its bad numbers."""
    rest = without_line_feed(line)[len(REGION):]
    last = False
    while not last:
        item, rest, last = pop_item(rest)
        parse_region_item(item, out)


def parse_region_item(item, out):
    name, value = split_at(item, b"=")
    if len(item) < 3 or value is None:
        return
    if name == b"width":
        get_percentage(value, out)
    elif name == b"lines":
        str_to_double(value, out)
    elif name in (b"regionanchor", b"viewportanchor"):
        get_anchorpoint(value, out)


class TimestampMap:
    """Ties the track's clock (seconds) to the video's (90 kHz ticks)."""

    def __init__(self, out):
        self.out = out
        self.reset()

    def reset(self):
        self.local = UNSET_LOCAL
        self.mpeg = UNSET_MPEG

    def is_valid(self):
        return self.local != UNSET_LOCAL and self.mpeg != UNSET_MPEG

    def offset(self):
        """Seconds to add to a cue's time. The ticks' fraction of a second is dropped."""
        return float(self.mpeg // 90000) - self.local if self.is_valid() else 0.0

    def parse(self, line):
        text = without_line_feed(line)[len(TIMESTAMP_MAP):]
        if not text:
            raise OutOfRange(AT)
        if text.startswith(b"="):
            text = text[1:]
        text = trim(text)
        first, second = split_at(text, b",")
        self.out.line(first)
        if not self.parse_item(first, b"1"):
            return
        if second is None:
            raise OutOfRange(SUBSTR)
        self.parse_item(second, b"2")

    def parse_item(self, item, number):
        """The name is looked for anywhere in the item, but the value begins at a fixed place."""
        self.out.step()
        if b"LOCAL:" in item:
            self.local = get_timestamp(item[len(b"LOCAL:"):], self.out)
            good = self.local is not None
        elif b"MPEGTS:" in item:
            self.out.line(item + b"fgParseMpegPts")
            value = item[len(b"MPEGTS:"):]
            self.out.line(b"fgParseMpegPts" + value)
            self.mpeg = str_to_ulong(value, self.out)
            good = self.mpeg is not None
        else:
            self.out.error(b"Invalid X-TIMESTAMP-MAP Meta Header %s!" % number)
            return False
        if not good:
            self.out.error(b"Invalid X-TIMESTAMP-MAP Meta Header Value!")
            self.reset()
        return good
